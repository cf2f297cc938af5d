#include "library/backup/backup_files.h"

#include "files/sync.h"
#include "store/errors.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace varnholt {

namespace fs = std::filesystem;

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(BackupStore)
};

Sha digits(const QCryptographicHash& hash)
{
    const QByteArray hex = hash.result().toHex();
    Sha sha;
    std::copy(hex.begin(), hex.end(), sha.begin());
    return sha;
}

} // namespace

fs::path PathOf(const QString& path)
{
    return QFileInfo(path).filesystemFilePath();
}

QString Shown(const fs::path& path)
{
    return QDir::toNativeSeparators(QFileInfo(path).filePath());
}

Sha ShaOf(const QByteArray& bytes)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    hash.addData(bytes);
    return digits(hash);
}

std::optional<Sha> ShaOfFile(const fs::path& path)
{
    QFile file(path);
    QCryptographicHash hash(QCryptographicHash::Sha256);
    if (!file.open(QIODevice::ReadOnly) || !hash.addData(&file) ||
        file.error() != QFileDevice::NoError) {
        return std::nullopt;
    }
    return digits(hash);
}

std::optional<QByteArray> ReadWhole(const fs::path& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return std::nullopt;
    }
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        return std::nullopt;
    }
    return bytes;
}

std::int64_t ModifiedAt(const fs::path& path, std::error_code& error)
{
    const fs::file_time_type time = fs::last_write_time(path, error);
    return std::chrono::duration_cast<std::chrono::nanoseconds>(time.time_since_epoch()).count();
}

void SyncOrThrow(const fs::path& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly) &&
        !file.open(QIODevice::ReadOnly)) {
        ThrowFileError(std::make_error_code(std::errc::io_error), path);
    }
    Require(SyncFile(file.handle()), path);
}

void ThrowFileError(const std::error_code& error, const fs::path& path)
{
    const QString shown = Shown(path);
    if (error == std::errc::no_space_on_device) {
        throw Error(
            Words::tr("The disk is full. What was backed up earlier is as it was:\n%1").arg(shown));
    }
    if (error == std::errc::permission_denied || error == std::errc::operation_not_permitted ||
        error == std::errc::read_only_file_system) {
        throw Error(Words::tr("You do not have the right to change this:\n%1").arg(shown));
    }
    if (error == std::errc::no_such_file_or_directory) {
        throw Error(Words::tr("This is not there, or no longer:\n%1").arg(shown));
    }
    throw Error(Words::tr("This could not be read or written:\n%1\n\n(%2)")
                    .arg(shown, QString::fromStdString(error.message())));
}

} // namespace varnholt
