#pragma once

#include "library/PlusTables.h"
#include "library/backup/backup_restore.h"
#include "store/connection.h"
#include "toolkit/background_work.h"

#include <QObject>

#include <functional>
#include <optional>

namespace varnholt {

class Library;
struct Services;

/// The backups of the program's library as its windows use them. Each long work goes on on a
/// thread of its own, over a connection of its own, under a progress bar. Only a program that may
/// change the library makes any. Throws `Error`, and `Cancelled` for the user's wish.
class LibraryBackups : public QObject
{
    Q_OBJECT

public:
    /// Both outlive it.
    LibraryBackups(Services& services, Library& library);

    /// To be called when the library has been opened: ends a restore that was cut short, and from
    /// then on notes changes and backs up before the tables of an older version are changed.
    /// Returns a sentence about what could not be done; empty when all is well.
    [[nodiscard]] QString begin();

    [[nodiscard]] BackupStore& store() { return store_; }
    [[nodiscard]] std::int64_t now() const;

    /// Whether a backup can be made, or restored, and if not why.
    [[nodiscard]] FeatureState canMake() const;
    [[nodiscard]] FeatureState canRestore() const;
    /// The library's file is damaged: it is only read, and a restore puts the backup's in its
    /// place.
    void setDamaged();
    [[nodiscard]] bool isDamaged() const { return damaged_; }
    /// The newest one that can be restored.
    [[nodiscard]] std::optional<BackupInfo> newestGood() const;

    /// Makes one and removes those that are not kept any longer. `label` says why now.
    BackupResult make(QWidget* window, const QString& label);
    /// Before something that changes much: true when it may begin. When no backup can be made the
    /// user decides.
    [[nodiscard]] bool makeBefore(QWidget* window);
    /// When one is due, or the second place lacks the newest. Tells what goes wrong.
    void makeAtClose(QWidget* window);

    [[nodiscard]] BackupPlan plan(QWidget* window, const BackupStore& from, const QString& id);
    /// Then tells every window.
    BackupRestored restore(QWidget* window, const BackupStore& from, const QString& id);

    /// The folder that backups are copied to as well.
    struct SecondPlace
    {
        QString folder;
        /// 0 when nothing has been copied yet.
        std::int64_t copiedAt = 0;
    };
    /// Empty when there is none.
    [[nodiscard]] SecondPlace secondPlace() const;
    /// Remembered for this library; an empty folder for none. Throws where it cannot be.
    void setSecondPlace(const QString& folder);
    /// Brings the newest backup there.
    BackupStore::CopyOutcome fillSecondPlace(QWidget* window);

private:
    using Work = std::function<void(Library& library, const WorkProgress& progress)>;

    /// Does work with the library opened anew.
    void inBackground(QWidget* window, const QString& label, LongWork::Cancel cancel,
                      Connection::Access access, const Work& work);
    BackupRestored replaceDamaged(QWidget* window, const BackupStore& from, const QString& id);
    [[nodiscard]] QString setting(const char* name) const;

    Services& services_;
    Library& library_;
    BackupStore store_;
    bool noted_ = false;
    bool damaged_ = false;
};

} // namespace varnholt
