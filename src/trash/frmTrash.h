#pragma once

#include "library/items.h"

#include <QTimer>
#include <QWidget>

#include <map>
#include <optional>
#include <vector>

class QLabel;
class QPushButton;
class QTableView;

namespace varnholt {

class HintLabel;
class Library;
class LineEdit;
class TrashModel;
struct Services;

/// Everything that was ever deleted, with its old place and the date, and the way back. Nothing
/// can be removed for good.
class frmTrash : public QWidget
{
    Q_OBJECT

public:
    frmTrash(Services& services, Library& library, QWidget* parent = nullptr);
    ~frmTrash() override;

protected:
    void focusInEvent(QFocusEvent* event) override;

private:
    void buildControls();
    void connectControls();

    void cmdRestore_Click();
    void cmdUndo_Click();

    /// Reads the trash anew and keeps the place in the list.
    void reload();
    void focusList();
    void filterNow();
    void showState();
    /// The items of the selected rows, in the order of the list.
    [[nodiscard]] std::vector<Item> selectedItems() const;
    /// The items that can come back; empty when the user does not want to. Says what else comes
    /// back, and which have no place to come back to.
    [[nodiscard]] std::vector<Item> agreed(const std::vector<Item>& items);
    /// Restores, and asks for names where names are taken.
    void restore(const std::vector<Item>& items);
    void say(const QString& sentence, bool withUndo);

    Services& services_;
    Library& library_;
    TrashModel* model_ = nullptr;
    /// The restoration that can be undone here.
    std::optional<std::int64_t> step_;
    QTimer filterSoon_;

    LineEdit* txtFilter_ = nullptr;
    QLabel* lblCount_ = nullptr;
    QTableView* tblTrash_ = nullptr;
    QLabel* lblEmpty_ = nullptr;
    HintLabel* lblNote_ = nullptr;
    QPushButton* cmdUndo_ = nullptr;
    QPushButton* cmdRestore_ = nullptr;
};

} // namespace varnholt
