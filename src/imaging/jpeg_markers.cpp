#include "imaging/jpeg_markers.h"

#include <algorithm>

namespace varnholt::jpeg {

namespace {

constexpr int kMarker = 0xFF;
constexpr std::size_t kSegmentText = 65533;

void putWord(ByteWriter& out, std::size_t value)
{
    out.put({static_cast<int>(value >> 8) & 0xFF, static_cast<int>(value) & 0xFF});
}

void startSegment(ByteWriter& out, int marker, std::size_t contentBytes)
{
    out.put({kMarker, marker});
    putWord(out, contentBytes + 2);
}

void putBytes(ByteWriter& out, std::string_view text)
{
    out.put({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

void putHuffmanList(ByteWriter& out, int classAndNumber, const HuffmanList& list)
{
    out.put({classAndNumber});
    out.put({list.bits.data() + 1, 16});
    out.put({list.values.data(), list.values.size()});
}

bool continuesCharacter(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

} // namespace

void writeStart(ByteWriter& out)
{
    out.put({kMarker, 0xD8});
    out.put({kMarker, 0xE0, 0, 16, 'J', 'F', 'I', 'F', 0, 1, 1, 0, 0, 1, 0, 1, 0, 0});
}

void writeComment(ByteWriter& out, std::string_view text)
{
    while (!text.empty()) {
        std::size_t length = std::min(text.size(), kSegmentText);
        if (length < text.size()) {
            std::size_t cut = length;
            while (cut > length - 3 && continuesCharacter(text[cut]))
                --cut;
            if (!continuesCharacter(text[cut]))
                length = cut;
        }
        startSegment(out, 0xFE, length);
        putBytes(out, text.substr(0, length));
        text.remove_prefix(length);
    }
}

void writeQuantTable(ByteWriter& out, int number, const QuantTable& table)
{
    if (std::any_of(table.begin(), table.end(), [](std::uint16_t entry) { return entry > 255; }))
        throw cJpegError("Illegal precission in Quantization Table");
    startSegment(out, 0xDB, 65);
    out.put({number});
    for (const std::uint16_t entry : table)
        out.put({entry});
}

void writeFrame(ByteWriter& out, const SampledPicture& picture)
{
    const std::size_t count = picture.components.size();
    startSegment(out, 0xC0, 6 + 3 * count);
    out.put({8});
    putWord(out, static_cast<std::size_t>(picture.height));
    putWord(out, static_cast<std::size_t>(picture.width));
    out.put({static_cast<int>(count)});
    for (int number = 0; number < static_cast<int>(count); ++number) {
        const SamplingFactors factors =
            picture.components[static_cast<std::size_t>(number)].factors;
        out.put({number + 1, 16 * factors.h + factors.v, tableOf(number)});
    }
}

void writeHuffmanTables(ByteWriter& out, int number, const TablePair& tables)
{
    startSegment(out, 0xC4, 2 * 17 + tables.dc.values.size() + tables.ac.values.size());
    putHuffmanList(out, number, tables.dc);
    putHuffmanList(out, 0x10 + number, tables.ac);
}

void writeScanHeader(ByteWriter& out, std::span<const int> components)
{
    startSegment(out, 0xDA, 4 + 2 * components.size());
    out.put({static_cast<int>(components.size())});
    for (const int number : components)
        out.put({number + 1, 17 * tableOf(number)});
    out.put({0, 63, 0});
}

void writeEnd(ByteWriter& out)
{
    out.put({kMarker, 0xD9});
}

} // namespace varnholt::jpeg
