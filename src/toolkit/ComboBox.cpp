#include "toolkit/ComboBox.h"

#include "toolkit/short_text.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QScreen>
#include <QStyleOptionComboBox>
#include <QStyledItemDelegate>
#include <QTextDocument>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>
#include <stdexcept>

namespace varnholt {

namespace {

/// A narrow control may have an open list of this width.
int roomyWidth(const QFontMetrics& metrics)
{
    return metrics.averageCharWidth() * 40;
}

/// What of a long text an open list shows.
class EntryDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    [[nodiscard]] QString displayText(const QVariant& value, const QLocale&) const override
    {
        return ShortLine(value.toString(), longestShown);
    }

    /// The open list takes its width from here.
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override
    {
        const int widest =
            std::max(static_cast<QWidget*>(parent())->width(), roomyWidth(option.fontMetrics));
        const QSize size = QStyledItemDelegate::sizeHint(option, index);
        return {std::min(size.width(), widest), size.height()};
    }
};

} // namespace

ComboBox::ComboBox(QWidget* parent)
    : QComboBox(parent)
{
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(20);
    // The base class takes the focus by the wheel, too.
    setFocusPolicy(Qt::StrongFocus);
    setItemDelegate(new EntryDelegate(this));
    view()->setTextElideMode(Qt::ElideMiddle);
    view()->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    connect(this, &QComboBox::activated, this, &ComboBox::Click);
}

void ComboBox::addEntry(const QString& text, std::int32_t itemData)
{
    // The base class makes the first entry of an empty list current.
    const int current = currentIndex();
    addItem(text, itemData);
    setItemData(count() - 1, Qt::convertFromPlainText(text.left(longestToolTip)), Qt::ToolTipRole);
    setCurrentIndex(current);
}

void ComboBox::setListIndex(int index)
{
    setCurrentIndex(index);
    Q_EMIT Click();
}

void ComboBox::showEntry(int index)
{
    setCurrentIndex(index);
}

void ComboBox::showPopup()
{
    QComboBox::showPopup();
    // The base class makes it as wide as the longest text, up to the whole screen.
    QWidget* list = view()->window();
    if (list->width() > width()) {
        const int wide = std::min(list->width(), std::max(width(), roomyWidth(fontMetrics())));
        const int left =
            std::min(mapToGlobal(QPoint()).x(), screen()->availableGeometry().right() + 1 - wide);
        list->setGeometry(left, list->y(), wide, list->height());
    }
}

void ComboBox::initStyleOption(QStyleOptionComboBox* option) const
{
    QComboBox::initStyleOption(option);
    const QRect field =
        style()->subControlRect(QStyle::CC_ComboBox, option, QStyle::SC_ComboBoxEditField, this);
    option->currentText = option->fontMetrics.elidedText(
        ShortLine(option->currentText, longestShown), Qt::ElideMiddle, field.width() - 4);
}

bool ComboBox::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty() && currentIndex() >= 0) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(),
                           itemData(currentIndex(), Qt::ToolTipRole).toString(), this);
        return true;
    }
    return QComboBox::event(event);
}

void ComboBox::wheelEvent(QWheelEvent* event)
{
    if (hasFocus()) {
        QComboBox::wheelEvent(event);
    } else {
        event->ignore();
    }
}

std::int32_t ComboBox::entryData(int index) const
{
    if (index < 0 || index >= count()) {
        throw std::out_of_range("no entry is chosen");
    }
    return itemData(index).toInt();
}

} // namespace varnholt
