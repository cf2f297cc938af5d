// Frames on the pages by mouse and keys.
#include "pdf/PdfPagesView.h"
#include "pdf/PdfReader.h"
#include "toolkit/latin_key.h"

#include <QApplication>
#include <QCursor>
#include <QMouseEvent>
#include <QScrollBar>

#include <algorithm>
#include <utility>

namespace varnholt {

namespace {

constexpr double keyStep = 2;
constexpr double zoomStep = 1.25;
constexpr double newFrameHeight = 90;
constexpr double newFrameMargin = 0.08;
constexpr int scrollMs = 30;

} // namespace

std::vector<std::pair<QRectF, Qt::Edges>> PdfPagesView::handles() const
{
    std::vector<std::pair<QRectF, Qt::Edges>> result;
    if (!frames_.current() || drag_ != Drag::None) {
        return result;
    }
    const QRectF area = toView(frames_.current()->page, frames_.current()->area);
    const double size = std::max(fontMetrics().height() / 2.0, 9.0);
    for (const Qt::Edges down : {Qt::Edges(Qt::TopEdge), Qt::Edges(), Qt::Edges(Qt::BottomEdge)}) {
        for (const Qt::Edges across :
             {Qt::Edges(Qt::LeftEdge), Qt::Edges(), Qt::Edges(Qt::RightEdge)}) {
            const double x = across & Qt::LeftEdge    ? area.left()
                             : across & Qt::RightEdge ? area.right()
                                                      : area.center().x();
            const double y = down & Qt::TopEdge      ? area.top()
                             : down & Qt::BottomEdge ? area.bottom()
                                                     : area.center().y();
            if (across || down) {
                result.emplace_back(QRectF(x - size / 2, y - size / 2, size, size), across | down);
            }
        }
    }
    return result;
}

Qt::Edges PdfPagesView::handleAt(QPointF position) const
{
    for (const auto& [place, edges] : handles()) {
        if (place.adjusted(-2, -2, 2, 2).contains(position)) {
            return edges;
        }
    }
    return {};
}

int PdfPagesView::frameAt(QPointF position) const
{
    // The smallest, where one lies in another.
    int found = -1;
    double smallest = 0;
    for (std::size_t i = 0; i < frames_.all().size(); ++i) {
        const QRectF area = toView(frames_.all()[i].page, frames_.all()[i].area);
        const double size = area.width() * area.height();
        if (area.contains(position) && (found < 0 || size < smallest)) {
            found = static_cast<int>(i);
            smallest = size;
        }
    }
    return found;
}

void PdfPagesView::showPointer(QPointF position)
{
    const Qt::Edges edges = handleAt(position);
    const bool across = edges & (Qt::LeftEdge | Qt::RightEdge);
    const bool down = edges & (Qt::TopEdge | Qt::BottomEdge);
    const bool falling =
        edges == (Qt::TopEdge | Qt::LeftEdge) || edges == (Qt::BottomEdge | Qt::RightEdge);
    viewport()->setCursor(across && down ? falling ? Qt::SizeFDiagCursor : Qt::SizeBDiagCursor
                          : across       ? Qt::SizeHorCursor
                          : down         ? Qt::SizeVerCursor
                          : frameAt(position) >= 0 ? Qt::SizeAllCursor
                                                   : Qt::CrossCursor);
}

void PdfPagesView::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || reader_.pages().empty() || drag_ != Drag::None) {
        return;
    }
    pressedAt_ = event->position();
    edges_ = handleAt(pressedAt_);
    if (edges_) {
        before_ = frames_.current()->area;
        from_ = {frames_.current()->page, onPage(frames_.current()->page, pressedAt_)};
        drag_ = Drag::Size;
    } else if (const int at = frameAt(pressedAt_); at >= 0) {
        const PdfFrame& frame = frames_.all()[static_cast<std::size_t>(at)];
        before_ = frame.area;
        from_ = {frame.page, onPage(frame.page, pressedAt_)};
        if (event->modifiers() & Qt::ControlModifier) {
            change([at](PdfFrames& frames) { frames.select(at); });
            Q_EMIT splitWanted(from_.point.y());
            return;
        }
        frames_.select(at);
        drag_ = Drag::Move;
    } else {
        from_ = placeAt(pressedAt_);
        frames_.select(-1);
        drag_ = Drag::Draw;
    }
    viewport()->update();
}

void PdfPagesView::dragTo(QPointF position)
{
    const QPointF now = onPage(from_.page, position);
    const QPointF by = now - from_.point;
    switch (drag_) {
    case Drag::Draw:
        draft_ = QRectF(from_.point, now).normalized();
        break;
    case Drag::Move:
        draft_ = before_.translated(by);
        break;
    case Drag::Size:
        draft_ =
            before_
                .adjusted(edges_ & Qt::LeftEdge ? by.x() : 0, edges_ & Qt::TopEdge ? by.y() : 0,
                          edges_ & Qt::RightEdge ? by.x() : 0, edges_ & Qt::BottomEdge ? by.y() : 0)
                .normalized();
        break;
    case Drag::None:
        return;
    }
    viewport()->update();
}

void PdfPagesView::mouseMoveEvent(QMouseEvent* event)
{
    if (drag_ == Drag::None) {
        showPointer(event->position());
        return;
    }
    // A click that trembles moves nothing.
    if (draft_ ||
        (event->position() - pressedAt_).manhattanLength() >= QApplication::startDragDistance()) {
        dragTo(event->position());
    }
    const bool outside = event->position().y() < 0 || event->position().y() > viewport()->height();
    if (!outside) {
        scrolling_.stop();
    } else if (!scrolling_.isActive()) {
        scrolling_.start(scrollMs, this);
    }
}

void PdfPagesView::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != scrolling_.timerId()) {
        QAbstractScrollArea::timerEvent(event);
        return;
    }
    const QPointF pointer = viewport()->mapFromGlobal(QCursor::pos());
    const double beyond = pointer.y() < 0 ? pointer.y() : pointer.y() - viewport()->height();
    verticalScrollBar()->setValue(verticalScrollBar()->value() +
                                  std::clamp(static_cast<int>(beyond), -40, 40));
    dragTo(pointer);
}

void PdfPagesView::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || drag_ == Drag::None) {
        return;
    }
    scrolling_.stop();
    const Drag drag = std::exchange(drag_, Drag::None);
    const std::optional<QRectF> area = std::exchange(draft_, std::nullopt);
    change([&](PdfFrames& frames) {
        if (area && drag == Drag::Draw) {
            frames.add(from_.page, *area);
        } else if (area) {
            frames.setArea(*area);
        }
    });
    showPointer(event->position());
}

void PdfPagesView::mouseDoubleClickEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton && !handleAt(event->position()) && frames_.current() &&
        frameAt(event->position()) == frames_.selected()) {
        Q_EMIT splitWanted(onPage(frames_.current()->page, event->position()).y());
        return;
    }
    mousePressEvent(event);
}

void PdfPagesView::wheelEvent(QWheelEvent* event)
{
    if (event->modifiers() & Qt::ControlModifier) {
        setZoom(event->angleDelta().y() > 0 ? zoom_ * zoomStep : zoom_ / zoomStep);
        event->accept();
        return;
    }
    QAbstractScrollArea::wheelEvent(event);
}

void PdfPagesView::selectNext(int step)
{
    const auto count = static_cast<int>(frames_.all().size());
    if (count == 0) {
        return;
    }
    int next = frames_.selected() + step;
    if (frames_.selected() < 0) {
        // From the page that is looked at.
        const auto onIt = std::find_if(
            frames_.all().begin(), frames_.all().end(),
            [page = currentPage()](const PdfFrame& frame) { return frame.page >= page; });
        next = static_cast<int>(onIt - frames_.all().begin());
    }
    change([&](PdfFrames& frames) { frames.select(std::clamp(next, 0, count - 1)); });
}

void PdfPagesView::turnPage(int step)
{
    const int top = placeAt(QPointF(0, fontMetrics().height())).page;
    const bool within = pageRect(top).top() < 0;
    showPage(step > 0 ? top + 1 : within ? top : top - 1);
}

void PdfPagesView::addInView()
{
    const int page = currentPage();
    const QSizeF size = reader_.pages()[static_cast<std::size_t>(page)];
    const double middle = onPage(page, viewport()->rect().center()).y();
    change([&](PdfFrames& frames) {
        frames.add(page, QRectF(size.width() * newFrameMargin, middle - newFrameHeight / 2,
                                size.width() * (1 - 2 * newFrameMargin), newFrameHeight));
    });
}

bool PdfPagesView::moveByKey(const QKeyEvent& event)
{
    const int key = event.key();
    const double x = key == Qt::Key_Right ? keyStep : key == Qt::Key_Left ? -keyStep : 0;
    const double y = key == Qt::Key_Down ? keyStep : key == Qt::Key_Up ? -keyStep : 0;
    if (!frames_.current() || (x == 0 && y == 0)) {
        return false;
    }
    const bool sizes = event.modifiers() == (Qt::ControlModifier | Qt::ShiftModifier);
    QRectF area = frames_.current()->area;
    if (sizes) {
        area.setSize((area.size() + QSizeF(x, y)).expandedTo({smallestFrame, smallestFrame}));
    } else {
        area.translate(x, y);
    }
    change([&](PdfFrames& frames) { frames.setArea(area); });
    return true;
}

bool PdfPagesView::event(QEvent* event)
{
    // These letters are the view's before they are anybody's shortcut.
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->matches(QKeySequence::Undo) || key->matches(QKeySequence::Redo) ||
            (key->key() == Qt::Key_Escape && frames_.current())) {
            event->accept();
            return true;
        }
    }
    return QAbstractScrollArea::event(event);
}

void PdfPagesView::keyPressEvent(QKeyEvent* event)
{
    if (reader_.pages().empty() || moveByKey(*event)) {
        return;
    }
    if (event->matches(QKeySequence::Undo)) {
        change([](PdfFrames& frames) { frames.undo(); });
        return;
    }
    if (event->matches(QKeySequence::Redo)) {
        change([](PdfFrames& frames) { frames.redo(); });
        return;
    }
    const bool control = event->modifiers() & Qt::ControlModifier;
    switch (LatinKey(*event)) {
    case Qt::Key_PageDown:
        return turnPage(1);
    case Qt::Key_PageUp:
        return turnPage(-1);
    case Qt::Key_Home:
        return showPage(0);
    case Qt::Key_End:
        return showPage(static_cast<int>(reader_.pages().size()) - 1);
    case Qt::Key_N:
        return selectNext(1);
    case Qt::Key_B:
        return selectNext(-1);
    case Qt::Key_Insert:
        return addInView();
    case Qt::Key_Delete:
        return change([](PdfFrames& frames) { frames.drop(); });
    case Qt::Key_J:
        return change([](PdfFrames& frames) { frames.join(); });
    case Qt::Key_S:
        Q_EMIT splitWanted(-1);
        return;
    case Qt::Key_Plus:
        return control ? setZoom(zoom_ * zoomStep) : void();
    case Qt::Key_Minus:
        return control ? setZoom(zoom_ / zoomStep) : void();
    case Qt::Key_0:
        return control ? setZoom(1) : void();
    case Qt::Key_Escape:
        if (frames_.current()) {
            return change([](PdfFrames& frames) { frames.select(-1); });
        }
        break;
    default:
        break;
    }
    QAbstractScrollArea::keyPressEvent(event);
}

} // namespace varnholt
