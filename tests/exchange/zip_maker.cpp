#include "exchange/zip_maker.h"

#include <zlib.h>

namespace varnholt::test {

namespace {

class Bytes : public QByteArray
{
public:
    Bytes& number(quint64 value, int size)
    {
        for (int i = 0; i < size; ++i) {
            append(static_cast<char>(value >> (8 * i)));
        }
        return *this;
    }
    Bytes& raw(const QByteArray& bytes)
    {
        append(bytes);
        return *this;
    }
};

QByteArray deflated(const QByteArray& data, int flush)
{
    z_stream stream{};
    deflateInit2(&stream, 9, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY);
    QByteArray packed(static_cast<qsizetype>(deflateBound(&stream, uLong(data.size()))) + 16, 0);
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.constData()));
    stream.avail_in = uInt(data.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = uInt(packed.size());
    deflate(&stream, flush);
    packed.resize(static_cast<qsizetype>(stream.total_out));
    deflateEnd(&stream);
    return packed;
}

} // namespace

QByteArray deflatedZeros(qint64 size)
{
    constexpr qint64 step = 1 << 20;
    return deflated(QByteArray(step, 0), Z_FULL_FLUSH).repeated(size / step) +
           deflated({}, Z_FINISH);
}

QByteArray makeZip(const std::vector<RawMember>& members, const QByteArray& comment, bool large)
{
    Bytes archive;
    Bytes directory;
    quint64 start = 0;
    for (const RawMember& member : members) {
        const bool made = member.packedFrom < 0;
        const QByteArray packed =
            member.deflated && made ? deflated(member.data, Z_FINISH) : member.data;
        const quint64 size =
            quint64((made ? member.data.size() : member.packedFrom) + member.sizeError);
        const quint64 crc = crc32(0, reinterpret_cast<const Bytef*>(member.data.constData()),
                                  uInt(made ? member.data.size() : 0)) ^
                            member.crcError;
        // From the version needed to the lengths; the same in both headers.
        Bytes common;
        common.number(20, 2).number(member.flags, 2);
        common.number(member.deflated ? 8 : 0, 2);
        common.number(0x58210000, 4).number(crc, 4).number(quint64(packed.size()), 4);
        common.number(std::min<quint64>(size, 0xffffffff), 4)
            .number(quint64(member.name.size()), 2);
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
