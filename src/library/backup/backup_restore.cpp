#include "library/backup/backup_restore.h"

#include "files/NewFile.h"
#include "files/placing.h"
#include "files/sync.h"
#include "library/Library.h"
#include "library/backup/backup_files.h"
#include "library/backup/library_pictures.h"
#include "library/backup/wanted_library.h"
#include "pictures/picture_files.h"
#include "store/library_file.h"
#include "store/statement.h"

#include <QCoreApplication>
#include <QDir>
#include <QScopeGuard>
#include <QTemporaryDir>

#include <algorithm>
#include <cerrno>
#include <utility>
#include <vector>

namespace varnholt {

namespace fs = std::filesystem;

namespace {

using State = BackupManifest::State;

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(BackupStore)
};

/// The manifest of a backup that can be restored.
BackupManifest wholeManifest(const BackupStore& store, const QString& id)
{
    BackupManifest manifest;
    State state = store.read(id, manifest);
    if (state == State::Whole && manifest.tables > int(PlusTables::ownScripts().size())) {
        state = State::Newer;
    }
    if (state == State::Newer) {
        throw Error(Words::tr("This backup was made by a newer version of Varnholt (%1). Only that "
                              "version can restore it.")
                        .arg(manifest.program));
    }
    if (state != State::Whole || ShaOfFile(store.libraryOf(id)) != manifest.librarySha) {
        throw Error(
            Words::tr("This backup is damaged and cannot be restored. Please choose another one. "
                      "Nothing has been changed."));
    }
    return manifest;
}

/// The same for this library.
BackupManifest restorable(const Library& library, const BackupStore& store, const QString& id)
{
    if (const FeatureState state = library.features(); !state.on) {
        throw Error(state.reason);
    }
    return wholeManifest(store, id);
}

void placeBackupsLibrary(const BackupStore& store, const QString& id, const fs::path& file)
{
    std::error_code error;
    for (const char* ending : {"-wal", "-shm", "-journal"}) {
        fs::path side = file;
        fs::remove(side += ending, error);
    }
    Require(PlaceFile(store.libraryOf(id), file, Placing::Copy), file);
    fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write, fs::perm_options::add,
                    error);
}

WantedLibrary buildFrom(const BackupStore& store, const QString& id, const fs::path& file,
                        const QString& today, std::int64_t now)
{
    placeBackupsLibrary(store, id, file);
    return BuildWantedLibrary(QString::fromStdU16String(file.u16string()), today, now);
}

/// Changes whenever a program changes the library.
std::pair<std::int64_t, std::int64_t> stateOf(Library& library)
{
    const auto value = [&](const char* query) {
        Statement statement(library.connection(), query);
        statement.next();
        return statement.integer(0);
    };
    return {value("PRAGMA data_version"), value("SELECT total_changes()")};
}

struct PictureWork
{
    std::vector<const BackedPicture*> missing;
    std::vector<const BackedPicture*> other;
};

PictureWork comparePictures(const QString& programFolder, const BackupManifest& today,
                            const BackupManifest& wanted)
{
    PictureWork work;
    BackupManifest there;
    for (const LibraryPicture& picture : LibraryPictures(programFolder)) {
        there.pictures.push_back(picture.facts);
    }
    for (const BackedPicture& picture : wanted.pictures) {
        const BackedPicture* present = today.find(picture.key);
        if (present && present->sha == picture.sha) {
            continue;
        }
        const bool exists = present || there.find(picture.key);
        (exists ? work.other : work.missing).push_back(&picture);
    }
    return work;
}

/// A free name beside a file: its own with the ending and, if need be, a number.
fs::path nameAside(const fs::path& file, const std::string& ending)
{
    std::error_code error;
    fs::path aside = file;
    aside += ending;
    for (int i = 2; fs::exists(aside, error); ++i) {
        aside = file;
        aside += ending + std::to_string(i);
    }
    return aside;
}

/// Renames a file out of the way; it is never removed.
void setAside(const fs::path& file, const std::string& ending)
{
    Require(RenameFile(file, nameAside(file, ending)), file);
}

/// Keeps what a file holds that is about to be replaced.
void keepAside(const fs::path& file, const std::string& ending)
{
    Require(PlaceFile(file, nameAside(file, ending), Placing::MayShare), file);
}

/// Whether a backup's picture is what it was. Size and time are as good here as for a picture in
/// `Files`; only links to those have kept them.
bool isWhole(const fs::path& file, const BackedPicture& picture)
{
    std::error_code error;
    return (static_cast<std::int64_t>(fs::file_size(file, error)) == picture.size &&
            ModifiedAt(file, error) == picture.modified && !error) ||
           ShaOfFile(file) == picture.sha;
}

/// Pictures on their way back from a backup into a library.
class PicturesBack
{
public:
    PicturesBack(const QString& programFolder, const BackupStore& store)
        : programFolder_(programFolder)
        , store_(store)
    {}

    /// Puts a picture where there is none. False when the backup has lost it or it cannot be
    /// written.
    bool put(const BackedPicture& picture)
    {
        const fs::path original = store_.pictureOf(picture.sha);
        const fs::path place = PathOf(NewPictureFile(programFolder_, picture.key));
        if (!isWhole(original, picture) || PlaceFile(original, place, Placing::MayShare)) {
            return false;
        }
        placed_.push_back(place);
        return true;
    }
    /// The same where there may be another one, which is set aside.
    bool replace(const BackedPicture& picture);
    /// The same when it is too late to fail.
    bool tryToReplace(const BackedPicture& picture)
    {
        try {
            return replace(picture);
        } catch (const Error&) {
            return false;
        }
    }
    /// Has on the disk what was put.
    [[nodiscard]] std::error_code sync() { return SyncFiles(std::exchange(placed_, {})); }

private:
    QString programFolder_;
    const BackupStore& store_;
    std::vector<fs::path> placed_;
};

bool PicturesBack::replace(const BackedPicture& picture)
{
    const fs::path place = PathOf(FindPictureFile(programFolder_, picture.key));
    std::error_code error;
    if (fs::exists(place, error)) {
        if (ShaOfFile(place) == picture.sha) {
            return true;
        }
        if (!isWhole(store_.pictureOf(picture.sha), picture)) {
            return false;
        }
        setAside(place, ".bak");
    }
    return put(picture);
}

/// Where a restore says what is left to do once the rows are there.
fs::path pendingOf(const BackupStore& own)
{
    return PathOf(own.folder() + QStringLiteral("/restore.pending"));
}

void writePending(const BackupStore& own, const BackupStore& store, const QString& id,
                  const QByteArray& fingerprint)
{
    const QByteArray text =
        fingerprint + '\n' + id.toUtf8() + '\n' + QDir(store.folder()).absolutePath().toUtf8();
    std::error_code ignored;
    fs::remove(pendingOf(own), ignored);
    errno = 0;
    NewFile file(pendingOf(own));
    if (!file.isOpen() ||
        !file.write({reinterpret_cast<const std::uint8_t*>(text.constData()),
                     static_cast<std::size_t>(text.size())}) ||
        file.finish() != NewFile::Outcome::Done) {
        ThrowFileError({errno != 0 ? errno : EIO, std::generic_category()}, pendingOf(own));
    }
}

fs::path picturesFolder(const QString& programFolder)
{
    return PathOf(NewPictureFile(programFolder, 0)).parent_path();
}

} // namespace

BackupPlan PlanBackup(Library& library, const BackupStore& store, const QString& id,
                      std::int64_t now)
{
    const BackupManifest manifest = restorable(library, store, id);
    const QTemporaryDir work;
    const QString today = work.filePath(QStringLiteral("today.mdb"));
    library.connection().copyTo(today);
    BackupPlan plan =
        buildFrom(store, id, PathOf(work.filePath(QStringLiteral("wanted.mdb"))), today, now).plan;

    BackupManifest present;
    for (const LibraryPicture& picture : LibraryPictures(library.programFolder())) {
        present.pictures.push_back(picture.facts);
        // A picture that has kept size and time is the one that was backed up.
        const BackedPicture* then = manifest.find(picture.facts.key);
        const bool same = then && then->size == picture.facts.size;
        const std::optional<Sha> sha = same && then->modified == picture.facts.modified
                                           ? then->sha
                                           : (same ? ShaOfFile(picture.path) : std::nullopt);
        present.pictures.back().sha = sha.value_or(Sha{});
    }
    const PictureWork pictures = comparePictures(library.programFolder(), present, manifest);
    plan.picturesMissing = static_cast<std::int32_t>(pictures.missing.size());
    plan.picturesChange = static_cast<std::int32_t>(pictures.other.size());
    return plan;
}

BackupRestored RestoreBackup(Library& library, BackupStore& own, const BackupStore& store,
                             const QString& id, std::int64_t now, const BackupProgress& progress)
{
    const BackupManifest manifest = restorable(library, store, id);
    BackupRestored result;
    const auto before = stateOf(library);
    result.backupOfBefore = own.make(library, now, progress).backup.id;
    BackupManifest today;
    if (own.read(result.backupOfBefore, today) != State::Whole) {
        throw Error(
            Words::tr("Today's library could not be backed up, so nothing has been changed."));
    }

    const fs::path file = PathOf(own.folder() + QStringLiteral("/wanted.part"));
    const auto removeWanted = qScopeGuard([&] {
        std::error_code ignored;
        fs::remove(file, ignored);
    });
    const WantedLibrary wanted =
        buildFrom(store, id, file,
                  QString::fromStdU16String(own.libraryOf(result.backupOfBefore).u16string()), now);
    result.done = wanted.plan;

    const QString& folder = library.programFolder();
    const PictureWork pictures = comparePictures(folder, today, manifest);
    result.done.picturesMissing = static_cast<std::int32_t>(pictures.missing.size());
    result.done.picturesChange = static_cast<std::int32_t>(pictures.other.size());
    std::error_code error;
    fs::create_directories(picturesFolder(folder), error);
    Require(error, picturesFolder(folder));
    PicturesBack back(folder, store);
    for (std::size_t i = 0; i < pictures.missing.size(); ++i) {
        if (progress) {
            progress(i, pictures.missing.size());
        }
        if (!back.put(*pictures.missing[i])) {
            result.picturesLost.push_back(pictures.missing[i]->key);
        }
    }
    Require(back.sync(), picturesFolder(folder));
    if (!pictures.other.empty()) {
        writePending(own, store, id, wanted.fingerprint);
    }
    if (stateOf(library) != before) {
        throw Error(
            Words::tr("The question library was changed while the backup was being restored. "
                      "Please try again."));
    }
    library.connection().replaceBy(QString::fromStdU16String(file.u16string()));

    // From here on the backup is restored, and nothing may tell otherwise.
    library.refresh();
    for (const BackedPicture* picture : pictures.other) {
        if (!back.tryToReplace(*picture)) {
            result.picturesLost.push_back(picture->key);
        }
    }
    if (!pictures.other.empty()) {
        (void)back.sync();
        fs::remove(pendingOf(own), error);
    }
    result.changed = wanted.changed;
    Q_EMIT library.changed({result.changed});
    return result;
}

BackupRestored ReplaceLibrary(const QString& programFolder, const BackupStore& store,
                              const QString& id, std::int64_t now, const BackupProgress& progress)
{
    const BackupManifest manifest = wholeManifest(store, id);
    const BackupStore own(BackupStore::folderBeside(programFolder));
    std::error_code error;
    for (const fs::path& folder : {PathOf(own.folder()), picturesFolder(programFolder)}) {
        fs::create_directories(folder, error);
        Require(error, folder);
    }
    const fs::path file = PathOf(own.folder() + QStringLiteral("/wanted.part"));
    const QString damaged = LibraryPath(programFolder);
    BackupRestored result;
    try {
        if (QFileInfo(damaged).isFile()) {
            WantedLibrary wanted = buildFrom(store, id, file, damaged, now);
            result.done = wanted.plan;
            result.changed = std::move(wanted.changed);
        } else {
            placeBackupsLibrary(store, id, file);
        }
    } catch (const DatabaseError&) {
        placeBackupsLibrary(store, id, file);
    }
    std::vector<const BackedPicture*> missing;
    std::vector<const BackedPicture*> other;
    std::int32_t largestKey = 0;
    BackupManifest there;
    for (const LibraryPicture& picture : LibraryPictures(programFolder)) {
        there.pictures.push_back(picture.facts);
        largestKey = picture.facts.key;
    }
    for (const BackedPicture& picture : manifest.pictures) {
        (there.find(picture.key) ? other : missing).push_back(&picture);
    }
    PicturesBack back(programFolder, store);
    for (std::size_t i = 0; i < missing.size(); ++i) {
        if (progress) {
            progress(i, manifest.pictures.size());
        }
        if (!back.put(*missing[i])) {
            result.picturesLost.push_back(missing[i]->key);
        }
    }
    Require(back.sync(), picturesFolder(programFolder));
    writePending(own, store, id, PrepareReplacement(Shown(file), largestKey));
    SyncOrThrow(file);

    // The log belongs to the damaged file and would be read into the new one.
    const fs::path library = PathOf(damaged);
    for (const char* ending : {"-wal", "-shm", "-journal", ""}) {
        fs::path old = library;
        old += ending;
        if (fs::exists(old, error)) {
            *ending ? setAside(old, ".damaged") : keepAside(old, ".damaged");
        }
    }
    Require(RenameFile(file, library), library);
    Require(SyncFolder(library.parent_path()), library.parent_path());
    for (std::size_t i = 0; i < other.size(); ++i) {
        if (!back.tryToReplace(*other[i])) {
            result.picturesLost.push_back(other[i]->key);
        }
    }
    fs::remove(pendingOf(own), error);
    return result;
}

void FinishRestore(Library& library, const BackupStore& own)
{
    const std::optional<QByteArray> text = ReadWhole(pendingOf(own));
    if (!text || library.connection().isReadOnly()) {
        return;
    }
    const QList<QByteArray> lines = text->split('\n');
    const BackupStore store(lines.size() == 3 ? QString::fromUtf8(lines[2]) : QString());
    BackupManifest manifest;
    // Otherwise the rows never came, or have changed since: the pictures are theirs.
    if (lines.size() == 3 && lines[0] == FingerprintOf(library.connection()) &&
        store.read(QString::fromUtf8(lines[1]), manifest) == State::Whole) {
        PicturesBack back(library.programFolder(), store);
        for (const BackedPicture& picture : manifest.pictures) {
            (void)back.replace(picture);
        }
        (void)back.sync();
    }
    std::error_code ignored;
    fs::remove(pendingOf(own), ignored);
}

} // namespace varnholt
