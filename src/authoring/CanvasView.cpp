#include "authoring/CanvasView.h"

#include "authoring/PictureCanvas.h"

#include <QMouseEvent>
#include <QPainter>

#include <cmath>

namespace varnholt {

namespace {

int handleSize(const QWidget& widget)
{
    return std::max(widget.fontMetrics().height() / 2, 9);
}

QRect ordered(const QRect& frame)
{
    const QPoint other = frame.topLeft() + QPoint(frame.width(), frame.height());
    const QPoint first(std::min(frame.x(), other.x()), std::min(frame.y(), other.y()));
    return {first, QSize(std::abs(frame.width()), std::abs(frame.height()))};
}

} // namespace

CanvasView::CanvasView(const PictureCanvas& canvas, QWidget* parent)
    : QWidget(parent)
    , canvas_(canvas)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setCursor(Qt::CrossCursor);
    announcePictures();
    resize(sizeHint());
}

QSize CanvasView::sizeHint() const
{
    const QSize size = canvas_.image().size();
    return {qCeil(size.width() * zoom_), qCeil(size.height() * zoom_)};
}

QString CanvasView::pictureDescription() const
{
    return pictureSizeSentence(pictureSize());
}

QSize CanvasView::pictureSize() const
{
    return canvas_.state().hasPicture ? canvas_.image().size() : QSize();
}

QPointF CanvasView::toCanvas(QPointF position) const
{
    return {std::round(position.x() / zoom_), std::round(position.y() / zoom_)};
}

QPoint CanvasView::toWidget(QPoint pixel) const
{
    return {qFloor(pixel.x() * zoom_), qFloor(pixel.y() * zoom_)};
}

void CanvasView::setZoom(double zoom)
{
    if (zoom_ != zoom) {
        zoom_ = zoom;
        update();
    }
}

void CanvasView::refresh()
{
    if (size() != sizeHint()) {
        resize(sizeHint());
        update();
    }
    const CanvasState& state = canvas_.state();
    move(-toWidget({state.HScroll.value, state.VScroll.value}));
    if (paintedImage_ != canvas_.image().cacheKey()) {
        paintedImage_ = canvas_.image().cacheKey();
        update();
    }
    const Overlay now = overlay();
    if (now != painted_) {
        update(regionOf(painted_) + regionOf(now));
        painted_ = now;
    }
}

CanvasView::Overlay CanvasView::overlay() const
{
    Overlay result;
    const CanvasState& state = canvas_.state();
    if (state.SelectionShown || canvas_.Drawing) {
        result.frame = ordered(state.selection());
    }
    if (canvas_.Moving && !canvas_.FirstMove) {
        result.moving = QRect(canvas_.MoveX1, canvas_.MoveY1, canvas_.MoveX2 - canvas_.MoveX1,
                              canvas_.MoveY2 - canvas_.MoveY1);
    }
    result.handles = state.SelectionShown && !canvas_.isDragging();
    return result;
}

QRect CanvasView::outline(const QRect& frame) const
{
    // Both corners belong to it, so it is one larger than its block.
    const QPoint first = toWidget(frame.topLeft());
    const QPoint last = toWidget(frame.topLeft() + QPoint(frame.width(), frame.height()));
    const QPoint end = toWidget({canvas_.image().width(), canvas_.image().height()});
    const auto inside = [](int at, int size) { return at == size ? size - 1 : at; };
    return {first, QPoint(inside(last.x(), end.x()), inside(last.y(), end.y()))};
}

QList<CanvasView::Handle> CanvasView::handles() const
{
    QList<Handle> result;
    const Overlay now = overlay();
    if (!now.handles) {
        return result;
    }
    const QRect frame = outline(*now.frame);
    const int size = handleSize(*this);
    // Outside the frame, which is there to be taken hold of; at the image's edge where it ends.
    const auto place = [size](int from, int to, int side, int room) {
        const int at = side < 0 ? from - size : side > 0 ? to + 1 : (from + to + 1 - size) / 2;
        return std::clamp(at, 0, std::max(room - size, 0));
    };
    for (const int down : {-1, 0, 1}) {
        for (const int across : {-1, 0, 1}) {
            const bool tooNarrow = (across == 0 && frame.width() < 3 * size) ||
                                   (down == 0 && frame.height() < 3 * size);
            if ((across != 0 || down != 0) && !tooNarrow) {
                result.append(
                    {QRect(place(frame.left(), frame.right(), across, width()),
                           place(frame.top(), frame.bottom(), down, height()), size, size),
                     across, down});
            }
        }
    }
    return result;
}

std::optional<CanvasView::Handle> CanvasView::handleAt(QPoint position) const
{
    for (const Handle& handle : handles()) {
        if (handle.place.contains(position)) {
            return handle;
        }
    }
    return std::nullopt;
}

QRegion CanvasView::regionOf(const Overlay& shown) const
{
    const int rim = handleSize(*this) + 1;
    QRegion region;
    if (shown.frame) {
        const QRect frame = outline(*shown.frame);
        region += QRegion(frame.adjusted(-rim, -rim, rim, rim)) -
                  QRegion(frame.adjusted(rim, rim, -rim, -rim));
    }
    if (shown.moving) {
        region += outline(*shown.moving).adjusted(-1, -1, 1, 1);
    }
    return region;
}

void CanvasView::paintImage(QPainter& painter, const QRect& area)
{
    const QImage& image = canvas_.image();
    const double ratio = devicePixelRatioF();
    const double scale = zoom_ * ratio;
    if (scale >= 1) {
        painter.setRenderHint(QPainter::SmoothPixmapTransform, scale < 2 && scale != 1);
        const QRectF from(area.x() / zoom_, area.y() / zoom_, area.width() / zoom_,
                          area.height() / zoom_);
        painter.drawImage(QRectF(area), image, from);
        return;
    }
    if (shrunkFrom_ != image.cacheKey() || shrunk_.devicePixelRatio() != ratio ||
        shrunk_.size() != (QSizeF(size()) * ratio).toSize()) {
        shrunk_ = image.scaled((QSizeF(size()) * ratio).toSize(), Qt::IgnoreAspectRatio,
                               Qt::SmoothTransformation);
        shrunk_.setDevicePixelRatio(ratio);
        shrunkFrom_ = image.cacheKey();
    }
    painter.drawImage(QRectF(area), shrunk_,
                      QRectF(QPointF(area.topLeft()) * ratio, QSizeF(area.size()) * ratio));
}

void CanvasView::paintEvent(QPaintEvent* event)
{
    QPainter painter(this);
    for (const QRect& area : event->region()) {
        painter.fillRect(area, Qt::white);
        paintImage(painter, area);
    }
    const Overlay now = overlay();
    if (now.moving) {
        painter.setClipRegion(event->region());
        const QRect target(
            toWidget(now.moving->topLeft()),
            toWidget(now.moving->topLeft() + QPoint(now.moving->width(), now.moving->height())) -
                QPoint(1, 1));
        painter.setRenderHint(QPainter::SmoothPixmapTransform, zoom_ * devicePixelRatioF() != 1);
        painter.drawImage(target, canvas_.image(), *now.frame);
    }
    // Inverting shows on any picture.
    painter.setCompositionMode(QPainter::CompositionMode_Difference);
    for (const std::optional<QRect>& frame : {now.frame, now.moving}) {
        if (frame && !(frame->width() == 0 && frame->height() == 0)) {
            const QRect line = outline(*frame);
            for (const QRect& side : QRegion(line) - QRegion(line.adjusted(1, 1, -1, -1))) {
                painter.fillRect(side, Qt::white);
            }
        }
    }
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.setPen(palette().color(QPalette::HighlightedText));
    painter.setBrush(palette().color(QPalette::Highlight));
    for (const Handle& handle : handles()) {
        painter.drawRect(handle.place.adjusted(0, 0, -1, -1));
    }
}

void CanvasView::showPointer(QPoint position)
{
    const std::optional<Handle> handle = handleAt(position);
    const QPointF at = toCanvas(position);
    Qt::CursorShape shape = Qt::CrossCursor;
    if (handle) {
        shape = handle->across == 0              ? Qt::SizeVerCursor
                : handle->down == 0              ? Qt::SizeHorCursor
                : handle->across == handle->down ? Qt::SizeFDiagCursor
                                                 : Qt::SizeBDiagCursor;
    } else if (canvas_.Moving || (!canvas_.Drawing && canvas_.grabs(at.x(), at.y()))) {
        shape = Qt::SizeAllCursor;
    }
    if (cursor().shape() != shape) {
        setCursor(shape);
    }
}

void CanvasView::mousePressEvent(QMouseEvent* event)
{
    if (held_) {
        return;
    }
    held_ = event->button();
    if (const std::optional<Handle> handle = handleAt(event->position().toPoint())) {
        Q_EMIT HandleDown(handle->across, handle->down);
        return;
    }
    const QPointF at = toCanvas(event->position());
    Q_EMIT MouseDown(at.x(), at.y());
}

void CanvasView::mouseDoubleClickEvent(QMouseEvent* event)
{
    mousePressEvent(event);
}

void CanvasView::mouseMoveEvent(QMouseEvent* event)
{
    const QPointF at = toCanvas(event->position());
    if (held_ && !event->buttons().testFlag(*held_)) {
        held_.reset();
        Q_EMIT MouseUp(at.x(), at.y());
    }
    Q_EMIT MouseMove(at.x(), at.y());
    showPointer(event->position().toPoint());
}

void CanvasView::mouseReleaseEvent(QMouseEvent* event)
{
    if (held_ != event->button()) {
        return;
    }
    held_.reset();
    const QPointF at = toCanvas(event->position());
    Q_EMIT MouseUp(at.x(), at.y());
    showPointer(event->position().toPoint());
}

} // namespace varnholt
