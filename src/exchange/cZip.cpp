#include "exchange/cZip.h"

#include "exchange/archive_file.h"
#include "store/errors.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <exception>
#include <system_error>

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(Package)
};

/// The end record of an archive with no members and no comment.
constexpr std::array<char, 22> emptyArchive{'P', 'K', 5, 6};

/// Compression of a member, decided by its name: pictures are packed already.
zip_int32_t compressionOf(const QString& name)
{
    return name.endsWith(QStringLiteral(".txt"), Qt::CaseInsensitive) ? ZIP_CM_DEFLATE
                                                                      : ZIP_CM_STORE;
}

/// Adds the files to an open archive; libzip reads them when the archive is closed.
bool addMembers(zip_t* archive, const List1<QString>& files)
{
    for (const QString& path : files) {
        const QString name = QFileInfo(path).fileName();
        ZipSourceHandle source(zip_source_file_create(path.toUtf8().constData(), 0, -1, nullptr));
        if (!source) {
            return false;
        }
        const zip_int64_t index =
            zip_file_add(archive, name.toUtf8().constData(), source.get(), ZIP_FL_ENC_UTF_8);
        if (index < 0) {
            return false;
        }
        static_cast<void>(source.release());
        if (zip_set_file_compression(archive, static_cast<zip_uint64_t>(index), compressionOf(name),
                                     0) != 0) {
            return false;
        }
    }
    return true;
}

/// Turns libzip's reports (the fraction done of all files, each counting the same) into one
/// call a file.
struct FileCounter
{
    int files;
    std::function<void(int file)> fileDone;
    std::function<void()> pulse;
    int done = 0;
    /// Must not travel through libzip.
    std::exception_ptr failure = nullptr;

    static void report(zip_t*, double fraction, void* self)
    {
        static_cast<FileCounter*>(self)->advance(fraction);
    }

    void advance(double fraction)
    {
        constexpr double rounding = 1e-6;
        try {
            const int reached = static_cast<int>(fraction * files + rounding);
            if (done >= reached) {
                pulse();
            }
            while (done < reached) {
                fileDone(++done);
            }
        } catch (...) {
            failure = std::current_exception();
        }
    }
};

} // namespace

bool cZip::AddFilesToZip(const List1<QString>& files)
{
    const auto because = [this](const QString& why) {
        return Words::tr("The package could not be saved as %1 (%2).")
            .arg(QDir::toNativeSeparators(ZipFileName_), why);
    };
    InitProgress(1, files.upperBound());
    ArchiveFile target(ZipFileName_, [this] { showProgress(); });
    if (!target.open()) {
        const QString words = target.file().errorString();
        failure_ = {true, static_cast<int>(target.file().error()), words, because(words)};
        return false;
    }
    const QString why = pack(target, files);
    failure_ = {false, 0, why, because(why)};
    return why.isEmpty();
}

QString cZip::pack(ArchiveFile& target, const List1<QString>& files)
{
    if (files.isEmpty()) {
        // libzip writes no archive without members.
        return target.write(emptyArchive.data(), emptyArchive.size()) && target.commit()
                   ? QString()
                   : target.reason();
    }
    ZipSourceHandle sink = target.source();
    ZipArchiveHandle archive(
        sink ? zip_open_from_source(sink.get(), ZIP_CREATE | ZIP_TRUNCATE, nullptr) : nullptr);
    if (!archive) {
        return QString::fromStdString(std::generic_category().message(ENOMEM));
    }
    static_cast<void>(sink.release());

    const QByteArray comment = comment_.toLatin1();
    if (!addMembers(archive.get(), files) ||
        zip_set_archive_comment(archive.get(), comment.constData(),
                                static_cast<zip_uint16_t>(comment.size())) != 0) {
        return QString::fromUtf8(zip_strerror(archive.get()));
    }
    FileCounter counter{files.upperBound(), [this](int file) { UpdateProgress(file); },
                        [this] { showProgress(); }};
    zip_register_progress_callback_with_state(archive.get(), 0, &FileCounter::report, nullptr,
                                              &counter);
    QString failure;
    if (zip_close(archive.get()) == 0) {
        static_cast<void>(archive.release());
    } else {
        // The file knows better than libzip, which takes every failure of it for a full disk.
        failure = target.reason();
        if (failure.isEmpty()) {
            failure = QString::fromUtf8(zip_strerror(archive.get()));
        }
    }
    if (counter.failure) {
        std::rethrow_exception(counter.failure);
    }
    return failure;
}

bool cZip::UnzipToFolder(const QString& sFolderName)
{
    const UnpackProgress shown = [this](int member, int of) {
        if (progress) {
            progress(ExchangeWork::Unpacking, member, of);
        }
    };
    const Unpacked unpacked = UnpackArchive(ZipFileName_, sFolderName, {}, shown, members);
    comment_ = unpacked.comment;
    bytesLeft = unpacked.bytesLeft;
    return false;
}

void cZip::CreateEmptyZip(const QString& path)
{
    ArchiveFile target(path);
    if (!target.open() || !target.write(emptyArchive.data(), emptyArchive.size()) ||
        !target.commit()) {
        throw Error(target.reason());
    }
}

void cZip::InitProgress(std::int32_t first, std::int32_t last)
{
    ProgressFirst_ = first;
    const std::int32_t total = first == 1 ? last : std::abs(last - first) + (first < 1 ? 1 : 0);
    ProgressTotal_ = std::max(total, 1);
    ProgressCurrent_ = 0;
}

void cZip::UpdateProgress(std::int32_t current)
{
    ProgressCurrent_ = std::abs(current - ProgressFirst_) + 1;
    showProgress();
}

void cZip::showProgress() const
{
    if (progress) {
        progress(ExchangeWork::Packing, ProgressCurrent_, ProgressTotal_);
    }
}

} // namespace varnholt
