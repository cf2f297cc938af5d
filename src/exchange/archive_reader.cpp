#include "exchange/archive_reader.h"

#include "exchange/libzip_handles.h"
#include "exchange/package_fields.h"
#include "files/disk_space.h"
#include "store/errors.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <limits>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#ifdef Q_OS_WIN
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#endif

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(Package)
};

/// Refuses an archive whose directory would take too much memory to read. libzip holds the
/// whole of it, but never believes in more entries than the directory's size has room for.
void checkDirectorySize(QFile& archive, std::int64_t members)
{
    constexpr qint64 endRecord = 22;
    constexpr qint64 longestComment = 0xffff;
    constexpr qint64 locator = 20;
    constexpr qint64 endRecord64 = 56;
    constexpr qint64 generousEntry = 1024;

    const qint64 size = archive.size();
    const qint64 start = std::max<qint64>(0, size - endRecord - longestComment - locator);
    archive.seek(start);
    const QByteArray tail = archive.read(size - start);
    const auto refuseAbove = [&](quint64 directoryBytes) {
        if (directoryBytes > static_cast<quint64>(members * generousEntry)) {
            throw Error(Words::tr("The archive holds far too many files."));
        }
    };
    for (qsizetype at = tail.indexOf("PK\5\6"); at >= 0; at = tail.indexOf("PK\5\6", at + 1)) {
        if (tail.size() - at < endRecord) {
            break;
        }
        const char* record = tail.constData() + at;
        if (at + endRecord + qFromLittleEndian<quint16>(record + 20) > tail.size()) {
            continue;
        }
        if (at < locator || !tail.sliced(at - locator).startsWith("PK\6\7")) {
            refuseAbove(qFromLittleEndian<quint32>(record + 12));
            continue;
        }
        const auto offset = qFromLittleEndian<quint64>(record - locator + 8);
        if (offset < static_cast<quint64>(size) && archive.seek(static_cast<qint64>(offset))) {
            const QByteArray bytes = archive.read(endRecord64);
            if (bytes.size() == endRecord64) {
                refuseAbove(qFromLittleEndian<quint64>(bytes.constData() + 40));
            }
        }
    }
}

bool isOrdinaryFile(zip_t* archive, zip_uint64_t index)
{
    zip_uint8_t system = 0;
    zip_uint32_t attributes = 0;
    if (zip_file_get_external_attributes(archive, index, 0, &system, &attributes) != 0) {
        return false;
    }
    constexpr zip_uint32_t msdosVolumeOrFolder = 0x18;
    if ((attributes & msdosVolumeOrFolder) != 0) {
        return false;
    }
    // Links and devices say so here, whatever system the archive claims to come from.
    constexpr zip_uint32_t kindMask = 0170000;
    constexpr zip_uint32_t ordinary = 0100000;
    const zip_uint32_t kind = (attributes >> 16) & kindMask;
    return kind == 0 || kind == ordinary;
}

bool isPlainCharacter(QChar character)
{
    return character == u' ' ||
           (character.isPrint() && !QStringLiteral("/\\:*?\"<>|").contains(character));
}

/// What a member of that name is called in the folder; nothing when the name is not plain.
std::optional<QString> ownName(const QString& name)
{
    constexpr qsizetype mostBytes = 200; // below what any file system takes
    if (name.isEmpty() || name.toUtf8().size() > mostBytes || name.startsWith(u'.') ||
        name.endsWith(u'.') || name.endsWith(u' ') ||
        !std::all_of(name.begin(), name.end(), isPlainCharacter)) {
        return std::nullopt;
    }
    const QString proper = packageMember(name);
    return proper.isEmpty() ? name : proper;
}

QString nameIn(zip_t* archive, zip_uint64_t index)
{
    const char* name = zip_get_name(archive, index, ZIP_FL_ENC_GUESS);
    return QString::fromUtf8(name ? name : "");
}

/// What stands before the names of a package's files: nothing, or the one folder that somebody
/// packed with them. Throws `Error` when more than one folder looks like a package.
QString packageFolder(zip_t* archive, zip_uint64_t members)
{
    QString found;
    for (zip_uint64_t index = 0; index < members; ++index) {
        const QString name = nameIn(archive, index);
        if (!name.endsWith(assessmentInfoFile, Qt::CaseInsensitive)) {
            continue;
        }
        const QString folder = name.chopped(assessmentInfoFile.size());
        if (folder.isEmpty()) {
            return folder;
        }
        if (!folder.endsWith(u'/') || folder.startsWith(u'/') ||
            folder.contains(QStringLiteral("..")) || folder.contains(u':')) {
            continue;
        }
        if (!found.isEmpty() && found != folder) {
            throw Error(Words::tr("The archive holds more than one package, each in a folder "
                                  "of its own. Unpack it and put the files of each folder "
                                  "into an archive of their own."));
        }
        found = folder;
    }
    return found;
}

/// The name under which a member is written; none when it is left out.
std::optional<QString> nameToTake(zip_t* archive, zip_uint64_t index, const QString& folder,
                                  Members members)
{
    const QString given = nameIn(archive, index);
    if (!given.startsWith(folder)) {
        return std::nullopt;
    }
    std::optional<QString> name = ownName(given.sliced(folder.size()));
    const bool wanted = name && (members == Members::AtRoot || !packageMember(*name).isEmpty()) &&
                        isOrdinaryFile(archive, index);
    return wanted ? name : std::nullopt;
}

/// A file made anew, written through the C library: a `QFile` for each picture costs as much
/// as all else that is done about its name.
class UnpackedFile
{
public:
    /// Throws `Error`, also when something of that name exists.
    explicit UnpackedFile(const QString& path)
        : path_(path)
        , file_(openNew(path))
    {
        if (!file_) {
            fail();
        }
        std::setvbuf(file_, nullptr, _IONBF, 0);
    }
    UnpackedFile(const UnpackedFile&) = delete;
    UnpackedFile& operator=(const UnpackedFile&) = delete;
    /// Removes the file unless it was closed.
    ~UnpackedFile()
    {
        if (file_) {
            std::fclose(file_);
            QFile::remove(path_);
        }
    }

    /// Throws `Error`.
    void write(const char* bytes, std::int64_t size)
    {
        const auto count = static_cast<std::size_t>(size);
        if (std::fwrite(bytes, 1, count, file_) != count) {
            fail();
        }
    }

    /// Keeps the file. Throws `Error`.
    void close()
    {
        if (std::fclose(std::exchange(file_, nullptr)) != 0) {
            const int reason = errno;
            QFile::remove(path_);
            errno = reason;
            fail();
        }
    }

private:
    static std::FILE* openNew(const QString& path)
    {
#ifdef Q_OS_WIN
        // The C library of Windows does not know the "x" of fopen().
        const int handle =
            _wopen(path.toStdWString().c_str(),
                   _O_CREAT | _O_EXCL | _O_WRONLY | _O_BINARY | _O_NOINHERIT, _S_IREAD | _S_IWRITE);
        return handle < 0 ? nullptr : _fdopen(handle, "wb");
#else
        return std::fopen(QFile::encodeName(path).constData(), "wbxe");
#endif
    }

    [[noreturn]] void fail() const
    {
        if (errno == EEXIST) {
            throw Error(Words::tr("The archive holds two files of one name, or there is one "
                                  "already: %1")
                            .arg(QDir::toNativeSeparators(path_)));
        }
        throw Error(Words::tr("The file %1 cannot be written (%2).")
                        .arg(QDir::toNativeSeparators(path_),
                             QString::fromStdString(std::generic_category().message(errno))));
    }

    QString path_;
    std::FILE* file_;
};

/// Takes members out of an archive and keeps count of what they cost.
class Unpacking
{
public:
    /// `archiveBytes` is the archive's own size.
    Unpacking(zip_t* archive, std::int64_t archiveBytes, const QString& folder,
              const UnpackLimits& limits)
        : archive_(archive)
        , folder_(folder)
        , memberBytes_(limits.memberBytes)
        , left_(limits.freeBytes + limits.growth * archiveBytes)
        , buffer_(256 * 1024)
    {
        if (const auto free = FreeBytes(QFileInfo(folder).filesystemFilePath())) {
            diskLeft_ = std::max<std::int64_t>(0, *free - limits.diskReserve);
        }
    }

    /// Bytes that the limits still allow.
    [[nodiscard]] std::int64_t left() const { return left_; }

    template <typename Pulse>
    void take(zip_uint64_t index, const QString& name, Pulse pulse)
    {
        const ZipFileHandle source(zip_fopen_index(archive_, index, 0));
        if (!source) {
            throw damaged(index, zip_get_error(archive_));
        }
        // A second member of one name ends here too.
        UnpackedFile target(folder_ + u'/' + name);
        copy(index, source.get(), target, pulse);
        target.close();
    }

private:
    template <typename Pulse>
    void copy(zip_uint64_t index, zip_file_t* source, UnpackedFile& target, Pulse pulse)
    {
        std::int64_t size = 0;
        for (;;) {
            const zip_int64_t got = zip_fread(source, buffer_.data(), buffer_.size());
            if (got < 0) {
                throw damaged(index, zip_file_get_error(source));
            }
            if (got == 0) {
                break;
            }
            size += got;
            left_ -= got;
            diskLeft_ -= got;
            if (size > memberBytes_ || left_ < 0) {
                throw Error(Words::tr("The archive unpacks to far more than a package."));
            }
            if (diskLeft_ < 0) {
                throw Error(Words::tr("The disk has too little free space to unpack the "
                                      "archive. Make room on it and try again."));
            }
            target.write(buffer_.data(), got);
            pulse();
        }
        zip_stat_t declared;
        if (zip_stat_index(archive_, index, 0, &declared) != 0 ||
            declared.size != static_cast<zip_uint64_t>(size)) {
            throw damaged(index, nullptr);
        }
    }

    [[nodiscard]] Error damaged(zip_uint64_t index, zip_error_t* error) const
    {
        const QString name = nameIn(archive_, index);
        switch (error ? zip_error_code_zip(error) : ZIP_ER_INCONS) {
        case ZIP_ER_NOPASSWD:
        case ZIP_ER_WRONGPASSWD:
        case ZIP_ER_ENCRNOTSUPP:
            return Error(Words::tr("The archive is protected by a password. Ask for one "
                                   "without."));
        case ZIP_ER_COMPNOTSUPP:
            return Error(Words::tr("The file %1 is packed in a way that cannot be read. Pack "
                                   "the archive again as an ordinary zip file.")
                             .arg(name));
        case ZIP_ER_READ:
        case ZIP_ER_SEEK:
        case ZIP_ER_OPEN:
            return Error(Words::tr("The archive cannot be read to its end (%1). Copy it to "
                                   "this computer and try again.")
                             .arg(QString::fromUtf8(zip_error_strerror(error))));
        case ZIP_ER_MEMORY:
            return Error(Words::tr("There is not enough memory to unpack the archive."));
        default:
            return Error(Words::tr("The file %1 in the archive is damaged. Ask for the "
                                   "package once more.")
                             .arg(name));
        }
    }

    zip_t* archive_;
    QString folder_;
    std::int64_t memberBytes_;
    std::int64_t left_;
    /// Bytes that the disk has room for.
    std::int64_t diskLeft_ = std::numeric_limits<std::int64_t>::max();
    std::vector<char> buffer_;
};

/// Why libzip did not open an archive.
Error notOpened(int code)
{
    zip_error_t error;
    zip_error_init_with_code(&error, code);
    const QString reason = QString::fromUtf8(zip_error_strerror(&error));
    zip_error_fini(&error);
    switch (code) {
    case ZIP_ER_NOZIP:
    case ZIP_ER_INCONS:
    case ZIP_ER_EOF:
        return Error(Words::tr("This is not a zip archive, or it is damaged or incomplete. "
                               "Ask for the package once more."));
    default:
        return Error(Words::tr("The archive cannot be opened (%1).").arg(reason));
    }
}

} // namespace

Unpacked UnpackArchive(const QString& archivePath, const QString& folder,
                       const UnpackLimits& limits, const UnpackProgress& progress, Members members)
{
    QFile file(archivePath);
    if (!QFileInfo(archivePath).isFile() || !file.open(QIODevice::ReadOnly)) {
        throw Error(Words::tr("The archive cannot be read: %1 (%2).")
                        .arg(QDir::toNativeSeparators(archivePath), file.errorString()));
    }
    checkDirectorySize(file, limits.members);
    const qint64 archiveBytes = file.size();
    file.close();

    int code = 0;
    const ZipArchiveHandle archive(zip_open(archivePath.toUtf8().constData(), ZIP_RDONLY, &code));
    if (!archive) {
        throw notOpened(code);
    }
    if (zip_get_num_entries(archive.get(), 0) > limits.members) {
        throw Error(Words::tr("The archive holds far too many files."));
    }

    Unpacking unpacking(archive.get(), archiveBytes, folder, limits);
    const int count = static_cast<int>(zip_get_num_entries(archive.get(), 0));
    const QString inside = members == Members::OfPackage
                               ? packageFolder(archive.get(), static_cast<zip_uint64_t>(count))
                               : QString();
    for (int member = 0; member < count; ++member) {
        const auto index = static_cast<zip_uint64_t>(member);
        const auto report = [&](int done) {
            if (progress) {
                progress(done, count);
            }
        };
        const auto name = nameToTake(archive.get(), index, inside, members);
        if (name) {
            unpacking.take(index, *name, [&] { report(member); });
        }
        report(member + 1);
    }

    int length = 0;
    const char* comment = zip_get_archive_comment(archive.get(), &length, ZIP_FL_ENC_RAW);
    return {QString::fromLatin1(comment, comment ? length : 0), unpacking.left()};
}

} // namespace varnholt
