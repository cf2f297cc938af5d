#include "backups/LibraryBackups.h"

#include "library/Library.h"
#include "store/services.h"

#include <QDateTime>
#include <QDir>
#include <QSettings>

namespace varnholt {

namespace {

using State = BackupManifest::State;

std::int64_t utcOffset(std::int64_t now)
{
    return QDateTime::fromSecsSinceEpoch(now).offsetFromUtc();
}

} // namespace

LibraryBackups::LibraryBackups(Services& services, Library& library)
    : services_(services)
    , library_(library)
    , store_(BackupStore::folderBeside(services.programFolder))
{}

QString LibraryBackups::begin()
{
    if (library_.connection().isReadOnly()) {
        return {};
    }
    connect(&library_, &Library::changed, this, [this] {
        if (!noted_) {
            store_.noteChange();
            noted_ = true;
        }
    });
    library_.tables().beforeUpgrade = [this] {
        inBackground(nullptr,
                     tr("Backing up the question library before it is brought up to date…"),
                     LongWork::Cancel::NotOffered, Connection::Access::ReadOnly,
                     [store = store_, now = now()](Library& library, const WorkProgress& progress) {
                         BackupStore(store).make(library, now, progress);
                     });
    };
    try {
        FinishRestore(library_, store_);
    } catch (const Error& error) {
        return tr("Some pictures of the restored backup are not in their place yet, which will be "
                  "tried again at the next start: %1")
            .arg(error.message());
    }
    return {};
}

std::int64_t LibraryBackups::now() const
{
    constexpr std::int64_t millisecondsPerSecond = 1000;
    return services_.clock->millisecondsSinceEpoch() / millisecondsPerSecond;
}

FeatureState LibraryBackups::canMake() const
{
    if (damaged_) {
        return {false, tr("The question library is damaged: a backup would be damaged as well.")};
    }
    if (!library_.connection().isOpen() || library_.connection().isReadOnly()) {
        return library_.features();
    }
    return {};
}

FeatureState LibraryBackups::canRestore() const
{
    return damaged_ ? FeatureState() : library_.features();
}

void LibraryBackups::setDamaged()
{
    damaged_ = true;
    library_.open(Connection::Access::ReadOnly);
}

std::optional<BackupInfo> LibraryBackups::newestGood() const
{
    const std::vector<BackupInfo> all = store_.list();
    return all.empty() || all.front().state != State::Whole ? std::nullopt
                                                            : std::optional(all.front());
}

void LibraryBackups::inBackground(QWidget* window, const QString& label, LongWork::Cancel cancel,
                                  Connection::Access access, const Work& work)
{
    RunInBackground(window, label, cancel, [&](const WorkProgress& progress) {
        Library own(services_.programFolder, *services_.clock);
        own.open(access);
        work(own, progress);
    });
}

BackupResult LibraryBackups::make(QWidget* window, const QString& label)
{
    BackupResult result;
    inBackground(window, label, LongWork::Cancel::Offered, Connection::Access::ReadOnly,
                 [&](Library& library, const WorkProgress& progress) {
                     result = store_.make(library, now(), progress);
                     store_.tidy(now(), utcOffset(now()));
                 });
    noted_ = false;
    return result;
}

bool LibraryBackups::makeBefore(QWidget* window)
{
    try {
        make(window, tr("Backing up the question library first…"));
    } catch (const Cancelled&) {
        return false;
    } catch (const Error& error) {
        return services_.messageBoxes->yesNo(
            tr("Backups"), tr("The question library could not be backed up first: %1\n\nDo you "
                              "want to go on without a backup?")
                               .arg(error.message()));
    }
    return true;
}

void LibraryBackups::makeAtClose(QWidget* window)
{
    if (!canMake().on) {
        return;
    }
    QString failure = tr("The question library could not be backed up: %1\n\nThe library itself is "
                         "saved. The next try is made when you close Varnholt again.");
    try {
        if (store_.isDue(now())) {
            make(window, tr("Backing up the question library…"));
        }
        failure = tr("The backup could not be copied to the second place: %1\n\nThe backup beside "
                     "the question library is whole.");
        if (!secondPlace().folder.isEmpty() && setting("id") != store_.newestId()) {
            fillSecondPlace(window);
        }
    } catch (const Cancelled&) {
        // At the next close.
    } catch (const Error& error) {
        services_.messageBoxes->inform(tr("Backups"), failure.arg(error.message()));
    }
}

BackupPlan LibraryBackups::plan(QWidget* window, const BackupStore& from, const QString& id)
{
    BackupPlan result;
    inBackground(window, tr("Comparing the backup with the question library…"),
                 LongWork::Cancel::Offered, Connection::Access::Change,
                 [&](Library& library, const WorkProgress& progress) {
                     progress(0, 0);
                     result = PlanBackup(library, from, id, now());
                     progress(0, 0);
                 });
    return result;
}

BackupRestored LibraryBackups::restore(QWidget* window, const BackupStore& from, const QString& id)
{
    if (damaged_) {
        return replaceDamaged(window, from, id);
    }
    // Done in the middle of it, this would pass for another program's change.
    library_.connection().settle();
    BackupRestored result;
    inBackground(window, tr("Restoring the backup…"), LongWork::Cancel::Offered,
                 Connection::Access::Change, [&](Library& library, const WorkProgress& progress) {
                     result = RestoreBackup(library, store_, from, id, now(), progress);
                 });
    noted_ = false;
    library_.refresh();
    Q_EMIT library_.changed({result.changed});
    return result;
}

BackupRestored LibraryBackups::replaceDamaged(QWidget* window, const BackupStore& from,
                                              const QString& id)
{
    library_.close();
    BackupRestored result;
    try {
        RunInBackground(window, tr("Restoring the backup…"), LongWork::Cancel::Offered,
                        [&](const WorkProgress& progress) {
                            result =
                                ReplaceLibrary(services_.programFolder, from, id, now(), progress);
                        });
    } catch (...) {
        library_.open(Connection::Access::ReadOnly);
        throw;
    }
    library_.open();
    damaged_ = false;
    Q_EMIT library_.changed({result.changed});
    return result;
}

QString LibraryBackups::setting(const char* name) const
{
    return QSettings()
        .value(QStringLiteral("backups/%1/%2").arg(store_.identity(), QLatin1String(name)))
        .toString();
}

LibraryBackups::SecondPlace LibraryBackups::secondPlace() const
{
    if (!QFileInfo::exists(store_.folder() + QStringLiteral("/identity"))) {
        return {};
    }
    return {setting("folder"), setting("copied").toLongLong()};
}

void LibraryBackups::setSecondPlace(const QString& folder)
{
    QSettings settings;
    settings.beginGroup(QStringLiteral("backups/%1").arg(store_.identity()));
    settings.remove(QString());
    if (!folder.isEmpty()) {
        settings.setValue(QStringLiteral("folder"), folder);
    }
}

BackupStore::CopyOutcome LibraryBackups::fillSecondPlace(QWidget* window)
{
    const QString folder = secondPlace().folder;
    BackupStore::CopyOutcome outcome = BackupStore::CopyOutcome::NotThere;
    RunInBackground(window, tr("Copying the backup to %1…").arg(QDir::toNativeSeparators(folder)),
                    LongWork::Cancel::Offered, [&](const WorkProgress& progress) {
                        outcome = store_.copyNewestTo(folder, now(), utcOffset(now()), progress);
                    });
    QSettings settings;
    settings.beginGroup(QStringLiteral("backups/%1").arg(store_.identity()));
    if (outcome != BackupStore::CopyOutcome::NotThere) {
        settings.setValue(QStringLiteral("id"), store_.newestId());
    }
    if (outcome == BackupStore::CopyOutcome::Copied) {
        settings.setValue(QStringLiteral("copied"), QString::number(now()));
    }
    return outcome;
}

} // namespace varnholt
