#include "imaging/jpeg_huffman.h"

#include "imaging/jpeg_tables.h"

#include <cstddef>

namespace varnholt {

namespace {

constexpr int kReserved = 256; // takes the code of all ones and is dropped at the end
constexpr std::size_t kLongest = 16;

struct Entry
{
    std::uint64_t count;
    int symbol;
    int length; // CODESIZE
    int next;   // OTHERS: the next entry of the same branch, −1 at its end
};

/// The entry with the least count above 0 except `other`; of several the largest symbol.
int leastFrequent(const std::vector<Entry>& entries, int other)
{
    int least = -1;
    for (int i = 0; i < static_cast<int>(entries.size()); ++i) {
        const std::uint64_t count = entries[static_cast<std::size_t>(i)].count;
        if (i != other && count != 0 &&
            (least < 0 || count <= entries[static_cast<std::size_t>(least)].count))
            least = i;
    }
    return least;
}

/// T.81 figure K.1: merges the two rarest branches until one is left.
void findLengths(std::vector<Entry>& entries)
{
    const auto at = [&entries](int i) -> Entry& { return entries[static_cast<std::size_t>(i)]; };
    for (;;) {
        const int first = leastFrequent(entries, -1);
        const int second = leastFrequent(entries, first);
        if (second < 0)
            return;
        at(first).count += at(second).count;
        at(second).count = 0;
        int last = first;
        for (int i = first; i >= 0; i = at(i).next) {
            ++at(i).length;
            last = i;
        }
        at(last).next = second;
        for (int i = second; i >= 0; i = at(i).next)
            ++at(i).length;
    }
}

/// T.81 figure K.3: takes two codes of a length that is too long away by giving their prefix
/// to one of them and hanging the other beside a shorter code.
void shortenTo16(std::vector<int>& bits)
{
    for (std::size_t i = bits.size() - 1; i > kLongest; --i) {
        while (bits[i] > 0) {
            std::size_t j = i - 2;
            while (bits[j] == 0)
                --j;
            bits[i] -= 2;
            ++bits[i - 1];
            bits[j + 1] += 2;
            --bits[j];
        }
    }
    std::size_t longest = kLongest;
    while (bits[longest] == 0)
        --longest;
    --bits[longest];
}

} // namespace

HuffmanList optimalHuffmanList(const SymbolCounts& counts)
{
    std::vector<Entry> entries;
    for (int symbol = 0; symbol < 256; ++symbol) {
        if (counts[static_cast<std::size_t>(symbol)] != 0)
            entries.push_back({counts[static_cast<std::size_t>(symbol)], symbol, 0, -1});
    }
    HuffmanList list;
    if (entries.empty())
        return list;
    entries.push_back({1, kReserved, 0, -1});
    findLengths(entries);

    std::vector<int> bits(entries.size() + kLongest + 1);
    for (const Entry& entry : entries)
        ++bits[static_cast<std::size_t>(entry.length)];
    shortenTo16(bits);
    for (std::size_t i = 1; i <= kLongest; ++i)
        list.bits[i] = static_cast<std::uint8_t>(bits[i]);

    // T.81 figure K.4: by length as first found, then by symbol.
    for (std::size_t length = 1; length < bits.size(); ++length) {
        for (const Entry& entry : entries) {
            if (entry.symbol != kReserved && static_cast<std::size_t>(entry.length) == length)
                list.values.push_back(static_cast<std::uint8_t>(entry.symbol));
        }
    }
    return list;
}

std::array<HuffmanCode, 256> huffmanCodes(const HuffmanList& list)
{
    std::array<HuffmanCode, 256> codes{};
    std::size_t next = 0;
    std::uint32_t code = 0;
    for (std::uint8_t length = 1; length <= kLongest; ++length, code <<= 1) {
        for (int i = 0; i < list.bits[length]; ++i, ++next, ++code) {
            if (next >= list.values.size() || codes[list.values[next]].length != 0 ||
                code + 1 >= (1U << length))
                throw cJpegError("Bad Huffman Table");
            codes[list.values[next]] = {static_cast<std::uint16_t>(code), length};
        }
    }
    if (next != list.values.size())
        throw cJpegError("Bad Huffman Table");
    return codes;
}

} // namespace varnholt
