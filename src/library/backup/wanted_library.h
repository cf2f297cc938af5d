#pragma once

#include "library/backup/backup_restore.h"
#include "library/items.h"

#include <QString>

#include <vector>

namespace varnholt {

class Connection;

/// What is known of a wanted library once it is built.
struct WantedLibrary
{
    BackupPlan plan;
    /// Every row that is not as it is today.
    std::vector<Item> changed;
    /// Tells one state of the classic tables from another.
    QByteArray fingerprint;
};

/// Turns `file`, a copy of a backup's library, into the library that restoring it gives:
/// - the rows of the backup;
/// - today's newer rows, in the classic tables and in those beside them, under their own keys: as
///   not available, where the table knows that;
/// - keys go on from where they are today;
/// - the journal keeps today's newer entries for what they tell of the time, as steps that can be
///   undone no more, and gets one for each newer row that goes to the trash;
/// - the library's ID stays today's.
/// `today` is the library's file. Does not fill in the plan's pictures. Throws `DatabaseError`.
[[nodiscard]] WantedLibrary BuildWantedLibrary(const QString& file, const QString& today,
                                               std::int64_t now);

/// The same for a library that has nothing to add: keys of questions go on above `largestKey`. The
/// fingerprint is returned. Throws `DatabaseError`.
[[nodiscard]] QByteArray PrepareReplacement(const QString& file, std::int32_t largestKey);

/// The fingerprint of an open library.
[[nodiscard]] QByteArray FingerprintOf(Connection& library);

} // namespace varnholt
