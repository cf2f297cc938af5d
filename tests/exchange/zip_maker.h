#pragma once

#include <QByteArray>

#include <vector>

namespace varnholt::test {

/// One member of an archive made by hand, honest unless told otherwise.
struct RawMember
{
    QByteArray name = {};
    QByteArray data = {};
    bool deflated = false;
    /// Stands in the archive instead of `data` when not empty.
    QByteArray packed = {};
    /// General purpose flags: 1 encrypted, 0x800 name in UTF-8.
    quint16 flags = 0;
    quint32 crcError = 0;
    /// Upper half the Unix mode, lower half that of MS-DOS.
    quint32 attributes = 0;
    /// Added to the declared size.
    qint64 sizeError = 0;
    /// Shares the bytes of the member before.
    bool overlaps = false;
};

[[nodiscard]] QByteArray makeZip(const std::vector<RawMember>& members,
                                 const QByteArray& comment = {}, bool zip64 = false);

} // namespace varnholt::test
