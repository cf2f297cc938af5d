#pragma once

#include <QString>

class QFileDevice;

namespace varnholt {

/// Makes the folder when it is missing and deletes every file in it but `spare`. Errors are
/// ignored; folders inside stay.
void EmptyWorkFolder(const QString& folder, const QString& spare = {});

/// How a file gets to a second place.
enum class Placing
{
    /// The bytes may be shared with the original (a hard link) where the file system can.
    /// Neither file may then be written to in place, only replaced.
    MayShare,
    /// Bytes of its own.
    Copy
};

/// Puts the file `from` at `to` as well; a file at `to` is replaced in one step. `to` is
/// there whole or not at all, whatever happens on the way. Throws `Error` when `from` is not
/// a readable file or `to` cannot be written.
void PlaceFile(const QString& from, const QString& to, Placing placing);

/// Takes the file `from` to `to`, whose file it replaces in one step. Where the two are on
/// different file systems `from` stays. Throws `Error` as `PlaceFile` does.
void MoveFile(const QString& from, const QString& to);

/// Returns once everything written to an open file is on the disk; false when it could not be
/// put there. A file system that knows no such request counts as done.
[[nodiscard]] bool SyncFile(QFileDevice& file);

/// Returns once all files of the folder's file system are on the disk, their names included.
/// Throws `Error` when that failed.
void SyncFileSystem(const QString& folder);

} // namespace varnholt
