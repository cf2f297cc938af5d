#pragma once

#include "library/backup/BackupManifest.h"

#include <QString>

#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

namespace varnholt {

class Library;

/// A backup as a user chooses among them.
struct BackupInfo
{
    /// Its name in the folder, which sorts by the time it was made.
    QString id;
    std::int64_t madeAt = 0;
    std::int64_t questions = 0;
    std::int64_t pictures = 0;
    /// The pictures of keys that the whole one before it does not have; none for the oldest.
    std::optional<std::int64_t> added;
    /// Of all its files, those that it shares included.
    std::int64_t bytes = 0;
    BackupManifest::State state = BackupManifest::State::Damaged;
    /// Why it cannot be restored, a whole sentence; empty when it can.
    QString reason;
};

struct BackupResult
{
    BackupInfo backup;
    std::size_t picturesRead = 0;
    std::size_t picturesWritten = 0;
    /// The keys of pictures that could not be read: the backup is without them.
    std::vector<std::int32_t> unreadable;
};

/// What a thorough look at a backup has found: files that are not as they were, or not there.
struct BackupCheck
{
    bool whole = true;
    std::vector<QString> damagedFiles;
};

/// Things done of all things. What it throws (`Cancelled`) ends the work; nothing has changed then.
using BackupProgress = std::function<void(std::size_t done, std::size_t all)>;

/// The backups in one folder:
///   <id>.manifest           what the backup consists of, written last; without it there is none
///   <id>.mdb                the library file
///   Pictures/<sha>.jpg      the pictures of all backups by their content, links to the library's
///                           own where the file system can
/// An unfinished file is called `.part` and goes with the next backup. `.damaged` is what a check
/// has taken out of its place: so the backup shows as damaged from then on, and the next one made
/// puts a good picture back for all.
///
/// Everything throws `Error`; what was backed up before stays whole whatever happens. Times are
/// seconds of UTC.
class BackupStore
{
public:
    explicit BackupStore(QString folder);
    /// "Backups" beside the library file.
    [[nodiscard]] static QString folderBeside(const QString& programFolder);

    [[nodiscard]] const QString& folder() const { return folder_; }

    /// The whole ones first, and the newest of them first of all. Takes the files' bytes on trust.
    [[nodiscard]] std::vector<BackupInfo> list() const;
    /// The newest one's name, whole or not; empty when there is none.
    [[nodiscard]] QString newestId() const;

    /// Remembers, beyond the end of the program, that the library has changed. To be called after
    /// each change; what fails is not told.
    void noteChange();
    /// Whether the library has changed since the newest one, and an hour has passed.
    [[nodiscard]] bool isDue(std::int64_t now) const;

    /// Backs up what is committed. A library that can only be read can be backed up, too, where
    /// the folder can be written.
    BackupResult make(Library& library, std::int64_t now, const BackupProgress& progress = {});

    /// Removes the backups that `KeptBackups` does not keep, damaged ones by the same measure among
    /// themselves, and what no backup names.
    void tidy(std::int64_t now, std::int64_t utcOffset);

    /// Reads every byte of a backup.
    BackupCheck verify(const QString& id, const BackupProgress& progress = {});

    enum class CopyOutcome
    {
        Copied,
        NothingNew,
        NotThere ///< the place is not connected just now
    };
    /// Copies the newest whole backup to a folder on another disk, in a folder of this library's
    /// own there, whose backups are then a store like any other.
    CopyOutcome copyNewestTo(const QString& place, std::int64_t now, std::int64_t utcOffset,
                             const BackupProgress& progress = {});
    /// The stores at a second place, of all libraries.
    [[nodiscard]] static std::vector<BackupStore> storesAt(const QString& place);
    /// What tells the backups of several libraries apart at a place that they share.
    [[nodiscard]] QString identity() const;

    // For restoring.

    [[nodiscard]] BackupManifest::State read(const QString& id, BackupManifest& manifest) const;
    [[nodiscard]] std::filesystem::path libraryOf(const QString& id) const;
    [[nodiscard]] std::filesystem::path pictureOf(const Sha& sha) const;

private:
    using Path = std::filesystem::path;

    [[nodiscard]] Path path(const QString& name) const;
    [[nodiscard]] Path pool() const { return path(QStringLiteral("Pictures")); }
    [[nodiscard]] Path manifestOf(const QString& id) const;
    /// When a backup was made, by its name; 0 for a name that is not of ours.
    [[nodiscard]] static std::int64_t timeOf(const QString& id);
    /// Newest first.
    [[nodiscard]] std::vector<QString> ids() const;
    [[nodiscard]] std::vector<Sha> pooled() const;
    [[nodiscard]] Path changeMark() const { return path(QStringLiteral("changed")); }
    [[nodiscard]] BackupInfo info(const QString& id, const std::vector<Sha>& pooled,
                                  BackupManifest& manifest) const;
    /// The newest manifest that can be read.
    [[nodiscard]] BackupManifest newest() const;
    [[nodiscard]] Path begin();
    /// Pictures that have come into the pool, to be put on the disk.
    struct Written
    {
        std::vector<Path> files;
        /// The first so many of `files` are on the disk.
        std::size_t synced = 0;
        std::int64_t unsyncedBytes = 0;
    };
    /// Puts a picture of `size` bytes into the pool. Much at once would keep the disk busy beyond
    /// anybody's wish to stop it: it goes there in parts.
    void addToPool(const Path& from, const BackedPicture& picture, bool share,
                   Written& written) const;
    void syncPool(const Written& written) const;
    /// Gives the library file its name and writes the manifest.
    void publish(const QString& id, const Path& library, const BackupManifest& manifest) const;
    void removeUnnamed() const;

    QString folder_;
};

} // namespace varnholt
