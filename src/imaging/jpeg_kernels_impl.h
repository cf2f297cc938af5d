#pragma once

// What the kernel sets share. Each set is compiled with its own instruction set, so all of
// this has internal linkage, and no inline function of the library may be called from here:
// the linker could keep a copy that not every processor can run.

#include "imaging/jpeg_kernels.h"
#include "imaging/jpeg_kernels_colour.h"
#include "imaging/jpeg_tables.h"

#include <cstring>

#if defined(__GNUC__) && defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace varnholt::jpeg {
namespace {

inline int bitLength(unsigned value)
{
#if defined(__GNUC__)
    return value == 0 ? 0 : 32 - __builtin_clz(value);
#else
    int length = 0;
    for (; value != 0; value >>= 1)
        ++length;
    return length;
#endif
}

inline int lowestBit(std::uint64_t value)
{
#if defined(__GNUC__)
    return __builtin_ctzll(value);
#else
    int bit = 0;
    for (; (value & 1U) == 0; value >>= 1)
        ++bit;
    return bit;
#endif
}

inline int bitCount(std::uint64_t value)
{
#if defined(__GNUC__)
    return __builtin_popcountll(value);
#else
    int count = 0;
    for (; value != 0; value &= value - 1)
        ++count;
    return count;
#endif
}

/// The bits that follow a code of size `size` (T.81 F.1.2.1): a negative value less one.
inline unsigned valueWord(int value, int size)
{
    return static_cast<unsigned>(value + (value >> 31)) & ((1U << size) - 1U);
}

/// One-dimensional forward DCT of eight values each in its own lane, without normalisation:
/// Arai, Agui, Nakajima, "A fast DCT-SQ scheme for images" (1988), 5 multiplications.
template <class V>
inline void transformEight(V (&x)[8])
{
    const V s07 = x[0] + x[7];
    const V d07 = x[0] - x[7];
    const V s16 = x[1] + x[6];
    const V d16 = x[1] - x[6];
    const V s25 = x[2] + x[5];
    const V d25 = x[2] - x[5];
    const V s34 = x[3] + x[4];
    const V d34 = x[3] - x[4];

    const V even0 = s07 + s34;
    const V even3 = s07 - s34;
    const V even1 = s16 + s25;
    const V even2 = s16 - s25;
    x[0] = even0 + even1;
    x[4] = even0 - even1;
    const V turned = (even2 + even3) * V(0.707106781F);
    x[2] = even3 + turned;
    x[6] = even3 - turned;

    const V odd0 = d34 + d25;
    const V odd1 = d25 + d16;
    const V odd2 = d16 + d07;
    const V shared = (odd0 - odd2) * V(0.382683433F);
    const V low = odd0 * V(0.541196100F) + shared;
    const V high = odd2 * V(1.306562965F) + shared;
    const V middle = odd1 * V(0.707106781F);
    const V plus = d07 + middle;
    const V minus = d07 - middle;
    x[5] = minus + low;
    x[3] = minus - low;
    x[1] = plus + high;
    x[7] = plus - high;
}

/// Whether 64 samples are all alike.
inline bool allAlike(const std::int8_t* samples)
{
    std::uint64_t first;
    std::memcpy(&first, samples, 8);
    std::uint64_t differences = first ^ ((first << 8) | (first >> 56));
    for (int i = 8; i < 64; i += 8) {
        std::uint64_t row;
        std::memcpy(&row, samples + i, 8);
        differences |= row ^ first;
    }
    return differences == 0;
}

/// The low 11 bits of an AC token (size and value bits) for the values −126 to 126 as bytes;
/// nothing for the others.
struct SmallTokens
{
    Token of[256];
};

constexpr SmallTokens makeSmallTokens()
{
    SmallTokens tokens{};
    for (int value = -126; value <= 126; ++value) {
        int size = 0;
        while (((value < 0 ? -value : value) >> size) != 0)
            ++size;
        const int bits = value < 0 ? value + (1 << size) - 1 : value;
        tokens.of[value & 255] = static_cast<Token>((size << kInlineBits) | bits);
    }
    return tokens;
}

alignas(64) constexpr SmallTokens kSmallTokens = makeSmallTokens();

constexpr unsigned kZeroRun = 15U << 4; // ZRL: sixteen zeros

inline Token* putToken(unsigned symbol, unsigned bits, std::uint64_t* counts, Token* out)
{
    ++counts[symbol];
    *out++ = static_cast<Token>((symbol << kInlineBits) | bits);
    return out;
}

inline Token* putValue(unsigned symbol, int size, int value, std::uint64_t* counts, Token* out)
{
    const unsigned bits = valueWord(value, size);
    if (size <= kInlineBits)
        return putToken(symbol, bits, counts, out);
    out = putToken(symbol, 0, counts, out);
    *out++ = static_cast<Token>(bits);
    return out;
}

inline Token* putDc(unsigned table, int difference, ScanState& state, std::uint64_t* counts,
                    Token* out)
{
    const auto size = bitLength(static_cast<unsigned>(difference < 0 ? -difference : difference));
    const unsigned symbol = table | (static_cast<unsigned>(size) << 4) | (kDcMark + state.open);
    return putValue(symbol, size, difference, counts, out);
}

/// A block to be transformed: 64 samples, and how to quantise them.
struct Pending
{
    const std::int8_t* samples;
    const float* scale;
};

/// What a `Block` does: transforms and quantises 64 samples and gives the results.
///   static bool isFlat(samples)            all are alike
///   static void transform(const Pending*, Block* const*, int count)   sets dc, large, mask
///   static int quantised(float)            one coefficient, rounded in the same way
///   int dc
///   bool large                             some AC coefficient is beyond kSmallTokens
///   std::uint64_t mask                     bit k set when AC coefficient k is not 0
///   Token small(int k), int value(int k)   coefficient k as in kSmallTokens, and as it is

/// Some non-zero coefficient comes after more than 15 zeros.
inline bool hasLongRun(std::uint64_t mask)
{
    std::uint64_t near = mask | 1U;
    for (int i = 1; i <= 8; i *= 2)
        near |= near << i;
    return (mask & ~(near << 1)) != 0;
}

/// The AC coefficients of any block.
template <class Block>
Token* tokeniseCarefully(const Block& block, unsigned table, std::uint64_t* counts, Token* out)
{
    int before = 0;
    for (std::uint64_t mask = block.mask; mask != 0; mask &= mask - 1) {
        const int k = lowestBit(mask);
        int run = k - before - 1;
        before = k;
        for (; run > 15; run -= 16)
            out = putToken(table | kZeroRun, 0, counts, out);
        const int value = block.value(k);
        const int size = bitLength(static_cast<unsigned>(value < 0 ? -value : value));
        const unsigned symbol =
            table | (static_cast<unsigned>(run) << 4) | static_cast<unsigned>(size);
        out = putValue(symbol, size, value, counts, out);
    }
    return out;
}

template <class Block>
inline Token* tokeniseBlock(const Block& block, int component, unsigned table, ScanState& state,
                            std::uint64_t* counts, Token* out)
{
    constexpr std::uint64_t kLast = std::uint64_t{1} << 63;
    out = putDc(table, block.dc - state.prediction[component], state, counts, out);
    state.prediction[component] = block.dc;
    state.open = (block.mask & kLast) == 0 ? 1 + (table >> 8) : 0;
    if (block.large || hasLongRun(block.mask))
        return tokeniseCarefully(block, table, counts, out);

    // How many coefficients there are is hard to foresee for the processor. So they are taken
    // four at a time, and what is too many is overwritten and not counted.
    constexpr int kAtATime = 4;
    const int coefficients = bitCount(block.mask);
    std::uint64_t mask = block.mask;
    unsigned before = 1;
    for (int i = 0; i < coefficients; i += kAtATime) {
        for (int j = 0; j < kAtATime; ++j) {
            const auto k = static_cast<unsigned>(lowestBit(mask | kLast));
            mask &= mask - 1;
            const unsigned run = k - before;
            before = k + 1;
            const unsigned token =
                (((table | (run << 4)) << kInlineBits) + block.small(static_cast<int>(k))) & 0xFFFF;
            counts[token >> kInlineBits] += i + j < coefficients ? 1U : 0U;
            out[i + j] = static_cast<Token>(token);
        }
    }
    return out + coefficients;
}

constexpr int kBatch = 12; // at least the ten blocks an MCU may have

/// Calls `real(component number, component, samples)` or `made(component number, component)`
/// for each block of an MCU.
template <class Real, class Made>
inline void forEachBlock(const McuRow& row, std::int32_t mcu, Real real, Made made)
{
    for (int c = 0; c < row.count; ++c) {
        const ScanComponent& component = row.components[c];
        for (int v = 0; v < component.v; ++v) {
            for (int h = 0; h < component.h; ++h) {
                const std::int32_t x = mcu * component.h + h;
                if (v < component.blockRows && x < component.blocksWide) {
                    const auto block = static_cast<std::ptrdiff_t>(v) * component.blocksWide + x;
                    real(c, component, component.samples + 64 * block);
                } else {
                    made(c, component);
                }
            }
        }
    }
}

template <class Block>
Token* tokeniseMcus(const McuRow& row, std::int32_t first, std::int32_t last, ScanState& state,
                    std::uint64_t* counts, Token* out)
{
    // Some blocks' transforms together first: they do not wait for each other, as the tokens'
    // branches would make them.
    Block blocks[kBatch];
    int blocksInMcu = 0;
    for (int c = 0; c < row.count; ++c)
        blocksInMcu += row.components[c].h * row.components[c].v;
    const std::int32_t mcusAtATime = kBatch / blocksInMcu;
    for (; first < last; first += mcusAtATime) {
        const std::int32_t end = first + mcusAtATime < last ? first + mcusAtATime : last;
        Pending pending[kBatch];
        Block* targets[kBatch];
        int count = 0;
        Block* next = blocks;
        const auto transform = [&](int, const ScanComponent& component,
                                   const std::int8_t* samples) {
            // Flat blocks are frequent in drawn pictures; they have a first coefficient only.
            if (Block::isFlat(samples)) {
                next->dc =
                    Block::quantised(64.0F * static_cast<float>(samples[0]) * component.scale[0]);
                next->mask = 0;
                next->large = false;
            } else {
                pending[count] = {samples, component.scale};
                targets[count++] = next;
            }
            ++next;
        };
        for (std::int32_t mcu = first; mcu < end; ++mcu)
            forEachBlock(row, mcu, transform, [](int, const ScanComponent&) {});
        Block::transform(pending, targets, count);

        next = blocks;
        const auto tokenise = [&](int c, const ScanComponent& component, const std::int8_t*) {
            out = tokeniseBlock(*next++, c, static_cast<unsigned>(component.table) << 8, state,
                                counts, out);
        };
        const auto makeUp = [&](int, const ScanComponent& component) {
            // Outside the picture any block will do; the cheapest repeats the DC.
            const auto table = static_cast<unsigned>(component.table);
            out = putDc(table << 8, 0, state, counts, out);
            state.open = 1 + table;
        };
        for (std::int32_t mcu = first; mcu < end; ++mcu)
            forEachBlock(row, mcu, tokenise, makeUp);
    }
    return out;
}

inline void storeBlockRow(const std::int8_t* rows, std::int32_t blocks, std::int8_t* out)
{
    const auto stride = static_cast<std::size_t>(blocks) * 8;
    for (std::int32_t x = 0; x < blocks; ++x, rows += 8) {
        for (std::size_t y = 0; y < 8; ++y, out += 8)
            std::memcpy(out, rows + y * stride, 8);
    }
}

#if defined(__GNUC__) && defined(__SSE2__)
/// The same past the caches: there is no use in reading what was there before.
inline void streamBlockRow(const std::int8_t* rows, std::int32_t blocks, std::int8_t* out)
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
    _mm_sfence(); // whoever encodes may be another thread
}
#endif

inline void storeBigEndian(std::uint8_t* out, std::uint64_t value)
{
#if defined(__GNUC__) && defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
    value = __builtin_bswap64(value);
    std::memcpy(out, &value, 8);
#else
    for (int i = 7; i >= 0; --i, value >>= 8)
        out[i] = static_cast<std::uint8_t>(value);
#endif
}

inline std::uint8_t* writeTokenBits(const Token*& from, const Token* end, const SymbolCodes& codes,
                                    BitState& state, std::uint8_t* out)
{
    const Token* tokens = from;
    std::uint64_t bits = state.bits;
    unsigned held = state.count;
    // Bits above the held ones are left over from before; the shift to the top drops them.
    while (tokens < end) {
        const Token token = *tokens++;
        const std::uint32_t quick = codes.quick[token >> kInlineBits];
        if ((quick & kNotQuick) != 0) {
            const int symbol = token >> kInlineBits;
            const auto length = static_cast<unsigned>(codes.full[symbol] & 255U);
            const auto size = static_cast<unsigned>(valueBits(symbol));
            const unsigned value = size > kInlineBits ? *tokens++ : token & 127U;
            bits = (((bits << length) | (codes.full[symbol] >> 8)) << size) | value;
            held += length + size;
        } else {
            bits = (bits << (quick & 31U)) | (quick >> 9) | (token & 127U);
            held += quick & 31U;
            if (tokens < end) {
                const std::uint32_t next = codes.quick[*tokens >> kInlineBits];
                if ((next & kNotQuick) == 0) {
                    bits = (bits << (next & 31U)) | (next >> 9) | (*tokens & 127U);
                    held += next & 31U;
                    ++tokens;
                }
            }
        }
        storeBigEndian(out, bits << (64 - held));
        out += held >> 3;
        held &= 7U;
    }
    from = tokens;
    state.bits = bits;
    state.count = held;
    return out;
}

} // namespace
} // namespace varnholt::jpeg
