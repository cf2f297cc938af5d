#include "library/backup/BackupStore.h"

#include "files/NewFile.h"
#include "files/placing.h"
#include "files/sync.h"
#include "library/Library.h"
#include "library/backup/backup_files.h"
#include "library/backup/library_pictures.h"
#include "store/statement.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>

#include <algorithm>
#include <cerrno>
#include <span>

namespace varnholt {

namespace fs = std::filesystem;

namespace {

using State = BackupManifest::State;

const QString manifestEnding = QStringLiteral(".manifest");

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(BackupStore)
};

QString idOf(std::int64_t time, const Sha& librarySha)
{
    constexpr qsizetype shaDigits = 8;
    return QDateTime::fromSecsSinceEpoch(time, Qt::UTC)
               .toString(QStringLiteral("yyyyMMdd-HHmmss-")) +
           QString::fromLatin1(librarySha.data(), shaDigits);
}

std::int64_t countQuestions(Library& library)
{
    Statement count(library.connection(),
                    "SELECT count(*) FROM Questions JOIN Assessments USING (AssessmentNum) WHERE "
                    "Questions.Available AND Assessments.Available");
    count.next();
    return count.integer(0);
}

/// Whether a picture is the one that was read then. One that was just being written then may have
/// changed afterwards without its time showing it.
bool isAsRead(const BackedPicture& now, const BackedPicture* then, std::int64_t looked)
{
    constexpr std::int64_t coarsestTime = 2'000'000'000;
    return then && then->size == now.size && then->modified == now.modified &&
           then->modified < looked - coarsestTime;
}

} // namespace

std::int64_t BackupStore::timeOf(const QString& id)
{
    constexpr qsizetype digits = 15;
    QDateTime time = QDateTime::fromString(id.left(digits), QStringLiteral("yyyyMMdd-HHmmss"));
    time.setTimeSpec(Qt::UTC);
    return time.isValid() ? time.toSecsSinceEpoch() : 0;
}

BackupStore::BackupStore(QString folder)
    : folder_(std::move(folder))
{}

QString BackupStore::folderBeside(const QString& programFolder)
{
    return programFolder + QStringLiteral("/Backups");
}

fs::path BackupStore::path(const QString& name) const
{
    return PathOf(folder_ + u'/' + name);
}

fs::path BackupStore::manifestOf(const QString& id) const
{
    return path(id + manifestEnding);
}

fs::path BackupStore::libraryOf(const QString& id) const
{
    return path(id + QStringLiteral(".mdb"));
}

fs::path BackupStore::pictureOf(const Sha& sha) const
{
    return pool() / (std::string(View(sha)) + ".jpg");
}

std::vector<QString> BackupStore::ids() const
{
    std::vector<QString> result;
    const QDir folder(folder_);
    for (const QString& name :
         folder.entryList({u'*' + manifestEnding}, QDir::Files, QDir::Name | QDir::Reversed)) {
        result.push_back(name.chopped(manifestEnding.size()));
    }
    return result;
}

std::vector<Sha> BackupStore::pooled() const
{
    std::vector<Sha> result;
    std::error_code error;
    for (fs::directory_iterator entry(pool(), error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        Sha sha;
        if (name.size() == sha.size() + 4 && name.ends_with(".jpg")) {
            std::copy_n(name.begin(), sha.size(), sha.begin());
            result.push_back(sha);
        }
    }
    std::sort(result.begin(), result.end());
    return result;
}

State BackupStore::read(const QString& id, BackupManifest& manifest) const
{
    const std::optional<QByteArray> text = ReadWhole(manifestOf(id));
    return text ? BackupManifest::read(*text, manifest) : State::Damaged;
}

BackupInfo BackupStore::info(const QString& id, const std::vector<Sha>& pooled,
                             BackupManifest& manifest) const
{
    BackupInfo info;
    info.id = id;
    info.state = read(id, manifest);
    info.madeAt = info.state == State::Whole ? manifest.madeAt : timeOf(id);
    info.questions = manifest.questions;
    info.pictures = static_cast<std::int64_t>(manifest.pictures.size());
    info.bytes = manifest.librarySize;
    if (info.state == State::Whole) {
        std::error_code error;
        const auto size = fs::file_size(libraryOf(id), error);
        bool whole = !error && static_cast<std::int64_t>(size) == manifest.librarySize;
        for (const BackedPicture& picture : manifest.pictures) {
            info.bytes += picture.size;
            whole = whole && std::binary_search(pooled.begin(), pooled.end(), picture.sha);
        }
        info.state = whole ? State::Whole : State::Damaged;
        if (whole && manifest.tables > int(PlusTables::ownScripts().size())) {
            info.state = State::Newer;
        }
    }
    if (info.state == State::Newer) {
        info.reason =
            Words::tr("This backup was made by a newer version of Varnholt (%1). Only that "
                      "version can restore it.")
                .arg(manifest.program);
    } else if (info.state == State::Damaged) {
        info.reason =
            Words::tr("This backup is damaged: a part of it is missing or not as it was.");
    }
    return info;
}

std::vector<BackupInfo> BackupStore::list() const
{
    const std::vector<Sha> pictures = pooled();
    std::vector<BackupInfo> result;
    BackupManifest newer;
    qsizetype ofNewer = -1;
    for (const QString& id : ids()) {
        BackupManifest manifest;
        result.push_back(info(id, pictures, manifest));
        if (result.back().state != State::Whole) {
            continue;
        }
        if (ofNewer >= 0) {
            result[static_cast<std::size_t>(ofNewer)].added =
                std::count_if(newer.pictures.begin(), newer.pictures.end(),
                              [&](const auto& picture) { return !manifest.find(picture.key); });
        }
        newer = std::move(manifest);
        ofNewer = static_cast<qsizetype>(result.size()) - 1;
    }
    std::stable_partition(result.begin(), result.end(),
                          [](const BackupInfo& backup) { return backup.state == State::Whole; });
    return result;
}

QString BackupStore::newestId() const
{
    const std::vector<QString> all = ids();
    return all.empty() ? QString() : all.front();
}

void BackupStore::noteChange()
{
    QDir().mkpath(folder_);
    QFile mark(QString::fromStdU16String(changeMark().u16string()));
    (void)mark.open(QIODevice::WriteOnly);
}

bool BackupStore::isDue(std::int64_t now) const
{
    constexpr std::int64_t hour = 3600;
    const std::vector<QString> all = ids();
    std::error_code error;
    return fs::exists(changeMark(), error) &&
           std::none_of(all.begin(), all.end(), [&](const QString& id) {
               const std::int64_t made = timeOf(id);
               return made > now - hour && made <= now;
           });
}

BackupManifest BackupStore::newest() const
{
    for (const QString& id : ids()) {
        BackupManifest manifest;
        if (read(id, manifest) == State::Whole) {
            return manifest;
        }
    }
    return {};
}

fs::path BackupStore::begin()
{
    std::error_code error;
    fs::create_directories(pool(), error);
    Require(error, pool());
    // What an unfinished backup has left.
    for (const QString& folder : {folder_, folder_ + QStringLiteral("/Pictures")}) {
        const QDir dir(folder);
        for (const QString& name :
             dir.entryList({QStringLiteral("*.part*")}, QDir::Files | QDir::Hidden)) {
            fs::remove(PathOf(dir.filePath(name)), error);
        }
    }
    return path(QStringLiteral("library.part"));
}

void BackupStore::addToPool(const Path& from, const BackedPicture& picture, bool share,
                            Written& written) const
{
    constexpr std::int64_t bytesAtOnce = 16 << 20;
    const Path to = pictureOf(picture.sha);
    std::error_code error;
    if (fs::exists(to, error)) {
        return;
    }
    Require(PlaceFile(from, to, share ? Placing::MayShare : Placing::Copy), to);
    written.files.push_back(to);
    written.unsyncedBytes += fs::hard_link_count(to, error) > 1 ? 0 : picture.size;
    if (written.unsyncedBytes > bytesAtOnce) {
        Require(SyncFiles(std::span(written.files).subspan(written.synced)), pool());
        written.synced = written.files.size();
        written.unsyncedBytes = 0;
    }
}

void BackupStore::syncPool(const Written& written) const
{
    constexpr std::size_t few = 32;
    const auto unsynced = std::span(written.files).subspan(written.synced);
    if (unsynced.size() > few) {
        Require(SyncFiles(unsynced), pool());
    } else {
        std::for_each(unsynced.begin(), unsynced.end(), SyncOrThrow);
    }
    Require(SyncFolder(pool()), pool());
}

void BackupStore::publish(const QString& id, const Path& library,
                          const BackupManifest& manifest) const
{
    std::error_code error;
    SyncOrThrow(library);
    Require(RenameFile(library, libraryOf(id)), libraryOf(id));
    Require(SyncFolder(PathOf(folder_)), PathOf(folder_));

    const Path last = manifestOf(id);
    const QByteArray text = manifest.text();
    errno = 0;
    NewFile file(last);
    if (!file.isOpen() ||
        !file.write({reinterpret_cast<const std::uint8_t*>(text.constData()),
                     static_cast<std::size_t>(text.size())}) ||
        file.finish() != NewFile::Outcome::Done) {
        ThrowFileError({errno != 0 ? errno : EIO, std::generic_category()}, last);
    }
}

BackupResult BackupStore::make(Library& library, std::int64_t now, const BackupProgress& progress)
{
    const Path copy = begin();
    const BackupManifest before = newest();
    const std::vector<Sha> there = pooled();
    const auto report = [&](std::size_t done, std::size_t all) {
        if (progress) {
            progress(done, all);
        }
    };

    // Rows first: a picture that comes meanwhile belongs to none of them, and none ever goes.
    BackupResult result;
    BackupManifest manifest;
    report(0, 0);
    library.connection().copyTo(QString::fromStdU16String(copy.u16string()), [&] { report(0, 0); });
    std::error_code error;
    manifest.looked = ModifiedAt(copy, error);
    Require(error, copy);
    manifest.librarySize = static_cast<std::int64_t>(fs::file_size(copy, error));
    const std::optional<Sha> librarySha = ShaOfFile(copy);
    if (error || !librarySha) {
        ThrowFileError(error ? error : std::make_error_code(std::errc::io_error), copy);
    }
    manifest.librarySha = *librarySha;
    manifest.program = QStringLiteral(VARNHOLT_VERSION);
    manifest.tables = library.tables().version();
    manifest.questions = countQuestions(library);

    std::vector<LibraryPicture> pictures = LibraryPictures(library.programFolder());
    manifest.pictures.reserve(pictures.size());
    Written written;
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        report(i, pictures.size());
        BackedPicture& picture = pictures[i].facts;
        const BackedPicture* then = before.find(picture.key);
        if (isAsRead(picture, then, before.looked)) {
            picture.sha = then->sha;
        } else {
            const std::optional<Sha> sha = ShaOfFile(pictures[i].path);
            if (!sha) {
                result.unreadable.push_back(picture.key);
                continue;
            }
            picture.sha = *sha;
            ++result.picturesRead;
        }
        if (!std::binary_search(there.begin(), there.end(), picture.sha)) {
            addToPool(pictures[i].path, picture, true, written);
        }
        manifest.pictures.push_back(picture);
    }
    syncPool(written);
    result.picturesWritten = written.files.size();

    manifest.madeAt = now;
    while (fs::exists(manifestOf(idOf(manifest.madeAt, manifest.librarySha)), error)) {
        ++manifest.madeAt;
    }
    const QString id = idOf(manifest.madeAt, manifest.librarySha);
    report(pictures.size(), pictures.size());
    publish(id, copy, manifest);
    fs::remove(changeMark(), error);
    result.backup.id = id;
    result.backup.madeAt = manifest.madeAt;
    result.backup.questions = manifest.questions;
    result.backup.pictures = static_cast<std::int64_t>(manifest.pictures.size());
    result.backup.bytes = manifest.librarySize;
    result.backup.state = State::Whole;
    for (const BackedPicture& picture : manifest.pictures) {
        result.backup.bytes += picture.size;
    }
    return result;
}

} // namespace varnholt
