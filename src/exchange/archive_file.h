#pragma once

#include "exchange/libzip_handles.h"

#include <QByteArray>
#include <QSaveFile>
#include <QString>

namespace varnholt {

/// Where libzip writes an archive: a file that appears under its name when it is complete,
/// and whose bytes are on the disk by then. Neighbouring writes become one, and libzip's way
/// of coming back to a member's header once the member is written costs nothing while the
/// header is still in the buffer. Must outlive the archive that writes to it.
class ArchiveFile
{
public:
    explicit ArchiveFile(const QString& path);

    /// False when no file can be made there; see `file()` for the reason.
    [[nodiscard]] bool open();
    [[nodiscard]] const QSaveFile& file() const { return file_; }

    /// The file as a source that libzip can write an archive to; null when out of memory.
    [[nodiscard]] ZipSourceHandle source();

    // Used by `source()`, and where the archive has no members.
    [[nodiscard]] bool write(const char* bytes, qint64 size);
    [[nodiscard]] bool commit();

private:
    static zip_int64_t command(void* self, void* data, zip_uint64_t length,
                               zip_source_cmd_t command);
    zip_int64_t perform(void* data, zip_uint64_t length, zip_source_cmd_t command);
    [[nodiscard]] bool flush();

    QSaveFile file_;
    QByteArray buffer_;
    /// Where the buffer belongs in the file, and where the next byte goes.
    qint64 bufferStart_ = 0;
    qint64 position_ = 0;
    zip_error_t error_;
};

} // namespace varnholt
