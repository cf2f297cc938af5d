#include "toolkit/ListBox.h"

#include "toolkit/list_box_accessible.h"
#include "toolkit/short_text.h"

#include <QAbstractListModel>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QStyledItemDelegate>
#include <QTextDocument>

#include <algorithm>
#include <utility>

namespace varnholt {

class ListBoxModel : public QAbstractListModel
{
public:
    ListBoxModel(ListBox::Mode mode, QObject* parent)
        : QAbstractListModel(parent)
        , mode_(mode)
    {}

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(rows.size());
    }

    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override
    {
        const ListBox::Row& row = rows.at(static_cast<std::size_t>(index.row()));
        switch (role) {
        case Qt::DisplayRole:
            return ShortLine(row.text, longestShown);
        case Qt::ToolTipRole:
            return Qt::convertFromPlainText(row.text.left(longestToolTip));
        case Qt::UserRole:
            return row.itemData;
        case Qt::CheckStateRole:
            if (mode_ == ListBox::Mode::Multi) {
                return row.selected ? Qt::Checked : Qt::Unchecked;
            }
            return {};
        default:
            return {};
        }
    }

    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override
    {
        const Qt::ItemFlags base = QAbstractListModel::flags(index);
        return mode_ == ListBox::Mode::Multi ? base | Qt::ItemIsUserCheckable : base;
    }

    void setRows(std::vector<ListBox::Row> newRows)
    {
        beginResetModel();
        rows = std::move(newRows);
        endResetModel();
    }

    void append(ListBox::Row row)
    {
        const int position = rowCount();
        beginInsertRows({}, position, position);
        rows.push_back(std::move(row));
        endInsertRows();
    }

    void changed(int first, int last, int role)
    {
        if (first <= last) {
            Q_EMIT dataChanged(index(first), index(last), {role});
        }
    }

    std::vector<ListBox::Row> rows;

private:
    ListBox::Mode mode_;
};

namespace {

/// The list toggles check boxes itself, so that a press makes one change and one `Click`.
class CheckDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::initStyleOption;
    using QStyledItemDelegate::QStyledItemDelegate;

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override
    {
        // Air between the rows: easier to read, and easier to hit.
        return QStyledItemDelegate::sizeHint(option, index) +
               QSize(0, option.fontMetrics.height() / 3);
    }

    bool editorEvent(QEvent*, QAbstractItemModel*, const QStyleOptionViewItem&,
                     const QModelIndex&) override
    {
        return false;
    }
};

} // namespace

ListBox::ListBox(Mode mode, QWidget* parent)
    : QListView(parent)
    , model_(new ListBoxModel(mode, this))
    , mode_(mode)
{
    installListBoxAccessible();
    setModel(model_);
    setItemDelegate(new CheckDelegate(this));
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setUniformItemSizes(true);
    setTextElideMode(Qt::ElideMiddle);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
}

void ListBox::clear()
{
    setRows({});
}

void ListBox::setRows(std::vector<Row> rows)
{
    const QScopedValueRollback quiet(quiet_, quiet_ + 1);
    model_->setRows(std::move(rows));
    revealed_ = -1;
    setCurrentIndex({});
}

void ListBox::addItem(const QString& text, std::int32_t itemData)
{
    model_->append({text, itemData, false});
}

int ListBox::listCount() const
{
    return model_->rowCount();
}

const std::vector<ListBox::Row>& ListBox::rows() const
{
    return model_->rows;
}

QString ListBox::itemText(int row) const
{
    return model_->rows.at(static_cast<std::size_t>(row)).text;
}

std::int32_t ListBox::itemData(int row) const
{
    return model_->rows.at(static_cast<std::size_t>(row)).itemData;
}

void ListBox::setItemTexts(const QStringList& texts)
{
    Q_ASSERT(texts.size() == listCount());
    int row = 0;
    for (const QString& text : texts) {
        model_->rows[static_cast<std::size_t>(row++)].text = text;
    }
    model_->changed(0, row - 1, Qt::DisplayRole);
}

int ListBox::listIndex() const
{
    return currentIndex().isValid() ? currentIndex().row() : -1;
}

void ListBox::setListIndex(int row)
{
    {
        const QScopedValueRollback quiet(quiet_, quiet_ + 1);
        setCurrentIndex(row < 0 ? QModelIndex() : model_->index(row));
    }
    Q_EMIT Click();
}

void ListBox::reveal(int row)
{
    revealed_ = std::min(row, listCount() - 1);
    scrollTo(model_->index(revealed_));
}

bool ListBox::selected(int row) const
{
    return mode_ == Mode::Multi ? model_->rows.at(static_cast<std::size_t>(row)).selected
                                : row >= 0 && row == listIndex();
}

void ListBox::setSelected(int row, bool selected)
{
    if (mode_ == Mode::Single) {
        setListIndex(selected ? row : -1);
        return;
    }
    model_->rows.at(static_cast<std::size_t>(row)).selected = selected;
    model_->changed(row, row, Qt::CheckStateRole);
    Q_EMIT Click();
}

void ListBox::tick(int row, bool selected)
{
    {
        const QScopedValueRollback quiet(quiet_, quiet_ + 1);
        setCurrentIndex(model_->index(row));
    }
    setSelected(row, selected);
}

void ListBox::setAllSelected(bool selected, int focusRow)
{
    if (model_->rows.empty()) {
        return;
    }
    for (Row& row : model_->rows) {
        row.selected = selected;
    }
    model_->changed(0, listCount() - 1, Qt::CheckStateRole);
    if (focusRow >= 0) {
        setListIndex(focusRow);
    } else {
        Q_EMIT Click();
    }
}

QSize ListBox::sizeHint() const
{
    const QFontMetrics metrics = fontMetrics();
    return {metrics.averageCharWidth() * 36, metrics.height() * 12};
}

QItemSelectionModel::SelectionFlags ListBox::selectionCommand(const QModelIndex& index,
                                                              const QEvent*) const
{
    return index.isValid() ? QItemSelectionModel::ClearAndSelect : QItemSelectionModel::NoUpdate;
}

void ListBox::currentChanged(const QModelIndex& current, const QModelIndex& previous)
{
    QListView::currentChanged(current, previous);
    if (quiet_ == 0 && current.isValid()) {
        Q_EMIT Click();
    }
}

bool ListBox::isOnCheckBox(const QModelIndex& index, QPoint position) const
{
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    option.rect = visualRect(index);
    static_cast<const CheckDelegate*>(itemDelegate())->initStyleOption(&option, index);
    const QRect box = style()->subElementRect(QStyle::SE_ItemViewItemCheckIndicator, &option, this);
    // The whole strip before the text takes the tick: a box alone is a small target.
    return option.direction == Qt::RightToLeft ? position.x() >= box.left()
                                               : position.x() <= box.right();
}

void ListBox::pressed(QMouseEvent* event)
{
    // The base class would make the row current for any button.
    if (event->button() != Qt::LeftButton) {
        return;
    }
    const QModelIndex index = indexAt(event->position().toPoint());
    {
        const QScopedValueRollback quiet(quiet_, quiet_ + 1);
        QListView::mousePressEvent(event);
    }
    if (!index.isValid()) {
        return;
    }
    if (mode_ == Mode::Multi && isOnCheckBox(index, event->position().toPoint())) {
        tick(index.row(), !selected(index.row()));
    } else {
        Q_EMIT Click();
    }
}

void ListBox::mousePressEvent(QMouseEvent* event)
{
    pressed(event);
}

void ListBox::mouseDoubleClickEvent(QMouseEvent* event)
{
    pressed(event);
}

void ListBox::keyPressEvent(QKeyEvent* event)
{
    if (mode_ == Mode::Multi && event->key() == Qt::Key_Space &&
        event->modifiers() == Qt::NoModifier && listIndex() >= 0) {
        setSelected(listIndex(), !selected(listIndex()));
        event->accept();
        return;
    }
    QListView::keyPressEvent(event);
}

QModelIndex ListBox::moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers)
{
    if (!currentIndex().isValid() && (action == MoveUp || action == MoveDown)) {
        const QModelIndex start = model_->index(revealed_);
        if (start.isValid()) {
            return start;
        }
    }
    return QListView::moveCursor(action, modifiers);
}

} // namespace varnholt
