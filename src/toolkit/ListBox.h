#pragma once

#include <QListView>
#include <QStringList>

#include <cstdint>
#include <vector>

namespace varnholt {

class ListBoxModel;

/// A list of rows, each with a text and an integer. Rows count from 0.
///
/// In a single-selection list the current row is the selected one. In a multi-selection list
/// a row's selection is a check box: ticking it selects and focuses the row, clicking the
/// text only focuses it, Space toggles the focused row.
///
/// `Click` fires after every change of the current row or of a row's selection, and after a
/// click on the row that is current already; whether the user or the program made the
/// change. A call that changes many rows fires once. Filling, clearing and renaming rows is
/// no change of either and fires nothing.
class ListBox : public QListView
{
    Q_OBJECT

public:
    enum class Mode
    {
        Single,
        Multi
    };

    struct Row
    {
        QString text;
        std::int32_t itemData = 0;
        /// Multi-selection lists only.
        bool selected = false;
    };

    explicit ListBox(Mode mode, QWidget* parent = nullptr);

    [[nodiscard]] Mode mode() const { return mode_; }

    /// No rows, no current row.
    void clear();
    /// Replaces all rows; afterwards no row is current.
    void setRows(std::vector<Row> rows);
    void addItem(const QString& text, std::int32_t itemData);

    [[nodiscard]] int listCount() const;
    [[nodiscard]] const std::vector<Row>& rows() const;
    /// Row 0 to listCount() - 1; anything else throws `std::out_of_range`.
    [[nodiscard]] QString itemText(int row) const;
    [[nodiscard]] std::int32_t itemData(int row) const;
    /// New texts for all rows, as many as there are rows. Everything else stays.
    void setItemTexts(const QStringList& texts);

    /// The current row, or -1.
    [[nodiscard]] int listIndex() const;
    /// Makes a row current, or none with -1; fires `Click` also when it was current before.
    void setListIndex(int row);

    /// Scrolls a row, or the last when there are fewer, into view without making it current.
    /// While no row is current, the arrow keys begin at it.
    void reveal(int row);

    [[nodiscard]] bool selected(int row) const;
    void setSelected(int row, bool selected);
    /// As by the user: selects or unselects the row of a multi-selection list and makes it
    /// current, with one `Click`.
    void tick(int row, bool selected);
    /// Selects or unselects every row of a multi-selection list and, where `focusRow` is not
    /// -1, makes that row current; all with one `Click`. Fires nothing when there are no rows.
    void setAllSelected(bool selected, int focusRow = -1);

    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    void Click();

protected:
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    /// The current row is the marked one, whatever modifier keys are down.
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                         const QEvent* event) const override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;

private:
    void pressed(QMouseEvent* event);
    [[nodiscard]] bool isOnCheckBox(const QModelIndex& index, QPoint position) const;

    ListBoxModel* model_;
    Mode mode_;
    /// While positive, a change of the current row is part of something bigger that fires
    /// once itself.
    int quiet_ = 0;
    int revealed_ = -1;
};

} // namespace varnholt
