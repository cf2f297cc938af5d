#include "imaging/jpeg_kernels_impl.h"

#include "imaging/jpeg_kernel_sets.h"

#if defined(__GNUC__) && defined(__SSE2__)

#include <emmintrin.h>

namespace varnholt::jpeg {

namespace {

struct Four
{
    __m128 lanes;

    Four() = default;
    Four(__m128 value)
        : lanes(value)
    {}
    explicit Four(float value)
        : lanes(_mm_set1_ps(value))
    {}
};

inline Four operator+(Four a, Four b)
{
    return _mm_add_ps(a.lanes, b.lanes);
}
inline Four operator-(Four a, Four b)
{
    return _mm_sub_ps(a.lanes, b.lanes);
}
inline Four operator*(Four a, Four b)
{
    return _mm_mul_ps(a.lanes, b.lanes);
}

/// Four of a block's rows as columns, four columns wide.
inline void transposeFour(const Four* in, Four* out)
{
    const __m128 a = _mm_unpacklo_ps(in[0].lanes, in[1].lanes);
    const __m128 b = _mm_unpackhi_ps(in[0].lanes, in[1].lanes);
    const __m128 c = _mm_unpacklo_ps(in[2].lanes, in[3].lanes);
    const __m128 d = _mm_unpackhi_ps(in[2].lanes, in[3].lanes);
    out[0] = _mm_movelh_ps(a, c);
    out[1] = _mm_movehl_ps(c, a);
    out[2] = _mm_movelh_ps(b, d);
    out[3] = _mm_movehl_ps(d, b);
}

struct ZigzagPlaces
{
    std::uint8_t ofTransposed[64]; // 8·u + v to k
    std::uint8_t transposed[64];   // and back
};

constexpr ZigzagPlaces makePlaces()
{
    ZigzagPlaces places{};
    for (std::size_t k = 0; k < 64; ++k) {
        const auto at = static_cast<std::uint8_t>(8 * (kZigzag[k] % 8) + kZigzag[k] / 8);
        places.transposed[k] = at;
        places.ofTransposed[at] = static_cast<std::uint8_t>(k);
    }
    return places;
}

constexpr ZigzagPlaces kPlaces = makePlaces();

struct Sse2Block
{
    int dc;
    bool large;
    std::uint64_t mask;
    alignas(16) std::int16_t coefficients[64]; // transposed: 8·u + v

    static bool isFlat(const std::int8_t* samples) { return allAlike(samples); }
    static int quantised(float value) { return _mm_cvtss_si32(_mm_set_ss(value)); }

    static void transform(const Pending* pending, Sse2Block* const* blocks, int count)
    {
        for (int i = 0; i < count; ++i)
            blocks[i]->transformOne(pending[i].samples, pending[i].scale);
    }

    void transformOne(const std::int8_t* samples, const float* scale)
    {
        Four left[8];
        Four right[8];
        for (std::size_t y = 0; y < 8; ++y) {
            const __m128i bytes =
                _mm_loadl_epi64(reinterpret_cast<const __m128i*>(samples + y * 8));
            const __m128i words = _mm_srai_epi16(_mm_unpacklo_epi8(bytes, bytes), 8);
            left[y] = _mm_cvtepi32_ps(_mm_srai_epi32(_mm_unpacklo_epi16(words, words), 16));
            right[y] = _mm_cvtepi32_ps(_mm_srai_epi32(_mm_unpackhi_epi16(words, words), 16));
        }
        transformEight(left);
        transformEight(right);
        Four upper[8]; // vertical frequencies 0 to 3
        Four lower[8];
        transposeFour(left, upper);
        transposeFour(left + 4, lower);
        transposeFour(right, upper + 4);
        transposeFour(right + 4, lower + 4);
        transformEight(upper);
        transformEight(lower);

        std::uint64_t present = 0;
        const __m128i zero = _mm_setzero_si128();
        for (std::size_t u = 0; u < 8; u += 2) {
            __m128i words[2];
            for (std::size_t i = 0; i < 2; ++i) {
                const float* factors = scale + 8 * (u + i);
                const __m128 a = _mm_mul_ps(upper[u + i].lanes, _mm_loadu_ps(factors));
                const __m128 b = _mm_mul_ps(lower[u + i].lanes, _mm_loadu_ps(factors + 4));
                words[i] = _mm_packs_epi32(_mm_cvtps_epi32(a), _mm_cvtps_epi32(b));
                _mm_store_si128(reinterpret_cast<__m128i*>(coefficients + 8 * (u + i)), words[i]);
            }
            const __m128i empty = _mm_cmpeq_epi8(_mm_packs_epi16(words[0], words[1]), zero);
            const auto bits = static_cast<std::uint64_t>(~_mm_movemask_epi8(empty) & 0xFFFF);
            present |= bits << (8 * u);
        }
        mask = 0;
        large = false;
        for (present &= ~std::uint64_t{1}; present != 0; present &= present - 1) {
            const int place = lowestBit(present);
            mask |= std::uint64_t{1} << kPlaces.ofTransposed[place];
            large = large || coefficients[place] < -126 || coefficients[place] > 126;
        }
        dc = coefficients[0];
    }

    int value(int k) const { return coefficients[kPlaces.transposed[k]]; }

    Token small(int k) const { return kSmallTokens.of[value(k) & 255]; }
};

/// Four colours as pairs of 16 bits: blue and red, green and nothing. Reads 16 bytes.
struct ColourPairs
{
    __m128i blueRed;
    __m128i green;
};

inline ColourPairs loadFour(const std::uint8_t* in)
{
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in));
    const __m128i low = _mm_unpacklo_epi32(v, _mm_srli_si128(v, 3));
    const __m128i high = _mm_unpacklo_epi32(_mm_srli_si128(v, 6), _mm_srli_si128(v, 9));
    const __m128i dwords = _mm_unpacklo_epi64(low, high);
    return {_mm_and_si128(dwords, _mm_set1_epi32(0x00FF00FF)),
            _mm_and_si128(_mm_srli_epi32(dwords, 8), _mm_set1_epi32(0xFF))};
}

inline __m128i pairOf(int low, int high)
{
    return _mm_set1_epi32((low & 0xFFFF) | static_cast<int>(static_cast<unsigned>(high) << 16));
}

inline __m128i convert(const ColourPairs& colours, __m128i blueRed, __m128i green, __m128i offset)
{
    const __m128i sum = _mm_add_epi32(_mm_madd_epi16(colours.blueRed, blueRed),
                                      _mm_madd_epi16(colours.green, green));
    return _mm_srai_epi32(_mm_add_epi32(sum, offset), kColourShift);
}

void lumaRow(const std::uint8_t* in, std::int32_t count, std::int8_t* y)
{
    const __m128i blueRed = pairOf(kLumaBlue, kLumaRed);
    const __m128i green = pairOf(kLumaGreen, 0);
    const __m128i offset = _mm_set1_epi32(kLumaOffset);
    std::int32_t i = 0;
    for (; i + 10 <= count; i += 8, in += 24) {
        const __m128i words = _mm_packs_epi32(convert(loadFour(in), blueRed, green, offset),
                                              convert(loadFour(in + 12), blueRed, green, offset));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(y + i), _mm_packs_epi16(words, words));
    }
    lumaSpan(in, count - i, y + i);
}

inline void storeChroma(const ColourPairs& first, const ColourPairs& second, std::int8_t* cb,
                        std::int8_t* cr)
{
    const __m128i cbBlueRed = pairOf(kCbBlue, kCbRed);
    const __m128i cbGreen = pairOf(kCbGreen, 0);
    const __m128i crBlueRed = pairOf(kCrBlue, kCrRed);
    const __m128i crGreen = pairOf(kCrGreen, 0);
    const __m128i offset = _mm_set1_epi32(kColourRound);
    const __m128i cbWords = _mm_packs_epi32(convert(first, cbBlueRed, cbGreen, offset),
                                            convert(second, cbBlueRed, cbGreen, offset));
    const __m128i crWords = _mm_packs_epi32(convert(first, crBlueRed, crGreen, offset),
                                            convert(second, crBlueRed, crGreen, offset));
    const __m128i bytes = _mm_packs_epi16(cbWords, crWords);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(cb), bytes);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(cr), _mm_unpackhi_epi64(bytes, bytes));
}

void chromaRow(const std::uint8_t* in, std::int32_t count, std::int8_t* cb, std::int8_t* cr)
{
    std::int32_t i = 0;
    for (; i + 10 <= count; i += 8, in += 24)
        storeChroma(loadFour(in), loadFour(in + 12), cb + i, cr + i);
    chromaSpan(in, count - i, cb + i, cr + i);
}

inline __m128i addNeighbours(__m128i a, __m128i b)
{
    const __m128 first = _mm_castsi128_ps(a);
    const __m128 second = _mm_castsi128_ps(b);
    const __m128i even = _mm_castps_si128(_mm_shuffle_ps(first, second, 0x88));
    const __m128i odd = _mm_castps_si128(_mm_shuffle_ps(first, second, 0xDD));
    return _mm_add_epi16(even, odd);
}

inline ColourPairs meanOfEight(const std::uint8_t* upper, const std::uint8_t* lower)
{
    ColourPairs sums[2];
    for (int i = 0; i < 2; ++i) {
        const ColourPairs a = loadFour(upper + 12 * i);
        const ColourPairs b = loadFour(lower + 12 * i);
        sums[i] = {_mm_add_epi16(a.blueRed, b.blueRed), _mm_add_epi16(a.green, b.green)};
    }
    const __m128i two = _mm_set1_epi16(2);
    return {_mm_srli_epi16(_mm_add_epi16(addNeighbours(sums[0].blueRed, sums[1].blueRed), two), 2),
            _mm_srli_epi16(_mm_add_epi16(addNeighbours(sums[0].green, sums[1].green), two), 2)};
}

void chromaRow2x2(const std::uint8_t* upper, const std::uint8_t* lower, std::int32_t count,
                  std::int8_t* cb, std::int8_t* cr)
{
    std::int32_t i = 0;
    for (; i + 9 <= count; i += 8, upper += 48, lower += 48)
        storeChroma(meanOfEight(upper, lower), meanOfEight(upper + 24, lower + 24), cb + i, cr + i);
    chromaSpan2x2(upper, lower, count - i, cb + i, cr + i);
}

/// Past the caches: there is no use in reading what was there before.
void streamBlockRow(const std::int8_t* rows, std::int32_t blocks, std::int8_t* out)
{
    const auto stride = static_cast<std::size_t>(blocks) * 8;
    for (std::int32_t x = 0; x < blocks; ++x, rows += 8) {
        for (std::size_t y = 0; y < 8; y += 2, out += 16) {
            const __m128i upper =
                _mm_loadl_epi64(reinterpret_cast<const __m128i*>(rows + y * stride));
            const __m128i lower =
                _mm_loadl_epi64(reinterpret_cast<const __m128i*>(rows + (y + 1) * stride));
            _mm_stream_si128(reinterpret_cast<__m128i*>(out), _mm_unpacklo_epi64(upper, lower));
        }
    }
}

const Kernels kSse2 = {"sse2",        lumaRow,        chromaRow,
                       chromaRow2x2,  streamBlockRow, tokeniseMcus<Sse2Block>,
                       writeTokenBits};

} // namespace

const Kernels* sse2Kernels()
{
    return &kSse2;
}

} // namespace varnholt::jpeg

#else

const varnholt::jpeg::Kernels* varnholt::jpeg::sse2Kernels()
{
    return nullptr;
}

#endif
