#include "app/library_rescue.h"

#include "backups/backup_words.h"
#include "store/errors.h"
#include "store/services.h"
#include "toolkit/background_work.h"

#include <QCoreApplication>

namespace varnholt {

bool RescueLibrary(const Services& services, const QString& reason)
{
    constexpr std::int64_t millisecondsPerSecond = 1000;
    const std::int64_t now = services.clock->millisecondsSinceEpoch() / millisecondsPerSecond;
    const BackupStore store(BackupStore::folderBeside(services.programFolder));
    const std::vector<BackupInfo> all = store.list();
    if (all.empty() || all.front().state != BackupManifest::State::Whole) {
        return false;
    }
    const BackupInfo& newest = all.front();
    if (!services.messageBoxes->yesNo(
            QCoreApplication::translate("LibraryRescue", "Database Error"),
            reason + QStringLiteral("\n\n") + BackupWords::newest(newest, now) + u' ' +
                QCoreApplication::translate(
                    "LibraryRescue",
                    "Do you want to put it in the library's place? Newer questions that can still "
                    "be read go to the trash, and the present file is kept beside it."),
            MessageBoxes::Answer::Yes)) {
        return false;
    }
    try {
        RunInBackground(
            nullptr, QCoreApplication::translate("LibraryRescue", "Restoring the backup…"),
            LongWork::Cancel::Offered, [&](const WorkProgress& progress) {
                (void)ReplaceLibrary(services.programFolder, store, newest.id, now, progress);
            });
    } catch (const Cancelled&) {
        return false;
    }
    return true;
}

} // namespace varnholt
