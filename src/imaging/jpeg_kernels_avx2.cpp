#include "imaging/jpeg_kernels_impl.h"

#include "imaging/jpeg_kernel_sets.h"

#if defined(__GNUC__) && defined(__AVX2__)

#include <immintrin.h>

namespace varnholt::jpeg {

namespace {

struct Eight
{
    __m256 lanes;

    Eight() = default;
    Eight(__m256 value)
        : lanes(value)
    {}
    explicit Eight(float value)
        : lanes(_mm256_set1_ps(value))
    {}
};

inline Eight operator+(Eight a, Eight b)
{
    return _mm256_add_ps(a.lanes, b.lanes);
}
inline Eight operator-(Eight a, Eight b)
{
    return _mm256_sub_ps(a.lanes, b.lanes);
}
inline Eight operator*(Eight a, Eight b)
{
    return _mm256_mul_ps(a.lanes, b.lanes);
}

inline void transpose(Eight (&x)[8])
{
    __m256 pairs[8];
    for (int i = 0; i < 4; ++i) {
        pairs[2 * i] = _mm256_unpacklo_ps(x[2 * i].lanes, x[2 * i + 1].lanes);
        pairs[2 * i + 1] = _mm256_unpackhi_ps(x[2 * i].lanes, x[2 * i + 1].lanes);
    }
    __m256 fours[8];
    for (int i = 0; i < 8; i += 4) {
        fours[i] = _mm256_shuffle_ps(pairs[i], pairs[i + 2], 0x44);
        fours[i + 1] = _mm256_shuffle_ps(pairs[i], pairs[i + 2], 0xEE);
        fours[i + 2] = _mm256_shuffle_ps(pairs[i + 1], pairs[i + 3], 0x44);
        fours[i + 3] = _mm256_shuffle_ps(pairs[i + 1], pairs[i + 3], 0xEE);
    }
    for (int i = 0; i < 4; ++i) {
        x[i] = _mm256_permute2f128_ps(fours[i], fours[i + 4], 0x20);
        x[i + 4] = _mm256_permute2f128_ps(fours[i], fours[i + 4], 0x31);
    }
}

/// Where packing leaves the coefficients, and the byte shuffles that put them into zigzag
/// order: entry k of table q takes byte k from quarter q, or nothing.
struct Shuffles
{
    alignas(32) std::uint8_t fromQuarter[4][64];
    std::uint8_t word[64]; // place of coefficient k among the packed words
};

constexpr Shuffles makeShuffles()
{
    Shuffles shuffles{};
    for (std::size_t k = 0; k < 64; ++k) {
        const std::size_t u = kZigzag[k] % 8;
        const std::size_t v = kZigzag[k] / 8;
        for (auto& table : shuffles.fromQuarter)
            table[k] = 0x80;
        const std::size_t quarter = 2 * (u / 4) + v / 4;
        shuffles.fromQuarter[quarter][k] = static_cast<std::uint8_t>(4 * (u % 4) + v % 4);
        shuffles.word[k] =
            static_cast<std::uint8_t>(16 * (u / 2) + 8 * (v / 4) + 4 * (u % 2) + v % 4);
    }
    return shuffles;
}

constexpr Shuffles kShuffles = makeShuffles();

struct Avx2Block
{
    int dc;
    bool large;
    std::uint64_t mask;
    alignas(32) std::int16_t words[64]; // as packed
    alignas(32) std::uint8_t bytes[64]; // in zigzag order, limited to −128…127

    static bool isFlat(const std::int8_t* samples)
    {
        const auto* halves = reinterpret_cast<const __m256i*>(samples);
        const __m256i first = _mm256_set1_epi8(samples[0]);
        const __m256i alike =
            _mm256_and_si256(_mm256_cmpeq_epi8(_mm256_loadu_si256(halves), first),
                             _mm256_cmpeq_epi8(_mm256_loadu_si256(halves + 1), first));
        return _mm256_movemask_epi8(alike) == -1;
    }

    static int quantised(float value) { return _mm_cvtss_si32(_mm_set_ss(value)); }

    /// In steps, each for all the blocks: within a step they are independent, and short
    /// enough for the processor to look ahead into the next.
    static void transform(const Pending* pending, Avx2Block* const* blocks, int count)
    {
        alignas(32) float columns[kBatch][64];
        for (int i = 0; i < count; ++i)
            transformColumns(pending[i].samples, columns[i]);
        for (int i = 0; i < count; ++i)
            blocks[i]->transformRows(columns[i], pending[i].scale);
        for (int i = 0; i < count; ++i)
            blocks[i]->sort();
    }

    int value(int k) const { return words[kShuffles.word[k]]; }
    Token small(int k) const { return kSmallTokens.of[bytes[k]]; }

private:
    static void transformColumns(const std::int8_t* samples, float* out)
    {
        Eight x[8];
        for (std::size_t y = 0; y < 8; ++y) {
            x[y] = _mm256_cvtepi32_ps(_mm256_cvtepi8_epi32(
                _mm_loadl_epi64(reinterpret_cast<const __m128i*>(samples + 8 * y))));
        }
        transformEight(x);
        for (std::size_t v = 0; v < 8; ++v)
            _mm256_store_ps(out + 8 * v, x[v].lanes);
    }

    void transformRows(const float* columns, const float* scale)
    {
        Eight x[8];
        for (std::size_t v = 0; v < 8; ++v)
            x[v] = _mm256_load_ps(columns + 8 * v);
        transpose(x);
        transformEight(x);
        for (std::size_t u = 0; u < 8; u += 2) {
            const __m256 a = _mm256_mul_ps(x[u].lanes, _mm256_loadu_ps(scale + 8 * u));
            const __m256 b = _mm256_mul_ps(x[u + 1].lanes, _mm256_loadu_ps(scale + 8 * u + 8));
            _mm256_store_si256(reinterpret_cast<__m256i*>(words + 8 * u),
                               _mm256_packs_epi32(_mm256_cvtps_epi32(a), _mm256_cvtps_epi32(b)));
        }
    }

    void sort()
    {
        const auto* packed = reinterpret_cast<const __m256i*>(words);
        const __m256i left =
            _mm256_packs_epi16(_mm256_load_si256(packed), _mm256_load_si256(packed + 1));
        const __m256i right =
            _mm256_packs_epi16(_mm256_load_si256(packed + 2), _mm256_load_si256(packed + 3));
        const __m256i quarters[4] = {
            _mm256_permute2x128_si256(left, left, 0x00),
            _mm256_permute2x128_si256(left, left, 0x11),
            _mm256_permute2x128_si256(right, right, 0x00),
            _mm256_permute2x128_si256(right, right, 0x11),
        };
        const __m256i low = sorted(quarters, 0);
        const __m256i high = sorted(quarters, 32);
        dc = words[0];
        mask = ~(std::uint64_t{zeros(low)} | (std::uint64_t{zeros(high)} << 32));
        mask &= ~std::uint64_t{1};
        const __m256i limit = _mm256_set1_epi8(126);
        const __m256i notFirst = _mm256_setr_epi32(~255, -1, -1, -1, -1, -1, -1, -1);
        // −128 has no absolute value: as an unsigned byte it is above the limit too.
        const __m256i most = _mm256_max_epu8(_mm256_abs_epi8(high),
                                             _mm256_and_si256(_mm256_abs_epi8(low), notFirst));
        large = _mm256_movemask_epi8(_mm256_cmpeq_epi8(_mm256_max_epu8(most, limit), limit)) != -1;
    }

    /// Puts 32 bytes from `first` on into zigzag order.
    __m256i sorted(const __m256i (&quarters)[4], std::size_t first)
    {
        __m256i result = _mm256_setzero_si256();
        for (std::size_t q = 0; q < 4; ++q) {
            const __m256i places = _mm256_load_si256(
                reinterpret_cast<const __m256i*>(kShuffles.fromQuarter[q] + first));
            result = _mm256_or_si256(result, _mm256_shuffle_epi8(quarters[q], places));
        }
        _mm256_store_si256(reinterpret_cast<__m256i*>(bytes + first), result);
        return result;
    }

    /// A bit for each byte that is 0.
    static std::uint32_t zeros(__m256i value)
    {
        return static_cast<std::uint32_t>(
            _mm256_movemask_epi8(_mm256_cmpeq_epi8(value, _mm256_setzero_si256())));
    }
};

/// Eight colours, four from each of two places, as pairs of 16 bits: blue and red, green and
/// nothing. Reads 16 bytes at each place.
struct ColourPairs
{
    __m256i blueRed;
    __m256i green;
};

inline ColourPairs loadTwiceFour(const std::uint8_t* low, const std::uint8_t* high)
{
    const __m256i blueRed =
        _mm256_setr_epi8(0, -1, 2, -1, 3, -1, 5, -1, 6, -1, 8, -1, 9, -1, 11, -1, 0, -1, 2, -1, 3,
                         -1, 5, -1, 6, -1, 8, -1, 9, -1, 11, -1);
    const __m256i green =
        _mm256_setr_epi8(1, -1, 1, -1, 4, -1, 4, -1, 7, -1, 7, -1, 10, -1, 10, -1, //
                         1, -1, 1, -1, 4, -1, 4, -1, 7, -1, 7, -1, 10, -1, 10, -1);
    const __m256i v = _mm256_inserti128_si256(
        _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(low))),
        _mm_loadu_si128(reinterpret_cast<const __m128i*>(high)), 1);
    return {_mm256_shuffle_epi8(v, blueRed), _mm256_shuffle_epi8(v, green)};
}

inline __m256i pairOf(int low, int high)
{
    return _mm256_set1_epi32((low & 0xFFFF) | static_cast<int>(static_cast<unsigned>(high) << 16));
}

inline __m256i convert(const ColourPairs& colours, __m256i blueRed, __m256i green, __m256i offset)
{
    const __m256i sum = _mm256_add_epi32(_mm256_madd_epi16(colours.blueRed, blueRed),
                                         _mm256_madd_epi16(colours.green, green));
    return _mm256_srai_epi32(_mm256_sub_epi32(offset, sum), kColourShift);
}

constexpr std::uintptr_t kPrefetchDistance = 1536;

void lumaRow(const std::uint8_t* in, std::int32_t count, std::int8_t* y)
{
    const __m256i blueRed = pairOf(kLumaBlue, kLumaRed);
    const __m256i green = pairOf(kLumaGreen[0], kLumaGreen[1]);
    const __m256i offset = _mm256_set1_epi32(kLumaOffset);
    std::int32_t i = 0;
    // The low half of a vector takes the first 16 pixels, the high half the next 16.
    for (; i + 34 <= count; i += 32, in += 96) {
        // The processor's own looking ahead ends with a page of memory.
        __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(in) +
                                                         kPrefetchDistance));
        __builtin_prefetch(reinterpret_cast<const void*>(reinterpret_cast<std::uintptr_t>(in) +
                                                         kPrefetchDistance + 64));
        __m256i sums[4];
        for (int k = 0; k < 4; ++k)
            sums[k] = convert(loadTwiceFour(in + 12 * k, in + 48 + 12 * k), blueRed, green, offset);
        const __m256i bytes = _mm256_packs_epi16(_mm256_packs_epi32(sums[0], sums[1]),
                                                 _mm256_packs_epi32(sums[2], sums[3]));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(y + i), bytes);
    }
    lumaSpan(in, count - i, y + i);
}

/// 16 samples of each kind; the low halves hold pixels 0 to 7.
inline void storeChroma(const ColourPairs& first, const ColourPairs& second, std::int8_t* cb,
                        std::int8_t* cr)
{
    const __m256i cbBlueRed = pairOf(kCbBlue, kCbRed);
    const __m256i cbGreen = pairOf(kCbGreen[0], kCbGreen[1]);
    const __m256i crBlueRed = pairOf(kCrBlue, kCrRed);
    const __m256i crGreen = pairOf(kCrGreen[0], kCrGreen[1]);
    const __m256i offset = _mm256_set1_epi32(kChromaOffset);
    const __m256i cbWords = _mm256_packs_epi32(convert(first, cbBlueRed, cbGreen, offset),
                                               convert(second, cbBlueRed, cbGreen, offset));
    const __m256i crWords = _mm256_packs_epi32(convert(first, crBlueRed, crGreen, offset),
                                               convert(second, crBlueRed, crGreen, offset));
    const __m256i bytes =
        _mm256_permute4x64_epi64(_mm256_packs_epi16(cbWords, crWords), 0xD8); // halves 0 2 1 3
    _mm_storeu_si128(reinterpret_cast<__m128i*>(cb), _mm256_castsi256_si128(bytes));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(cr), _mm256_extracti128_si256(bytes, 1));
}

void chromaRow(const std::uint8_t* in, std::int32_t count, std::int8_t* cb, std::int8_t* cr)
{
    std::int32_t i = 0;
    for (; i + 18 <= count; i += 16, in += 48)
        storeChroma(loadTwiceFour(in, in + 24), loadTwiceFour(in + 12, in + 36), cb + i, cr + i);
    chromaSpan(in, count - i, cb + i, cr + i);
}

inline __m256i addNeighbours(__m256i a, __m256i b)
{
    const __m256 first = _mm256_castsi256_ps(a);
    const __m256 second = _mm256_castsi256_ps(b);
    const __m256i even = _mm256_castps_si256(_mm256_shuffle_ps(first, second, 0x88));
    const __m256i odd = _mm256_castps_si256(_mm256_shuffle_ps(first, second, 0xDD));
    return _mm256_add_epi16(even, odd);
}

/// Eight means: four of the 8 by 2 colours at the places, four of those 48 bytes on.
inline ColourPairs meanOfTwiceEight(const std::uint8_t* upper, const std::uint8_t* lower)
{
    ColourPairs sums[2];
    for (int i = 0; i < 2; ++i) {
        const ColourPairs a = loadTwiceFour(upper + 12 * i, upper + 48 + 12 * i);
        const ColourPairs b = loadTwiceFour(lower + 12 * i, lower + 48 + 12 * i);
        sums[i] = {_mm256_add_epi16(a.blueRed, b.blueRed), _mm256_add_epi16(a.green, b.green)};
    }
    const __m256i two = _mm256_set1_epi16(2);
    return {
        _mm256_srli_epi16(_mm256_add_epi16(addNeighbours(sums[0].blueRed, sums[1].blueRed), two),
                          2),
        _mm256_srli_epi16(_mm256_add_epi16(addNeighbours(sums[0].green, sums[1].green), two), 2)};
}

void chromaRow2x2(const std::uint8_t* upper, const std::uint8_t* lower, std::int32_t count,
                  std::int8_t* cb, std::int8_t* cr)
{
    std::int32_t i = 0;
    for (; i + 17 <= count; i += 16, upper += 96, lower += 96)
        storeChroma(meanOfTwiceEight(upper, lower), meanOfTwiceEight(upper + 24, lower + 24),
                    cb + i, cr + i);
    chromaSpan2x2(upper, lower, count - i, cb + i, cr + i);
}

const Kernels kAvx2 = {"avx2",        lumaRow,        chromaRow,
                       chromaRow2x2,  streamBlockRow, tokeniseMcus<Avx2Block>,
                       writeTokenBits};

} // namespace

const Kernels* avx2Kernels()
{
    const bool present = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("bmi") &&
                         __builtin_cpu_supports("bmi2");
    return present ? &kAvx2 : nullptr;
}

} // namespace varnholt::jpeg

#else

const varnholt::jpeg::Kernels* varnholt::jpeg::avx2Kernels()
{
    return nullptr;
}

#endif
