#include "toolkit/PictureView.h"

#include <QPainter>

namespace varnholt {

PictureView::PictureView(QWidget* parent)
    : QFrame(parent)
{
    setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void PictureView::setPicture(const QImage& picture)
{
    picture_ = picture;
    scaled_ = {};
    update();
}

QSize PictureView::sizeHint() const
{
    const QFontMetrics metrics = fontMetrics();
    return {metrics.averageCharWidth() * 70, metrics.height() * 20};
}

QSize PictureView::minimumSizeHint() const
{
    const QFontMetrics metrics = fontMetrics();
    return {metrics.averageCharWidth() * 20, metrics.height() * 6};
}

void PictureView::paintEvent(QPaintEvent* event)
{
    QFrame::paintEvent(event);
    if (picture_.isNull() || contentsRect().isEmpty()) {
        return;
    }
    const qreal ratio = devicePixelRatioF();
    const QSize room = (QSizeF(contentsRect().size()) * ratio).toSize();
    const QSize size = picture_.size().scaled(room, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    if (scaled_.size() != size) {
        scaled_ = QPixmap::fromImage(
            picture_.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    }
    scaled_.setDevicePixelRatio(ratio);
    // Whole device pixels, or the picture would be smeared over two.
    const QPointF corner((room.width() - size.width()) / 2, (room.height() - size.height()) / 2);
    QPainter painter(this);
    painter.drawPixmap(contentsRect().topLeft() + corner / ratio, scaled_);
}

} // namespace varnholt
