#include "toolkit/list_box_accessible.h"

#include "toolkit/ListBox.h"

#include <QAccessibleWidget>
#include <QPointer>

#include <unordered_map>

namespace varnholt {

namespace {

class RowAccessible : public QAccessibleInterface, public QAccessibleActionInterface
{
public:
    RowAccessible(ListBox* list, int row)
        : list_(list)
        , row_(row)
    {}

    [[nodiscard]] bool isValid() const override { return list_ && row_ < list_->listCount(); }
    [[nodiscard]] QObject* object() const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* parent() const override
    {
        return QAccessible::queryAccessibleInterface(list_);
    }
    [[nodiscard]] QAccessibleInterface* child(int) const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    [[nodiscard]] QRect rect() const override
    {
        const QRect inList = list_->visualRect(list_->model()->index(row_, 0));
        return {list_->viewport()->mapToGlobal(inList.topLeft()), inList.size()};
    }
    [[nodiscard]] QAccessible::Role role() const override { return QAccessible::CheckBox; }
    [[nodiscard]] QString text(QAccessible::Text which) const override
    {
        return which == QAccessible::Name && isValid() ? list_->itemText(row_) : QString();
    }
    void setText(QAccessible::Text, const QString&) override {}
    [[nodiscard]] QAccessible::State state() const override
    {
        QAccessible::State state;
        state.invalid = !isValid();
        if (isValid()) {
            state.checkable = true;
            state.checked = list_->selected(row_);
            state.focusable = state.selectable = true;
            state.selected = list_->listIndex() == row_;
            state.focused = state.selected && list_->hasFocus();
            state.disabled = !list_->isEnabled();
        }
        return state;
    }
    void* interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }

    [[nodiscard]] QStringList actionNames() const override
    {
        return {toggleAction(), setFocusAction()};
    }
    void doAction(const QString& name) override
    {
        if (!isValid() || !list_->isEnabled()) {
            return;
        }
        if (name == toggleAction()) {
            list_->tick(row_, !list_->selected(row_));
        } else if (name == setFocusAction()) {
            list_->setFocus();
            list_->setListIndex(row_);
        }
    }
    [[nodiscard]] QStringList keyBindingsForAction(const QString&) const override { return {}; }

private:
    QPointer<ListBox> list_;
    int row_;
};

class ListBoxAccessible : public QAccessibleWidget
{
public:
    explicit ListBoxAccessible(ListBox* list)
        : QAccessibleWidget(list, QAccessible::List)
        , list_(list)
    {}
    ListBoxAccessible(const ListBoxAccessible&) = delete;
    ListBoxAccessible& operator=(const ListBoxAccessible&) = delete;
    ~ListBoxAccessible() override
    {
        for (const auto& [row, id] : rows_) {
            QAccessible::deleteAccessibleInterface(id);
        }
    }

    [[nodiscard]] int childCount() const override { return list_ ? list_->listCount() : 0; }
    [[nodiscard]] QAccessibleInterface* child(int row) const override
    {
        if (row < 0 || row >= childCount()) {
            return nullptr;
        }
        const auto found = rows_.find(row);
        if (found != rows_.end()) {
            return QAccessible::accessibleInterface(found->second);
        }
        auto* made = new RowAccessible(list_, row);
        rows_.emplace(row, QAccessible::registerAccessibleInterface(made));
        return made;
    }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* child) const override
    {
        for (const auto& [row, id] : rows_) {
            if (QAccessible::accessibleInterface(id) == child) {
                return row;
            }
        }
        return -1;
    }
    [[nodiscard]] QAccessibleInterface* childAt(int x, int y) const override
    {
        return child(list_->indexAt(list_->viewport()->mapFromGlobal(QPoint(x, y))).row());
    }
    [[nodiscard]] QAccessibleInterface* focusChild() const override
    {
        return child(list_->listIndex());
    }

private:
    QPointer<ListBox> list_;
    mutable std::unordered_map<int, QAccessible::Id> rows_;
};

QAccessibleInterface* makeListBox(const QString&, QObject* object)
{
    auto* list = qobject_cast<ListBox*>(object);
    return list && list->mode() == ListBox::Mode::Multi ? new ListBoxAccessible(list) : nullptr;
}

} // namespace

void installListBoxAccessible()
{
    static const bool once = [] {
        QAccessible::installFactory(makeListBox);
        return true;
    }();
    static_cast<void>(once);
}

} // namespace varnholt
