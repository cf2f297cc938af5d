#pragma once

#include "exchange/libzip_handles.h"

#include <QByteArray>
#include <QSaveFile>
#include <QString>

#include <functional>

namespace varnholt {

/// Where libzip writes an archive: a file that appears under its name when it is complete,
/// and whose bytes are on the disk by then. Neighbouring writes become one, and libzip's way
/// of coming back to a member's header once the member is written costs nothing while the
/// header is still in the buffer. Must outlive the archive that writes to it.
class ArchiveFile
{
public:
    /// `pulse` is called again and again while the disk is waited for; must not throw.
    explicit ArchiveFile(
        const QString& path, std::function<void()> pulse = [] {});

    /// False when no file can be made there.
    [[nodiscard]] bool open();
    /// For the reason why it was not opened.
    [[nodiscard]] const QSaveFile& file() const { return file_; }
    /// Why something failed in the file itself since; empty when nothing has.
    [[nodiscard]] const QString& reason() const { return reason_; }

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
    [[nodiscard]] bool finish();
    /// `done`; keeps the first failure's reason.
    [[nodiscard]] bool noted(bool done, const QString& reason);

    QSaveFile file_;
    std::function<void()> pulse_;
    QString reason_;
    QByteArray buffer_;
    /// Where the buffer belongs in the file, and where the next byte goes.
    qint64 bufferStart_ = 0;
    qint64 position_ = 0;
    zip_error_t error_;
};

} // namespace varnholt
