#include "exchange/work_folder.h"

#include "store/errors.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <filesystem>
#include <system_error>

#ifdef Q_OS_WIN
#include <io.h>
#else
#include <fcntl.h>
#include <unistd.h>
#endif

namespace varnholt {

namespace {

std::filesystem::path native(const QString& path)
{
#ifdef Q_OS_WIN
    return path.toStdWString();
#else
    return QFile::encodeName(path).toStdString();
#endif
}

[[noreturn]] void failPlacing(const QString& from, const QString& to, const QString& reason)
{
    throw Error(QStringLiteral("The file %1 could not be put at %2 (%3).")
                    .arg(QDir::toNativeSeparators(from), QDir::toNativeSeparators(to), reason));
}

/// A sync that the file system does not offer is no failure of the disk.
[[maybe_unused]] bool syncWorked(int result)
{
    return result == 0 || errno == EINVAL || errno == ENOSYS || errno == ENOTSUP;
}

} // namespace

void EmptyWorkFolder(const QString& folder, const QString& spare)
{
    QDir().mkpath(folder);
    const QString kept = spare.isEmpty() ? QString() : QFileInfo(spare).canonicalFilePath();
    QDirIterator files(folder, QDir::Files | QDir::Hidden | QDir::System);
    while (files.hasNext()) {
        const QString path = files.next();
        if (kept.isEmpty() || files.fileInfo().canonicalFilePath() != kept) {
            QFile::remove(path);
        }
    }
}

void MoveFile(const QString& from, const QString& to)
{
    const std::filesystem::path source = native(from);
    std::error_code error;
    const bool isFile = std::filesystem::is_regular_file(source, error);
    if (isFile) {
        std::filesystem::rename(source, native(to), error);
    }
    if (!isFile || error) {
        PlaceFile(from, to, Placing::Copy);
    }
}

void PlaceFile(const QString& from, const QString& to, Placing placing)
{
    const QFileInfo source(from);
    if (!source.isFile() || !source.isReadable()) {
        failPlacing(from, to, QStringLiteral("there is no such file, or it cannot be read"));
    }
    // A link made of a symbolic link would be one more symbolic link.
    const std::filesystem::path original =
        native(source.isSymLink() ? source.canonicalFilePath() : from);
    std::error_code error;
    if (placing == Placing::MayShare) {
        std::filesystem::create_hard_link(original, native(to), error);
        if (!error) {
            return;
        }
    }
    const QString part = to + QStringLiteral(".part");
    QFile::remove(part);
    if (placing == Placing::MayShare && error == std::errc::file_exists) {
        std::filesystem::create_hard_link(original, native(part), error);
    } else {
        error = std::make_error_code(std::errc::cross_device_link);
    }
    if (error) {
        QFile copy(from);
        if (!copy.copy(part)) {
            QFile::remove(part);
            failPlacing(from, to, copy.errorString());
        }
    }
    std::filesystem::rename(native(part), native(to), error);
    // Renaming one link of a file onto another does nothing and leaves both.
    QFile::remove(part);
    if (error) {
        failPlacing(from, to, QString::fromStdString(error.message()));
    }
}

bool SyncFile(QFileDevice& file)
{
    if (!file.flush()) {
        return false;
    }
#ifdef Q_OS_WIN
    return _commit(file.handle()) == 0;
#else
    return syncWorked(::fsync(file.handle()));
#endif
}

void SyncFileSystem(const QString& folder)
{
#ifdef Q_OS_LINUX
    const int descriptor = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_CLOEXEC);
    const bool done = descriptor >= 0 && syncWorked(::syncfs(descriptor));
    const int reason = errno;
    if (descriptor >= 0) {
        ::close(descriptor);
    }
    if (!done) {
        throw Error(QStringLiteral("The pictures could not be put on the disk (%1).")
                        .arg(QString::fromStdString(std::generic_category().message(reason))));
    }
#else
    const QDir dir(folder);
    for (const QString& name : dir.entryList(QDir::Files, QDir::Unsorted)) {
        QFile file(dir.filePath(name));
        if (!file.open(QIODevice::ReadWrite | QIODevice::ExistingOnly) || !SyncFile(file)) {
            throw Error(QStringLiteral("The picture %1 could not be put on the disk.").arg(name));
        }
    }
#endif
}

} // namespace varnholt
