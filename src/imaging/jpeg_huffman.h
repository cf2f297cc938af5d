#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace varnholt {

/// A Huffman table as a DHT segment holds it: how many codes there are of each length 1 to
/// 16 (entry 0 unused), and the symbols in the order of their codes.
struct HuffmanList
{
    std::array<std::uint8_t, 17> bits{};
    std::vector<std::uint8_t> values;
};

/// How often each symbol 0 to 255 occurs.
using SymbolCounts = std::array<std::uint64_t, 256>;

/// The best table for these counts by the procedure of ITU-T T.81 K.2: no code is all ones,
/// none longer than 16 bits. Symbols that do not occur have no code.
HuffmanList optimalHuffmanList(const SymbolCounts& counts);

struct HuffmanCode
{
    std::uint16_t code = 0;
    std::uint8_t length = 0; ///< 0: the symbol has no code
};

/// The codes of a list by T.81 C.2. Raises "Bad Huffman Table" when the list is none: counts
/// and symbols that do not agree, a symbol twice, more codes of a length than there are left,
/// the code of all ones.
std::array<HuffmanCode, 256> huffmanCodes(const HuffmanList& list);

} // namespace varnholt
