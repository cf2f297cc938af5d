#pragma once

#include <cstddef>
#include <cstdint>

/// The encoder's inner loops, written once for plain C++, SSE2 and AVX2, and the choice
/// between them. All give the same bits: integers where possible, and floating point in the
/// same order of operations without fused multiply-add.
namespace varnholt::jpeg {

/// A token is 16 bits of the entropy-coded scan to come: bits 15 to 7 name the symbol, bits
/// 6 to 0 hold the value bits that follow its code, when there are up to 7. A longer value
/// follows in a 16-bit word of its own. A scan is one run of tokens; nothing else need be
/// known to write it.
///
/// A symbol is 256·(table: 0 luminance, 1 chrominance) + 16·run + size for an AC symbol (T.81
/// F.1.2.2); AC sizes end at 10. A DC symbol is 256·table + 16·category + 13 to 15: it says
/// too whether the block before it is still to be closed by an end-of-block code, 14 with
/// that of table 0, 15 with that of table 1. Such a code has a token of its own only at the
/// end of a scan.
using Token = std::uint16_t;
inline constexpr int kInlineBits = 7;
inline constexpr int kSymbols = 512;
inline constexpr int kDcMark = 13;

// Static, as each kernel set must have its own copies, made for its own processors.
static constexpr bool isDc(int symbol)
{
    return (symbol & 15) >= kDcMark;
}

static constexpr int valueBits(int symbol)
{
    return isDc(symbol) ? (symbol >> 4) & 15 : symbol & 15;
}

/// No token takes more bytes than this: two codes of 16 bits and 7 value bits. With a word
/// there are up to 11, but the word counts as a token too.
inline constexpr int kTokenBytes = 5;

/// No block takes more tokens and words than this: 64 of each, and room to work in.
inline constexpr int kBlockTokens = 132;

/// One component's part of an MCU row.
struct ScanComponent
{
    const std::int8_t* samples = nullptr; ///< the MCU row's first block, see ComponentPlane
    std::int32_t blocksWide = 0; ///< blocks there are; those to the right of them are made up
    std::int32_t blockRows = 0;  ///< the same downwards, within this MCU row
    int h = 1;                   ///< blocks of an MCU across
    int v = 1;                   ///< and down
    int table = 0;
    const float* scale = nullptr; ///< jpeg_tables.h
};

struct McuRow
{
    ScanComponent components[3];
    int count = 0;
};

/// What goes on from MCU to MCU.
struct ScanState
{
    std::int32_t prediction[3] = {};
    unsigned open = 0; ///< 1 + table of a block not yet closed, 0 when there is none
};

/// How symbols are written. `quick`: bits 31 to 9 the code, shifted up by the number of value
/// bits, bits 4 to 0 the length of both. Where that does not fit, or the value is in a word,
/// bit 5 is set and `full` holds the code from bit 8 on and its length, without the value.
struct SymbolCodes
{
    std::uint32_t quick[kSymbols] = {};
    std::uint64_t full[kSymbols] = {};
};
inline constexpr std::uint32_t kNotQuick = 32;
inline constexpr int kQuickBits = 23;

/// Bits not yet written: the lowest `count` (below 8) of `bits`.
struct BitState
{
    std::uint64_t bits = 0;
    unsigned count = 0;
};

/// Samples are level-shifted by 128. Colours are rows of blue, green, red bytes. With
/// 16-bit fractions, halves rounded up:
/// Y = 0.299 R + 0.587 G + 0.114 B, Cb = 128 − 0.16874 R − 0.33126 G + 0.5 B,
/// Cr = 128 + 0.5 R − 0.41869 G − 0.08131 B.
struct Kernels
{
    const char* name;

    void (*lumaRow)(const std::uint8_t* colours, std::int32_t count, std::int8_t* y);
    void (*chromaRow)(const std::uint8_t* colours, std::int32_t count, std::int8_t* cb,
                      std::int8_t* cr);
    /// `count` samples from 2·count colours of two rows, each two by two averaged first, to a
    /// whole number with halves rounded up.
    void (*chromaRow2x2)(const std::uint8_t* upper, const std::uint8_t* lower, std::int32_t count,
                         std::int8_t* cb, std::int8_t* cr);

    /// Turns eight rows of 8·blocks samples into blocks of 64, at a ComponentPlane's alignment.
    void (*storeBlocks)(const std::int8_t* rows, std::int32_t blocks, std::int8_t* out);

    /// Transforms, quantises and tokenises the MCUs from `first` to before `last`, and counts
    /// the symbols. Returns the end of the tokens.
    Token* (*tokenise)(const McuRow& row, std::int32_t first, std::int32_t last, ScanState& state,
                       std::uint64_t* counts, Token* out);

    /// Writes whole bytes without stuffing, up to kTokenBytes a token and 8 more, and returns
    /// their end.
    /// Stops at `end`, or one after it when the last token's word stands there; moves `tokens`.
    std::uint8_t* (*writeBits)(const Token*& tokens, const Token* end, const SymbolCodes& codes,
                               BitState& state, std::uint8_t* out);
};

/// The fastest this processor has, unless another was forced.
const Kernels& kernels();

/// Every set this processor can run, plain C++ first.
struct KernelList
{
    const Kernels* sets[3];
    int count;
};
const KernelList& availableKernels();

/// For tests: makes kernels() return `set`; null lets it choose again.
void forceKernels(const Kernels* set);

} // namespace varnholt::jpeg
