#include "exchange/archive_file.h"

#include "exchange/in_background.h"
#include "files/sync.h"
#include "store/save_file.h"

#include <QFileInfo>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace varnholt {

namespace {

constexpr qsizetype bufferSize = 256 * 1024;

} // namespace

ArchiveFile::ArchiveFile(const QString& path, std::function<void()> pulse)
    : file_(path)
    , pulse_(std::move(pulse))
{
    buffer_.reserve(bufferSize);
    zip_error_init(&error_);
}

bool ArchiveFile::open()
{
    return file_.open(QIODevice::WriteOnly | QIODevice::Unbuffered);
}

ZipSourceHandle ArchiveFile::source()
{
    return ZipSourceHandle(zip_source_function_create(&ArchiveFile::command, this, &error_));
}

bool ArchiveFile::write(const char* bytes, qint64 size)
{
    while (size > 0) {
        const qint64 offset = position_ - bufferStart_;
        if (offset == bufferSize) {
            if (!flush()) {
                return false;
            }
            continue;
        }
        const qint64 part = std::min<qint64>(size, bufferSize - offset);
        if (offset + part > buffer_.size()) {
            buffer_.resize(offset + part);
        }
        std::memcpy(buffer_.data() + offset, bytes, static_cast<std::size_t>(part));
        position_ += part;
        bytes += part;
        size -= part;
    }
    return true;
}

bool ArchiveFile::flush()
{
    const bool done = file_.seek(bufferStart_) && WriteAll(file_, buffer_);
    buffer_.resize(0);
    bufferStart_ = position_;
    return noted(done, file_.errorString());
}

bool ArchiveFile::noted(bool done, const QString& reason)
{
    if (!done && reason_.isEmpty()) {
        reason_ = reason;
    }
    return done;
}

bool ArchiveFile::finish()
{
    const auto onDisk = [this](const auto& request) {
        const std::error_code error = InBackground(request, pulse_);
        return noted(!error, QString::fromStdString(error.message()));
    };
    if (!flush() || !noted(file_.flush(), file_.errorString()) ||
        !onDisk([descriptor = file_.handle()] { return SyncFile(descriptor); })) {
        return false;
    }
    // Found before the file is there: a link leads to another folder.
    const QFileInfo target(file_.fileName());
    const QFileInfo file(target.exists() ? target.canonicalFilePath() : target.absoluteFilePath());
    return noted(file_.commit(), file_.errorString()) &&
           onDisk([folder = QFileInfo(file.path()).filesystemFilePath()] {
               return SyncFolder(folder);
           });
}

bool ArchiveFile::commit()
{
    bool done = false;
    try {
        done = finish();
    } catch (const std::exception& failure) {
        // No thread to wait on; libzip lets no exception pass.
        static_cast<void>(noted(false, QString::fromUtf8(failure.what())));
    }
    if (!done) {
        file_.cancelWriting();
    }
    return done;
}

zip_int64_t ArchiveFile::command(void* self, void* data, zip_uint64_t length,
                                 zip_source_cmd_t command)
{
    return static_cast<ArchiveFile*>(self)->perform(data, length, command);
}

zip_int64_t ArchiveFile::perform(void* data, zip_uint64_t length, zip_source_cmd_t command)
{
    const auto fail = [this](int code, int system) {
        zip_error_set(&error_, code, system);
        return zip_int64_t{-1};
    };
    switch (command) {
    case ZIP_SOURCE_STAT:
        // To libzip there is no archive yet.
        return fail(ZIP_ER_READ, ENOENT);
    case ZIP_SOURCE_BEGIN_WRITE:
    case ZIP_SOURCE_FREE:
        return 0;
    case ZIP_SOURCE_WRITE:
        return write(static_cast<const char*>(data), static_cast<qint64>(length))
                   ? static_cast<zip_int64_t>(length)
                   : fail(ZIP_ER_WRITE, ENOSPC);
    case ZIP_SOURCE_SEEK_WRITE: {
        const zip_int64_t target = zip_source_seek_compute_offset(
            static_cast<zip_uint64_t>(position_),
            static_cast<zip_uint64_t>(
                std::max(file_.size(), bufferStart_ + qint64{buffer_.size()})),
            data, length, &error_);
        if (target < 0) {
            return -1;
        }
        const bool buffered = target >= bufferStart_ && target <= bufferStart_ + buffer_.size();
        if (!buffered && !flush()) {
            return fail(ZIP_ER_WRITE, ENOSPC);
        }
        position_ = target;
        if (!buffered) {
            bufferStart_ = target;
        }
        return 0;
    }
    case ZIP_SOURCE_TELL_WRITE:
        return position_;
    case ZIP_SOURCE_COMMIT_WRITE:
        return commit() ? 0 : fail(ZIP_ER_WRITE, ENOSPC);
    case ZIP_SOURCE_ROLLBACK_WRITE:
    case ZIP_SOURCE_REMOVE:
        file_.cancelWriting();
        return 0;
    case ZIP_SOURCE_ERROR:
        return zip_error_to_data(&error_, data, length);
    case ZIP_SOURCE_SUPPORTS:
        return zip_source_make_command_bitmap(
            ZIP_SOURCE_OPEN, ZIP_SOURCE_READ, ZIP_SOURCE_CLOSE, ZIP_SOURCE_STAT, ZIP_SOURCE_ERROR,
            ZIP_SOURCE_FREE, ZIP_SOURCE_SEEK, ZIP_SOURCE_TELL, ZIP_SOURCE_BEGIN_WRITE,
            ZIP_SOURCE_COMMIT_WRITE, ZIP_SOURCE_ROLLBACK_WRITE, ZIP_SOURCE_WRITE,
            ZIP_SOURCE_SEEK_WRITE, ZIP_SOURCE_TELL_WRITE, ZIP_SOURCE_REMOVE, -1);
    default:
        return fail(ZIP_ER_OPNOTSUPP, 0);
    }
}

} // namespace varnholt
