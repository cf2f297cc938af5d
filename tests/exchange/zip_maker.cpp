#include "exchange/zip_maker.h"

#include <zlib.h>

namespace varnholt::test {

namespace {

/// Little-endian numbers and raw bytes, one behind the other.
class Bytes : public QByteArray
{
public:
    Bytes& number(quint64 value, int size)
    {
        append(reinterpret_cast<const char*>(&value), size);
        return *this;
    }
    Bytes& raw(const QByteArray& bytes)
    {
        append(bytes);
        return *this;
    }
};

/// Without the length and the frame that the library puts around.
QByteArray deflated(const QByteArray& data)
{
    return qCompress(data).sliced(6).chopped(4);
}

} // namespace

QByteArray makeZip(const std::vector<RawMember>& members, const QByteArray& comment, bool large)
{
    Bytes archive;
    Bytes directory;
    quint64 start = 0;
    for (const RawMember& member : members) {
        const QByteArray packed = !member.packed.isEmpty() ? member.packed
                                  : member.deflated        ? deflated(member.data)
                                                           : member.data;
        const quint32 crc = quint32(
            crc32(0, reinterpret_cast<const Bytef*>(member.data.data()), uInt(member.data.size())));
        // From the version needed to the lengths; the same in both headers.
        Bytes common;
        common.number(20, 2).number(member.flags, 2);
        common.number(member.deflated ? 8 : 0, 2);
        common.number(0x58210000, 4)
            .number(crc ^ member.crcError, 4)
            .number(quint64(packed.size()), 4);
        common.number(quint64(member.data.size() + member.sizeError), 4);
        common.number(quint64(member.name.size()), 2);
        if (!member.overlaps) {
            start = quint64(archive.size());
            archive.raw("PK\3\4").raw(common);
            archive.number(0, 2).raw(member.name).raw(packed);
        }
        directory.raw("PK\1\2").number(20, 1).number(3, 1).raw(common);
        directory.number(0, 8).number(member.attributes, 4).number(start, 4).raw(member.name);
    }
    const quint64 offset = quint64(archive.size());
    const quint64 count = members.size();
    archive.append(directory);
    if (large) {
        const quint64 end = quint64(archive.size());
        archive.raw("PK\6\6").number(44, 8).number(45, 2).number(45, 2).number(0, 8);
        archive.number(count, 8).number(count, 8);
        archive.number(quint64(directory.size()), 8).number(offset, 8);
        archive.raw("PK\6\7").number(0, 4).number(end, 8).number(1, 4);
    }
    archive.raw("PK\5\6").number(0, 4);
    archive.number(large ? 0xffff : count, 2).number(large ? 0xffff : count, 2);
    archive.number(large ? 0xffffffff : quint64(directory.size()), 4);
    archive.number(large ? 0xffffffff : offset, 4).number(quint64(comment.size()), 2);
    return archive + comment;
}

} // namespace varnholt::test
