#include "toolkit/PictureBox.h"

#include "pictures/PictureSurface.h"

#include <QMouseEvent>
#include <QPainter>

namespace varnholt {

PictureBox::PictureBox(PictureSurface& surface, QWidget* parent)
    : QWidget(parent)
    , surface_(surface)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    announcePictures();
    resize(sizeHint());
}

QSize PictureBox::sizeHint() const
{
    return {surface_.outerWidth(), surface_.outerHeight()};
}

QString PictureBox::pictureDescription() const
{
    return pictureSizeSentence(pictureSize());
}

QSize PictureBox::pictureSize() const
{
    return surface_.hasPicture() ? surface_.picture().size() : QSize();
}

QPoint PictureBox::origin() const
{
    return {(surface_.outerWidth() - surface_.innerWidth()) / 2,
            (surface_.outerHeight() - surface_.innerHeight()) / 2};
}

void PictureBox::refresh()
{
    if (size() != sizeHint()) {
        resize(sizeHint());
    }
    const QRegion changed = surface_.takeChanged();
    if (!changed.isEmpty()) {
        update(changed.translated(origin()));
    }
}

void PictureBox::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    for (const QRect& area : event->region()) {
        const QRect part = area.translated(-origin());
        painter.fillRect(area, Qt::white);
        painter.drawImage(part.topLeft() + origin(), surface_.image(), part);
    }
}

void PictureBox::mousePressEvent(QMouseEvent* event)
{
    if (held_) {
        return;
    }
    held_ = event->button();
    const QPointF position = event->position() - origin();
    Q_EMIT MouseDown(position.x(), position.y());
}

void PictureBox::mouseDoubleClickEvent(QMouseEvent* event)
{
    mousePressEvent(event);
}

void PictureBox::mouseMoveEvent(QMouseEvent* event)
{
    const QPointF position = event->position() - origin();
    if (held_ && !event->buttons().testFlag(*held_)) {
        held_.reset();
        Q_EMIT MouseUp(position.x(), position.y());
    }
    Q_EMIT MouseMove(position.x(), position.y());
}

void PictureBox::mouseReleaseEvent(QMouseEvent* event)
{
    if (held_ != event->button()) {
        return;
    }
    held_.reset();
    const QPointF position = event->position() - origin();
    Q_EMIT MouseUp(position.x(), position.y());
}

} // namespace varnholt
