#include "selection/QuotaColumn.h"

#include "toolkit/LineEdit.h"
#include "toolkit/ListBox.h"
#include "toolkit/controls.h"

#include <QCoreApplication>
#include <QIntValidator>
#include <QKeyEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>

namespace varnholt {

namespace {

constexpr int largestNumber = 9999;

} // namespace

QuotaColumn::QuotaColumn(ListBox* list, QWidget* parent)
    : QWidget(parent)
    , list_(list)
    , viewport_(list->viewport())
{
    named(this, "quotaColumn", tr("Numbers of questions from the topics"));
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    setToolTip(tr("How many questions each topic is to give. Empty: chance decides."));
    list_->installEventFilter(this);
    list_->viewport()->installEventFilter(this);
    connect(list_->verticalScrollBar(), &QScrollBar::valueChanged, this, &QuotaColumn::layOut);
    connect(list_->model(), &QAbstractItemModel::modelReset, this, &QuotaColumn::layOut,
            Qt::QueuedConnection);
    connect(list_->model(), &QAbstractItemModel::rowsInserted, this, &QuotaColumn::layOut,
            Qt::QueuedConnection);
    connect(list_->model(), &QAbstractItemModel::dataChanged, this, &QuotaColumn::layOut,
            Qt::QueuedConnection);
}

QSize QuotaColumn::sizeHint() const
{
    return {fontMetrics().horizontalAdvance(QStringLiteral("0000")) + fontMetrics().height(), 0};
}

void QuotaColumn::setQuotas(Quotas quotas)
{
    quotas_ = std::move(quotas);
    layOut();
}

QLineEdit* QuotaColumn::addField()
{
    auto* field = new LineEdit(this);
    field->setObjectName(QStringLiteral("txtQuota"));
    field->setFocusPolicy(Qt::ClickFocus);
    field->setAlignment(Qt::AlignRight);
    field->setValidator(new QIntValidator(0, largestNumber, field));
    field->setInputMethodHints(Qt::ImhDigitsOnly);
    field->installEventFilter(this);
    // Behind those that there are, so that Tab leaves the whole column at once. There is no tab
    // order with what takes no focus.
    setFocusPolicy(Qt::TabFocus);
    setTabOrder(fields_.empty() ? static_cast<QWidget*>(this) : fields_.back(), field);
    const std::size_t place = fields_.size();
    connect(field, &QLineEdit::textEdited, this, [this, place](const QString& text) {
        const std::int32_t topic = list_->itemData(firstRow_ + static_cast<int>(place));
        if (const int wanted = text.toInt(); wanted > 0) {
            quotas_[topic] = wanted;
        } else {
            quotas_.erase(topic);
        }
        Q_EMIT quotasChanged();
    });
    fields_.push_back(field);
    return field;
}

void QuotaColumn::layOut()
{
    const int rows = list_->listCount();
    const int top = list_->mapToParent(list_->viewport()->pos()).y() - y();
    const auto rowRect = [this](int row) {
        return list_->visualRect(list_->model()->index(row, 0));
    };
    const auto focused = std::find_if(fields_.begin(), fields_.end(),
                                      [](const QLineEdit* field) { return field->hasFocus(); });
    const int focusedRow =
        focused == fields_.end() ? -1 : firstRow_ + static_cast<int>(focused - fields_.begin());
    const QModelIndex first = list_->indexAt({1, 1});
    firstRow_ = first.isValid() ? first.row() : 0;
    std::size_t used = 0;
    for (int row = firstRow_; row < rows; ++row) {
        const QRect rect = rowRect(row);
        if (rect.top() >= list_->viewport()->height()) {
            break;
        }
        QLineEdit* field = used < fields_.size() ? fields_[used] : addField();
        ++used;
        field->setGeometry(0, top + rect.top(), width(), rect.height());
        const auto quota = quotas_.find(list_->itemData(row));
        const QString text = quota == quotas_.end() ? QString() : QString::number(quota->second);
        if (field->text() != text) {
            field->setText(text);
        }
        field->setAccessibleName(tr("Questions from %1").arg(list_->itemText(row)));
        field->setVisible(rect.top() >= 0 && rect.bottom() <= list_->viewport()->height());
    }
    for (std::size_t i = used; i < fields_.size(); ++i) {
        fields_[i]->hide();
    }
    // A field stands for another row after scrolling; the focus stays with its row.
    const int place = focusedRow - firstRow_;
    if (focusedRow >= 0 && (place < 0 || place >= static_cast<int>(used))) {
        list_->setFocus();
    } else if (focusedRow >= 0 && !fields_[static_cast<std::size_t>(place)]->hasFocus()) {
        fields_[static_cast<std::size_t>(place)]->setFocus();
    }
}

void QuotaColumn::enter(int row)
{
    if (row < 0 || row >= list_->listCount()) {
        return;
    }
    list_->scrollTo(list_->model()->index(row, 0));
    layOut();
    QLineEdit* field = fields_.at(static_cast<std::size_t>(row - firstRow_));
    field->setFocus();
    field->selectAll();
}

bool QuotaColumn::keyInField(int key, QLineEdit* field)
{
    const auto place = std::find(fields_.begin(), fields_.end(), field) - fields_.begin();
    const int row = firstRow_ + static_cast<int>(place);
    switch (key) {
    case Qt::Key_Up:
        enter(row - 1);
        return true;
    case Qt::Key_Down:
        enter(row + 1);
        return true;
    case Qt::Key_Left:
        if (field->cursorPosition() > 0 && !field->hasSelectedText()) {
            return false;
        }
        list_->setFocus();
        return true;
    default:
        return false;
    }
}

bool QuotaColumn::eventFilter(QObject* watched, QEvent* event)
{
    auto* field = qobject_cast<QLineEdit*>(watched);
    if (event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (field && keyInField(key, field)) {
            return true;
        }
        if (watched == list_ && key == Qt::Key_Right) {
            enter(std::max(list_->listIndex(), 0));
            return true;
        }
    } else if (field && (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)) {
        // Otherwise Shift+Tab would lead from a field to the column and right back.
        setFocusPolicy(event->type() == QEvent::FocusIn ? Qt::NoFocus : Qt::TabFocus);
    } else if (watched == viewport_ && event->type() == QEvent::Resize) {
        layOut();
    }
    return QWidget::eventFilter(watched, event);
}

void QuotaColumn::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    if (list_->listCount() == 0) {
        focusNextPrevChild(event->reason() != Qt::BacktabFocusReason);
        return;
    }
    enter(std::max(list_->listIndex(), 0));
}

void QuotaColumn::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    layOut();
}

void QuotaColumn::wheelEvent(QWheelEvent* event)
{
    QCoreApplication::sendEvent(list_->verticalScrollBar(), event);
}

} // namespace varnholt
