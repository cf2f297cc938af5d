#pragma once

#include "library/backup/BackupStore.h"

#include <QWidget>

#include <functional>
#include <vector>

class QLabel;
class QLineEdit;
class QPushButton;
class QTreeWidget;

namespace varnholt {

class ComboBox;
class HintLabel;
class LibraryBackups;
struct Services;

/// The backups of the library, and of any library at the second place: one can be made, looked
/// through and restored, and a second place named.
class frmBackups : public QWidget
{
    Q_OBJECT

public:
    frmBackups(Services& services, LibraryBackups& backups, QWidget* parent = nullptr);
    ~frmBackups() override;

protected:
    void focusInEvent(QFocusEvent* event) override;

private:
    void buildControls();
    QWidget* buildSecondPlace();
    void connectControls();

    void cboStore_Click();
    void cmdBackUpNow_Click();
    void cmdCheckFiles_Click();
    void cmdRestore_Click();
    void cmdChoose_Click();
    void cmdNone_Click();

    /// The stores to choose from, this library's own first.
    void fillStores();
    /// Reads the list anew and keeps the place in it.
    void reload();
    void showState();
    /// The same with what there is to say of the current row.
    void showRow();
    void showPlace();
    void say(const QString& sentence);
    /// Runs a handler's work and tells what goes wrong.
    void attempt(const std::function<void()>& work);
    /// True when the user wants what a restore would do.
    [[nodiscard]] bool agreed(const BackupInfo& backup);
    /// Null when no row is current.
    [[nodiscard]] const BackupInfo* current() const;
    [[nodiscard]] const BackupStore& shownStore() const;

    Services& services_;
    LibraryBackups& backups_;
    std::vector<BackupStore> stores_;
    std::vector<BackupInfo> list_;

    QLabel* lblState_ = nullptr;
    QLabel* lblStore_ = nullptr;
    ComboBox* cboStore_ = nullptr;
    QTreeWidget* lstBackups_ = nullptr;
    QLabel* lblEmpty_ = nullptr;
    HintLabel* lblNote_ = nullptr;
    QPushButton* cmdBackUpNow_ = nullptr;
    QPushButton* cmdCheckFiles_ = nullptr;
    QPushButton* cmdRestore_ = nullptr;
    QLineEdit* txtPlace_ = nullptr;
    QPushButton* cmdChoose_ = nullptr;
    QPushButton* cmdNone_ = nullptr;
    QLabel* lblCopied_ = nullptr;
};

} // namespace varnholt
