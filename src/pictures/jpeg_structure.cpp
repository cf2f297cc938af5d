#include "pictures/jpeg_structure.h"

#include <QCoreApplication>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

namespace varnholt {

namespace {

void require(bool right)
{
    if (!right) {
        throw BadStructure(BadStructure::damaged);
    }
}

struct Component
{
    int id = 0;
    int horizontal = 0;
    int vertical = 0;
    int quantisation = 0;
};

class Walk
{
public:
    explicit Walk(QByteArrayView bytes)
        : bytes_(bytes)
    {}

    JpegStructure run()
    {
        for (position_ = 2;;) {
            const int marker = nextMarker();
            if (marker == 0xD9) {
                require(structure_.scans > 0);
                return structure_;
            }
            // TEM and the restart markers stand alone (table B.1).
            if (marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7)) {
                continue;
            }
            take(marker, segment());
        }
    }

private:
    /// The next marker's second byte; what stands before it is skipped, as decoders do.
    int nextMarker()
    {
        const char* const end = bytes_.data() + bytes_.size();
        const char* at = bytes_.data() + position_;
        for (;;) {
            at = at < end ? static_cast<const char*>(std::memchr(at, 0xFF, size_t(end - at)))
                          : nullptr;
            if (!at || at + 1 >= end) {
                throw BadStructure(BadStructure::cutOff);
            }
            const int marker = static_cast<unsigned char>(at[1]);
            if (marker == 0xFF) {
                ++at;
                continue;
            }
            at += 2;
            if (marker != 0x00) {
                position_ = at - bytes_.data();
                return marker;
            }
        }
    }

    QByteArrayView segment()
    {
        if (position_ + 2 > bytes_.size()) {
            throw BadStructure(BadStructure::cutOff);
        }
        const qsizetype length = qFromBigEndian<quint16>(bytes_.data() + position_);
        require(length >= 2);
        if (position_ + length > bytes_.size()) {
            throw BadStructure(BadStructure::cutOff);
        }
        const QByteArrayView content = bytes_.sliced(position_ + 2, length - 2);
        position_ += length;
        return content;
    }

    static int byteAt(QByteArrayView content, qsizetype i)
    {
        require(i < content.size());
        return static_cast<unsigned char>(content[i]);
    }
    static int wordAt(QByteArrayView content, qsizetype i)
    {
        return byteAt(content, i) << 8 | byteAt(content, i + 1);
    }

    void take(int marker, QByteArrayView content)
    {
        switch (marker) {
        case 0xC0:
        case 0xC1:
        case 0xC2:
        case 0xC9:
        case 0xCA:
            takeFrame(marker, content);
            break;
        case 0xC4:
            takeHuffmanTables(content);
            break;
        case 0xDA:
            takeScan(content);
            break;
        case 0xDB:
            takeQuantisationTables(content);
            break;
        case 0xDD:
            require(content.size() == 2);
            break;
        case 0xE0:
            if (content.startsWith(QByteArrayView("JFIF\0", 5)) && content.size() >= 12) {
                structure_.jfif = content;
            }
            break;
        case 0xE1:
            if (content.startsWith(QByteArrayView("Exif\0\0", 6)) && content.size() >= 14) {
                structure_.exif = content;
            }
            break;
        case 0xCC:
        case 0xDC:
        case 0xFE:
            break;
        default:
            // Coding processes that nothing shows, and marks with no meaning.
            require(marker >= 0xE0 && marker <= 0xEF);
        }
    }

    /// B.2.2
    void takeFrame(int marker, QByteArrayView content)
    {
        require(components_.empty() && byteAt(content, 0) == 8);
        progressive_ = marker == 0xC2 || marker == 0xCA;
        huffman_ = marker <= 0xC2;
        structure_.pixels = QSize(wordAt(content, 3), wordAt(content, 1));
        const int count = byteAt(content, 5);
        require(!structure_.pixels.isEmpty() && (count == 1 || count == 3 || count == 4) &&
                content.size() == 6 + 3 * count);
        int widest = 1;
        int tallest = 1;
        for (int i = 0; i < count; ++i) {
            const int sampling = byteAt(content, 7 + 3 * i);
            components_.push_back({byteAt(content, 6 + 3 * i), sampling >> 4, sampling & 15,
                                   byteAt(content, 8 + 3 * i)});
            widest = std::max(widest, sampling >> 4);
            tallest = std::max(tallest, sampling & 15);
        }
        for (const Component& component : components_) {
            require(component.horizontal >= 1 && component.horizontal <= 4 &&
                    component.vertical >= 1 && component.vertical <= 4 &&
                    widest % component.horizontal == 0 && tallest % component.vertical == 0);
        }
    }

    /// B.2.4.1
    void takeQuantisationTables(QByteArrayView content)
    {
        for (qsizetype at = 0; at < content.size();) {
            const int table = byteAt(content, at);
            require((table & 15) < 4);
            at += 1 + ((table >> 4) != 0 ? 128 : 64);
            require(at <= content.size());
            quantisation_[size_t(table & 15)] = true;
        }
    }

    /// B.2.4.2; the codes of a length must fit beside the shorter ones (annex C).
    void takeHuffmanTables(QByteArrayView content)
    {
        for (qsizetype at = 0; at < content.size();) {
            const int table = byteAt(content, at);
            require((table & ~0x10) < 4);
            int symbols = 0;
            bool sound = true;
            int code = 0;
            for (int length = 1; length <= 16; ++length) {
                const int count = byteAt(content, at + length);
                symbols += count;
                code += count;
                sound = sound && (count == 0 || code < 1 << length);
                code <<= 1;
            }
            at += 17;
            require(symbols <= 256 && at + symbols <= content.size());
            if ((table & 0x10) == 0) {
                for (int i = 0; i < symbols; ++i) {
                    sound = sound && byteAt(content, at + i) <= 15;
                }
            }
            huffman(table) = sound ? Table::Sound : Table::Broken;
            at += symbols;
        }
    }

    /// B.2.3
    void takeScan(QByteArrayView content)
    {
        if (++structure_.scans > largestJpegScans) {
            throw BadStructure(
                QT_TRANSLATE_NOOP("Picture", "The picture \"%1\" has too many scans."));
        }
        require(!components_.empty());
        const int count = byteAt(content, 0);
        require(count >= 1 && count <= 4 && content.size() == 4 + 2 * count);
        const int first = byteAt(content, 1 + 2 * count);
        const int last = byteAt(content, 2 + 2 * count);
        const int before = byteAt(content, 3 + 2 * count) >> 4;
        const int after = byteAt(content, 3 + 2 * count) & 15;
        if (progressive_) {
            require(first == 0 ? last == 0 : count == 1 && first <= last && last <= 63);
            require(after <= 13 && (before == 0 || after == before - 1));
        }
        int blocks = 0;
        std::vector<int> taken;
        for (int i = 0; i < count; ++i) {
            const int id = byteAt(content, 1 + 2 * i);
            const auto component =
                std::find_if(components_.begin(), components_.end(),
                             [id](const Component& candidate) { return candidate.id == id; });
            require(component != components_.end() &&
                    std::find(taken.begin(), taken.end(), id) == taken.end());
            taken.push_back(id);
            blocks += component->horizontal * component->vertical;
            require(component->quantisation < 4 && quantisation_[size_t(component->quantisation)]);
            if (huffman_) {
                const int tables = byteAt(content, 2 + 2 * i);
                const bool direct = !progressive_ || (first == 0 && before == 0);
                require(!direct || canDecode(tables >> 4));
                require((progressive_ && first == 0) || canDecode(0x10 | (tables & 15)));
            }
        }
        require(count == 1 || blocks <= 10);
    }

    enum class Table
    {
        Missing,
        Sound,
        Broken
    };

    Table& huffman(int table) { return huffmanTables_[size_t((table >> 4) * 4 + (table & 3))]; }

    bool canDecode(int table)
    {
        if ((table & 15) > 3) {
            return false;
        }
        // Motion pictures leave the usual tables out; decoders put them in.
        const bool usual = !progressive_ && (table & 15) < 2;
        const Table state = huffman(table);
        return state == Table::Sound || (state == Table::Missing && usual);
    }

    QByteArrayView bytes_;
    qsizetype position_ = 0;
    JpegStructure structure_;
    std::vector<Component> components_;
    std::array<bool, 4> quantisation_{};
    std::array<Table, 8> huffmanTables_{};
    bool progressive_ = false;
    bool huffman_ = true;
};

} // namespace

JpegStructure readJpegStructure(QByteArrayView bytes)
{
    return Walk(bytes).run();
}

} // namespace varnholt
