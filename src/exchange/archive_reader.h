#pragma once

#include <QString>

#include <cstdint>
#include <functional>

namespace varnholt {

/// What an archive may ask of the machine. Bytes are counted as they come, never as the
/// archive declares them.
struct UnpackLimits
{
    std::int64_t memberBytes = std::int64_t{256} << 20;
    /// In all: this much, and this many times the archive's own size beyond it. Pictures
    /// are packed already, so an honest package hardly grows.
    std::int64_t freeBytes = std::int64_t{256} << 20;
    std::int64_t growth = 100;
    /// Left free on the disk.
    std::int64_t diskReserve = std::int64_t{64} << 20;
    std::int64_t members = 100'000;
};

/// Which members of an archive are taken.
enum class Members
{
    /// All files at the root.
    AtRoot,
    /// Those that a package can hold. They may also stand in one folder, as somebody who packs
    /// a folder leaves them.
    OfPackage
};

struct Unpacked
{
    QString comment;
    /// What the limits would have allowed beyond the bytes unpacked.
    std::int64_t bytesLeft = 0;
};

/// Called when member `member` of `members` is done, and now and then before.
using UnpackProgress = std::function<void(int member, int members)>;

/// Unpacks the files at the root of an archive into an existing folder.
///
/// The archive is not trusted. Taken are ordinary files with plain names; the members of a
/// package are written under their proper names whatever the case they come in. Left out:
/// folders and what is in them, links, devices, names with "..", slashes, backslashes, colons
/// or control characters. Refused with `Error`: what is not an archive, damaged or encrypted
/// members, two members of one name, several packages in one archive, more members or bytes
/// than the limits or the disk allow. No file that exists already is written to; files done
/// before a refusal stay.
[[nodiscard]] Unpacked UnpackArchive(const QString& archivePath, const QString& folder,
                                     const UnpackLimits& limits = {},
                                     const UnpackProgress& progress = {},
                                     Members members = Members::AtRoot);

} // namespace varnholt
