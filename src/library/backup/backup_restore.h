#pragma once

#include "library/backup/BackupStore.h"
#include "library/items.h"

#include <QString>

#include <vector>

namespace varnholt {

/// What restoring a backup would change, for a user to decide on.
struct BackupPlan
{
    std::int32_t questionsBack = 0;
    std::int32_t answersChange = 0;
    /// Questions that are then filed elsewhere.
    std::int32_t filingsChange = 0;
    /// Of these, the newer ones are not in the backup at all.
    std::int32_t questionsToTrash = 0;
    std::int32_t newerQuestionsToTrash = 0;
    /// Assessments, topics and subtopics that come, go or change their names.
    std::int32_t placesChange = 0;
    std::int32_t picturesMissing = 0;
    std::int32_t picturesChange = 0;

    friend bool operator==(const BackupPlan&, const BackupPlan&) = default;
};

struct BackupRestored
{
    BackupPlan done;
    /// The backup of what was there before.
    QString backupOfBefore;
    /// The keys of pictures that the backup has lost, or that could not be put in their place.
    std::vector<std::int32_t> picturesLost;
    /// Every row that is not as it was.
    std::vector<Item> changed;
};

/// Compares the library with a backup; changes nothing. Throws `Error` with the reason when the
/// backup cannot be restored, or not into this library.
[[nodiscard]] BackupPlan PlanBackup(Library& library, const BackupStore& store, const QString& id,
                                    std::int64_t now);

/// Makes the library what `BuildWantedLibrary` says. In this order, so that whenever it ends the
/// library is today's or the restored one: a backup of today in `own`; missing pictures put back;
/// the rows, in one transaction; pictures that are not those of the backup replaced, their files
/// renamed to "<name>.bak". No picture is removed. A program killed before the last of it has that
/// done by `FinishRestore`. `own` is the store beside the library; `store` may be it. Throws
/// `Error`, and what `progress` throws; the rows are as they were then.
BackupRestored RestoreBackup(Library& library, BackupStore& own, const BackupStore& store,
                             const QString& id, std::int64_t now,
                             const BackupProgress& progress = {});

/// For a library that cannot be read any more and that nobody has open: puts the backup's file in
/// its place, and its pictures. What stood there is renamed to "<name>.damaged" and kept. Keys go
/// on above the largest that a picture has. Newer rows that can still be read are carried over as
/// in a restore; where none can, `done` tells of no rows. It is whole or not at all, and the last
/// of it may be left to `FinishRestore`. Throws `Error`, and what `progress` throws.
BackupRestored ReplaceLibrary(const QString& programFolder, const BackupStore& store,
                              const QString& id, std::int64_t now,
                              const BackupProgress& progress = {});

/// To be called after opening the library. Does nothing when no restore was cut short.
void FinishRestore(Library& library, const BackupStore& own);

} // namespace varnholt
