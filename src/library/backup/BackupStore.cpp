#include "library/backup/BackupStore.h"

#include "files/NewFile.h"
#include "files/placing.h"
#include "files/sync.h"
#include "library/Library.h"
#include "library/backup/backup_files.h"
#include "library/backup/library_pictures.h"
#include "library/backup/retention.h"
#include "store/statement.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>

#include <algorithm>
#include <cerrno>

namespace varnholt {

namespace fs = std::filesystem;

namespace {

using State = BackupManifest::State;

const QString manifestEnding = QStringLiteral(".manifest");

QString tr(const char* text)
{
    return QCoreApplication::translate("BackupStore", text);
}

QString idOf(std::int64_t time, const Sha& librarySha)
{
    constexpr qsizetype shaDigits = 8;
    return QDateTime::fromSecsSinceEpoch(time, Qt::UTC)
               .toString(QStringLiteral("yyyyMMdd-HHmmss-")) +
           QString::fromLatin1(librarySha.data(), shaDigits);
}

/// 0 for a name that is not of ours.
std::int64_t timeOf(const QString& id)
{
    constexpr qsizetype digits = 15;
    QDateTime time = QDateTime::fromString(id.left(digits), QStringLiteral("yyyyMMdd-HHmmss"));
    time.setTimeSpec(Qt::UTC);
    return time.isValid() ? time.toSecsSinceEpoch() : 0;
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
    const std::optional<QByteArray> text = ReadWhole(path(id + manifestEnding));
    return text ? BackupManifest::read(*text, manifest) : State::Damaged;
}

BackupInfo BackupStore::info(const QString& id, const std::vector<Sha>& pooled) const
{
    BackupManifest manifest;
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
        info.reason = tr("This backup was made by a newer version of Varnholt (%1). Only that "
                         "version can restore it.")
                          .arg(manifest.program);
    } else if (info.state == State::Damaged) {
        info.reason = tr("This backup is damaged: a part of it is missing or not as it was.");
    }
    return info;
}

std::vector<BackupInfo> BackupStore::list() const
{
    const std::vector<Sha> pictures = pooled();
    std::vector<BackupInfo> result;
    for (const QString& id : ids()) {
        result.push_back(info(id, pictures));
    }
    std::stable_partition(result.begin(), result.end(),
                          [](const BackupInfo& backup) { return backup.state == State::Whole; });
    return result;
}

bool BackupStore::isDue(std::int64_t now) const
{
    constexpr std::int64_t hour = 3600;
    const std::vector<QString> all = ids();
    return std::none_of(all.begin(), all.end(), [&](const QString& id) {
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

void BackupStore::syncPool(const std::vector<Path>& written) const
{
    constexpr std::size_t few = 32;
    if (written.size() > few) {
        Require(SyncFileSystem(pool()), pool());
    } else {
        std::for_each(written.begin(), written.end(), SyncOrThrow);
    }
    Require(SyncFolder(pool()), pool());
}

void BackupStore::publish(const QString& id, const Path& library,
                          const BackupManifest& manifest) const
{
    std::error_code error;
    SyncOrThrow(library);
    fs::rename(library, libraryOf(id), error);
    Require(error, libraryOf(id));
    Require(SyncFolder(PathOf(folder_)), PathOf(folder_));

    const Path last = path(id + manifestEnding);
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
    std::vector<Path> written;
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
        const Path pooledPath = pictureOf(picture.sha);
        if (!std::binary_search(there.begin(), there.end(), picture.sha) &&
            !fs::exists(pooledPath, error)) {
            Require(PlaceFile(pictures[i].path, pooledPath, Placing::MayShare), pooledPath);
            written.push_back(pooledPath);
        }
        manifest.pictures.push_back(picture);
    }
    syncPool(written);
    result.picturesWritten = written.size();

    manifest.madeAt = now;
    while (fs::exists(path(idOf(manifest.madeAt, manifest.librarySha) + manifestEnding), error)) {
        ++manifest.madeAt;
    }
    const QString id = idOf(manifest.madeAt, manifest.librarySha);
    report(pictures.size(), pictures.size());
    publish(id, copy, manifest);
    result.backup = {id,
                     manifest.madeAt,
                     manifest.questions,
                     static_cast<std::int64_t>(manifest.pictures.size()),
                     manifest.librarySize,
                     State::Whole,
                     {}};
    for (const BackedPicture& picture : manifest.pictures) {
        result.backup.bytes += picture.size;
    }
    return result;
}

void BackupStore::removeUnnamed() const
{
    std::vector<Sha> named;
    for (const QString& id : ids()) {
        const std::optional<QByteArray> text = ReadWhole(path(id + manifestEnding));
        if (!text) {
            return;
        }
        // Of a damaged manifest, too: what it names may be all that is left.
        const char* word = text->constData();
        for (const char* at = word; at != text->constData() + text->size(); ++at) {
            if (*at == ' ' || *at == '\n') {
                Sha sha;
                if (at - word == std::ptrdiff_t(sha.size())) {
                    std::copy(word, at, sha.begin());
                    named.push_back(sha);
                }
                word = at + 1;
            }
        }
    }
    std::sort(named.begin(), named.end());
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(pool(), error)) {
        const std::string name = entry.path().filename().string();
        Sha sha{};
        std::copy_n(name.begin(), std::min(name.size(), sha.size()), sha.begin());
        if (!std::binary_search(named.begin(), named.end(), sha)) {
            fs::remove(entry.path(), error);
        }
    }
}

void BackupStore::tidy(std::int64_t now, std::int64_t utcOffset)
{
    const auto gone = [&](const std::vector<QString>& among) {
        std::vector<std::int64_t> times;
        std::transform(among.begin(), among.end(), std::back_inserter(times), timeOf);
        const std::vector<bool> kept = KeptBackups(times, now, utcOffset);
        std::vector<QString> result;
        for (std::size_t i = 0; i < among.size(); ++i) {
            if (!kept[i]) {
                result.push_back(among[i]);
            }
        }
        return result;
    };
    std::error_code error;
    // Fewer backups among themselves lose no more than all together: mostly nothing, then.
    if (!gone(ids()).empty()) {
        std::vector<QString> whole;
        std::vector<QString> other;
        for (const BackupInfo& backup : list()) {
            (backup.state == State::Damaged ? other : whole).push_back(backup.id);
        }
        for (const std::vector<QString>& among : {gone(whole), gone(other)}) {
            for (const QString& id : among) {
                fs::remove(path(id + manifestEnding), error);
                Require(error, path(id + manifestEnding));
            }
        }
        (void)SyncFolder(PathOf(folder_));
        removeUnnamed();
    }
    // Without their manifest these are nothing.
    for (const QString& name :
         QDir(folder_).entryList({QStringLiteral("*-*-*.mdb*")}, QDir::Files)) {
        const QString id = name.left(name.indexOf(u'.'));
        if (!fs::exists(path(id + manifestEnding), error) && !error) {
            fs::remove(path(name), error);
        }
    }
}

BackupCheck BackupStore::verify(const QString& id, const BackupProgress& progress)
{
    BackupCheck check;
    const auto damaged = [&](const Path& file) {
        check.whole = false;
        check.damagedFiles.push_back(Shown(file));
    };
    const auto look = [&](const Path& file, const Sha& expected) {
        const std::optional<Sha> found = ShaOfFile(file);
        if (found == expected) {
            return;
        }
        damaged(file);
        if (found) {
            Path aside = file;
            aside += ".damaged";
            std::error_code ignored;
            fs::rename(file, aside, ignored);
        }
    };
    BackupManifest manifest;
    const State state = read(id, manifest);
    if (state != State::Whole) {
        damaged(path(id + manifestEnding));
        return check;
    }
    look(libraryOf(id), manifest.librarySha);
    for (std::size_t i = 0; i < manifest.pictures.size(); ++i) {
        if (progress) {
            progress(i, manifest.pictures.size());
        }
        look(pictureOf(manifest.pictures[i].sha), manifest.pictures[i].sha);
    }
    return check;
}

} // namespace varnholt
