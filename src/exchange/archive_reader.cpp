#include "exchange/archive_reader.h"

#include "exchange/libzip_handles.h"
#include "exchange/package_fields.h"
#include "files/disk_space.h"
#include "store/errors.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QtEndian>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <optional>
#include <utility>
#include <vector>

namespace varnholt {

namespace {

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
            throw Error(QStringLiteral("The archive holds far too many files."));
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
    for (const QString& known : {topicsFile, subTopicsFile, questionsFile, assessmentInfoFile}) {
        if (name.compare(known, Qt::CaseInsensitive) == 0) {
            return known;
        }
    }
    bool isKey = false;
    const QString picture =
        pictureMember(QStringView(name).chopped(std::min<qsizetype>(name.size(), 4)).toInt(&isKey));
    return isKey && name.compare(picture, Qt::CaseInsensitive) == 0 ? picture : name;
}

/// The name under which a member is written; none when it is left out.
std::optional<QString> nameToTake(zip_t* archive, zip_uint64_t index)
{
    const char* given = zip_get_name(archive, index, ZIP_FL_ENC_GUESS);
    std::optional<QString> name = ownName(QString::fromUtf8(given ? given : ""));
    return name && isOrdinaryFile(archive, index) ? name : std::nullopt;
}

/// A file made anew, written through the C library: a `QFile` for each picture costs as much
/// as all else that is done about its name.
class UnpackedFile
{
public:
    /// Throws `Error`, also when something of that name exists.
    explicit UnpackedFile(const QString& path)
        : path_(path)
#ifdef Q_OS_WIN
        , file_(_wfopen(path.toStdWString().c_str(), L"wbxN"))
#else
        , file_(std::fopen(QFile::encodeName(path).constData(), "wbxe"))
#endif
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
    [[noreturn]] void fail() const
    {
        throw Error(QStringLiteral("The file %1 cannot be written (%2).")
                        .arg(QDir::toNativeSeparators(path_), qt_error_string(errno)));
    }

    QString path_;
    std::FILE* file_;
};

/// Takes members out of an archive and keeps count of what they cost.
class Unpacking
{
public:
    Unpacking(zip_t* archive, const QString& folder, std::int64_t memberBytes,
              std::int64_t allBytes)
        : archive_(archive)
        , folder_(folder)
        , memberBytes_(memberBytes)
        , left_(allBytes)
        , buffer_(256 * 1024)
    {}

    template <typename Pulse>
    void take(zip_uint64_t index, const QString& name, Pulse pulse)
    {
        const ZipFileHandle source(zip_fopen_index(archive_, index, 0));
        if (!source) {
            throw damaged(index, zip_strerror(archive_));
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
                throw damaged(index, zip_file_strerror(source));
            }
            if (got == 0) {
                break;
            }
            size += got;
            left_ -= got;
            if (size > memberBytes_ || left_ < 0) {
                throw Error(QStringLiteral("The archive unpacks to far more than a package."));
            }
            target.write(buffer_.data(), got);
            pulse();
        }
        zip_stat_t declared;
        if (zip_stat_index(archive_, index, 0, &declared) != 0 ||
            declared.size != static_cast<zip_uint64_t>(size)) {
            throw damaged(index, "its size is not the one declared");
        }
    }

    static Error damaged(zip_uint64_t index, const char* reason)
    {
        return Error(QStringLiteral("File %1 of the archive cannot be read (%2).")
                         .arg(index + 1)
                         .arg(QString::fromUtf8(reason)));
    }

    zip_t* archive_;
    QString folder_;
    std::int64_t memberBytes_;
    std::int64_t left_;
    std::vector<char> buffer_;
};

std::int64_t allowedBytes(qint64 archiveBytes, const QString& folder, const UnpackLimits& limits)
{
    std::int64_t allowed = limits.freeBytes + limits.growth * archiveBytes;
    if (const auto free = FreeBytes(QFileInfo(folder).filesystemFilePath())) {
        allowed = std::min(allowed, std::max<std::int64_t>(0, *free - limits.diskReserve));
    }
    return allowed;
}

} // namespace

QString UnpackArchive(const QString& archivePath, const QString& folder, const UnpackLimits& limits,
                      const UnpackProgress& progress)
{
    QFile file(archivePath);
    if (!QFileInfo(archivePath).isFile() || !file.open(QIODevice::ReadOnly)) {
        throw Error(QStringLiteral("The archive cannot be read: %1")
                        .arg(QDir::toNativeSeparators(archivePath)));
    }
    checkDirectorySize(file, limits.members);
    const qint64 archiveBytes = file.size();
    file.close();

    int code = 0;
    const ZipArchiveHandle archive(
        zip_open(QFile::encodeName(archivePath).constData(), ZIP_RDONLY, &code));
    if (!archive) {
        throw Error(QStringLiteral("This is not a readable zip archive (%1).").arg(code));
    }
    if (zip_get_num_entries(archive.get(), 0) > limits.members) {
        throw Error(QStringLiteral("The archive holds far too many files."));
    }

    Unpacking unpacking(archive.get(), folder, limits.memberBytes,
                        allowedBytes(archiveBytes, folder, limits));
    const int members = static_cast<int>(zip_get_num_entries(archive.get(), 0));
    for (int member = 0; member < members; ++member) {
        const auto index = static_cast<zip_uint64_t>(member);
        const auto report = [&](int done) {
            if (progress) {
                progress(done, members);
            }
        };
        if (const std::optional<QString> name = nameToTake(archive.get(), index)) {
            unpacking.take(index, *name, [&] { report(member); });
        }
        report(member + 1);
    }

    int length = 0;
    const char* comment = zip_get_archive_comment(archive.get(), &length, ZIP_FL_ENC_RAW);
    return QString::fromLatin1(comment, comment ? length : 0);
}

} // namespace varnholt
