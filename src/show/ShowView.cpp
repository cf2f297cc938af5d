#include "show/ShowView.h"

#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <cmath>

namespace varnholt {

ShowView::ShowView(QWidget* parent)
    : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    announcePictures();
}

void ShowView::setView(const PupilsView& view, const ShowPicture& picture)
{
    view_ = view;
    picture_ = picture;
    update();
}

void ShowView::setCopyOf(QSize window)
{
    if (window_ != window) {
        window_ = window;
        update();
    }
}

QSize ShowView::pictureRoom() const
{
    return (PupilsPictureRoom(area().size()).size() * devicePixelRatioF()).toSize();
}

QString ShowView::pictureDescription() const
{
    QString text;
    if (view_.number > 0) {
        text = tr("Question %1. %2").arg(view_.number).arg(view_.topic).trimmed();
    }
    if (view_.cover != PupilsView::Cover::None) {
        text = tr("The screen is covered.");
    }
    return QStringLiteral("%1 %2 %3").arg(text, view_.answer, view_.note).simplified();
}

QSize ShowView::minimumSizeHint() const
{
    return {fontMetrics().averageCharWidth() * 16, fontMetrics().height() * 4};
}

QRectF ShowView::area() const
{
    if (window_.isEmpty()) {
        return rect();
    }
    QSizeF size = QSizeF(window_).scaled(this->size(), Qt::KeepAspectRatio);
    size = {std::floor(size.width()), std::floor(size.height())};
    return {QPointF(std::floor((width() - size.width()) / 2), 0), size};
}

const ShowPicture& ShowView::pictureAt(const QSizeF& size)
{
    if (picture_.whole.isNull()) {
        return picture_;
    }
    const QSize fitting =
        (PupilsPictureRect(size, picture_.whole.size(), {}).size() * devicePixelRatioF())
            .toSize()
            .expandedTo(QSize(1, 1));
    // A pixel more or less is how sizes were rounded.
    const QSize difference = fitting - picture_.fitted.size();
    if (std::abs(difference.width()) <= 2 && std::abs(difference.height()) <= 2) {
        copied_ = {};
        return picture_;
    }
    const QImage& source = picture_.fitted.isNull() ? picture_.whole : picture_.fitted;
    if (copied_.fitted.size() != fitting || copiedFrom_ != source.cacheKey()) {
        copiedFrom_ = source.cacheKey();
        copied_ = {picture_.whole,
                   source.scaled(fitting, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)};
    }
    return copied_;
}

void ShowView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QRectF seen = area();
    if (!window_.isEmpty()) {
        painter.fillRect(rect(), palette().window());
    }
    painter.save();
    painter.translate(seen.topLeft());
    painter.setClipRect(QRectF({}, seen.size()));
    PaintPupilsView(painter, seen.size(), view_, pictureAt(seen.size()));
    painter.restore();
    if (!window_.isEmpty()) {
        painter.setPen(palette().color(QPalette::Mid));
        painter.drawRect(seen.adjusted(0, 0, -1, -1));
    }
    if (!frame_.isNull()) {
        painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
        painter.drawRect(frame_.normalized());
    }
}

void ShowView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    Q_EMIT roomChanged();
}

bool ShowView::canZoom() const
{
    return zooms_ && view_.number > 0 && view_.cover == PupilsView::Cover::None &&
           !picture_.whole.isNull();
}

QPointF ShowView::inPicture(const QPointF& point) const
{
    const QRectF seen = area();
    const QRectF all = PupilsPictureRect(seen.size(), picture_.whole.size(), view_.zoom);
    const QPointF inside = point - seen.topLeft() - all.topLeft();
    return {inside.x() / all.width(), inside.y() / all.height()};
}

void ShowView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && canZoom()) {
        frame_ = QRectF(event->position(), QSizeF(0, 0));
    }
}

void ShowView::mouseMoveEvent(QMouseEvent* event)
{
    if (event->buttons().testFlag(Qt::LeftButton) && canZoom()) {
        frame_.setBottomRight(event->position());
        update();
    }
}

void ShowView::mouseReleaseEvent(QMouseEvent* event)
{
    const QRectF drawn = frame_.normalized();
    frame_ = {};
    update();
    // Less is a click with an unsteady hand.
    const int least = fontMetrics().height() / 2;
    if (event->button() == Qt::LeftButton && canZoom() && drawn.width() > least &&
        drawn.height() > least) {
        Q_EMIT zoomedTo({inPicture(drawn.topLeft()), inPicture(drawn.bottomRight())});
    }
}

void ShowView::wheelEvent(QWheelEvent* event)
{
    constexpr double notch = 120;
    constexpr double perNotch = 1.25;
    if (canZoom() && event->angleDelta().y() != 0) {
        Q_EMIT zoomedAt(inPicture(event->position()),
                        std::pow(perNotch, event->angleDelta().y() / notch));
    }
    event->accept();
}

} // namespace varnholt
