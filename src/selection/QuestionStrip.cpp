#include "selection/QuestionStrip.h"

#include "toolkit/short_text.h"

#include <QKeyEvent>
#include <QPainter>

#include <algorithm>

namespace varnholt {

namespace {

constexpr int linesHigh = 5;
constexpr qsizetype longestText = 60;

} // namespace

class QuestionStrip::Item : public QListWidgetItem
{
public:
    Item(const QuestionStrip& strip, StripEntry entry)
        : strip_(strip)
        , entry_(std::move(entry))
    {}

    [[nodiscard]] const StripEntry& entry() const { return entry_; }
    void setNumber(int number)
    {
        const QString answer = ShortLine(entry_.text, longestText);
        setText(QuestionStrip::tr("%1) %2").arg(QString::number(number), answer));
        setData(Qt::AccessibleTextRole, QuestionStrip::tr("Question %1, %2, answer %3")
                                            .arg(QString::number(number), entry_.subject, answer));
        setToolTip(entry_.subject.toHtmlEscaped());
    }

    [[nodiscard]] QVariant data(int role) const override
    {
        return role == Qt::DecorationRole ? strip_.picture(entry_) : QListWidgetItem::data(role);
    }

private:
    const QuestionStrip& strip_;
    StripEntry entry_;
};

QuestionStrip::QuestionStrip(QWidget* parent)
    : QListWidget(parent)
    , loader_(static_cast<int>(fontMetrics().height() * linesHigh * 2 * devicePixelRatioF()))
{
    const int line = fontMetrics().height();
    setIconSize({line * linesHigh * 2, line * linesHigh});
    setGridSize({line * (linesHigh * 2 + 1), line * (linesHigh + 2)});
    setViewMode(IconMode);
    setMovement(Static);
    setFlow(LeftToRight);
    setResizeMode(Adjust);
    setTextElideMode(Qt::ElideRight);
    setTabKeyNavigation(false);
    connect(&loader_, &ThumbnailLoader::came, this, [this](std::int32_t key, const QImage& image) {
        QPixmap pixmap(iconSize() * devicePixelRatioF());
        pixmap.setDevicePixelRatio(devicePixelRatioF());
        pixmap.fill(Qt::transparent);
        if (!image.isNull()) {
            const QSizeF size = QSizeF(image.size()).scaled(iconSize(), Qt::KeepAspectRatio);
            const QRectF middle(QPointF((iconSize().width() - size.width()) / 2,
                                        (iconSize().height() - size.height()) / 2),
                                size);
            QPainter painter(&pixmap);
            painter.setRenderHint(QPainter::SmoothPixmapTransform);
            painter.fillRect(middle, Qt::white);
            painter.drawImage(middle, image);
        }
        pictures_.insert(key, pixmap);
        viewport()->update();
    });
}

QPixmap QuestionStrip::picture(const StripEntry& entry) const
{
    const auto found = pictures_.constFind(entry.key);
    if (found != pictures_.constEnd()) {
        return *found;
    }
    loader_.load(entry.key, entry.path);
    QPixmap empty(iconSize());
    empty.fill(Qt::transparent);
    return empty;
}

void QuestionStrip::setEntries(std::vector<StripEntry> entries, std::int32_t currentKey)
{
    clear();
    pictures_.clear();
    int current = 0;
    for (StripEntry& entry : entries) {
        current = entry.key == currentKey ? count() : current;
        addItem(new Item(*this, std::move(entry)));
    }
    number();
    setCurrentRow(current, QItemSelectionModel::ClearAndSelect);
}

void QuestionStrip::setMovable(bool movable)
{
    movable_ = movable;
    setDragDropMode(movable ? InternalMove : NoDragDrop);
    setDefaultDropAction(Qt::MoveAction);
}

std::vector<std::int32_t> QuestionStrip::keys() const
{
    std::vector<std::int32_t> result;
    for (int row = 0; row < count(); ++row) {
        result.push_back(static_cast<const Item*>(item(row))->entry().key);
    }
    return result;
}

std::int32_t QuestionStrip::currentKey() const
{
    return currentItem() ? static_cast<const Item*>(currentItem())->entry().key : 0;
}

std::vector<std::int32_t> QuestionStrip::selectedKeys() const
{
    std::vector<std::int32_t> result;
    for (int row = 0; row < count(); ++row) {
        if (item(row)->isSelected()) {
            result.push_back(static_cast<const Item*>(item(row))->entry().key);
        }
    }
    return result;
}

void QuestionStrip::selectKeys(const std::vector<std::int32_t>& wanted)
{
    for (int row = 0; row < count(); ++row) {
        const std::int32_t key = static_cast<const Item*>(item(row))->entry().key;
        if (std::find(wanted.begin(), wanted.end(), key) != wanted.end()) {
            item(row)->setSelected(true);
        }
    }
}

void QuestionStrip::number()
{
    for (int row = 0; row < count(); ++row) {
        static_cast<Item*>(item(row))->setNumber(row + 1);
    }
}

void QuestionStrip::moveCurrent(int by)
{
    const int row = currentRow();
    const int target = std::clamp(row + by, 0, count() - 1);
    if (row < 0 || target == row) {
        return;
    }
    insertItem(target, takeItem(row));
    setCurrentRow(target);
    number();
    Q_EMIT reordered();
}

void QuestionStrip::keyPressEvent(QKeyEvent* event)
{
    if (movable_ && event->modifiers() == Qt::ControlModifier &&
        (event->key() == Qt::Key_Left || event->key() == Qt::Key_Right)) {
        moveCurrent(event->key() == Qt::Key_Left ? -1 : 1);
        return;
    }
    QListWidget::keyPressEvent(event);
}

void QuestionStrip::dropEvent(QDropEvent* event)
{
    // The base class moves what it shows, not the order, in this view: the order is what counts.
    const int from = currentRow();
    const QPoint place = event->position().toPoint();
    const QModelIndex over = indexAt(place);
    int to = over.isValid() ? over.row() : count() - 1;
    if (over.isValid() && to > from && place.x() < visualRect(over).center().x()) {
        --to;
    } else if (over.isValid() && to < from && place.x() > visualRect(over).center().x()) {
        ++to;
    }
    event->setDropAction(Qt::IgnoreAction);
    event->accept();
    moveCurrent(to - from);
}

} // namespace varnholt
