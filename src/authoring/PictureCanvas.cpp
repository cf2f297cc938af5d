#include "authoring/PictureCanvas.h"

#include "authoring/canvas_image.h"
#include "authoring/canvas_numbers.h"
#include "store/errors.h"

#include <algorithm>

namespace varnholt {

namespace {

constexpr std::int32_t moveStep = 100;

std::int32_t centred(std::int32_t room, std::int32_t size)
{
    return rounded((static_cast<double>(room) - size) / 2);
}

/// How far a button moves a block towards an edge with `room` left.
std::int32_t stepWithin(std::int32_t room)
{
    return std::min(room, moveStep);
}

std::int32_t stepBack(std::int32_t from)
{
    return from < moveStep ? 0 : from - moveStep;
}

std::int32_t draggedTo(std::int32_t wanted, std::int32_t size, std::int32_t outerSize)
{
    const std::int32_t from = std::max(wanted, 0);
    return outerSize < sum(from, size) ? difference(outerSize, size) : from;
}

/// The scroll position nearest to `value` that shows all from `first` to `last`, or `first`
/// where that is more than the page holds.
std::int16_t scrolledTo(std::int32_t value, std::int32_t first, std::int32_t last,
                        std::int32_t page)
{
    return toInt16(std::max(std::min(std::max(value, difference(last, page)), first), 0));
}

} // namespace

PictureCanvas::PictureCanvas(QSize page, int canvasBorder, int pageBorder)
    : page_(page)
    , canvasBorder_(canvasBorder)
    , pageBorder_(pageBorder)
    , image_(BlankImage(page))
{}

void PictureCanvas::commit(const CanvasState& before, QImage image, CanvasState after, bool joins)
{
    after.hasPicture = true;
    history_.add(image_, before, image, after, joins);
    image_ = std::move(image);
    state_ = std::move(after);
}

void PictureCanvas::Undo()
{
    endDrag();
    if (canUndo()) {
        history_.undo(image_, state_);
    }
}

void PictureCanvas::Redo()
{
    endDrag();
    if (canRedo()) {
        history_.redo(image_, state_);
    }
}

void PictureCanvas::endDrag()
{
    if (sized_) {
        state_ = *std::exchange(sized_, std::nullopt);
    }
    Moving = false;
    Drawing = false;
}

void PictureCanvas::CancelDrag()
{
    if (Drawing && !sized_) {
        state_.controlsShown = false;
    }
    endDrag();
}

void PictureCanvas::DropSelection()
{
    endDrag();
    state_.SelectionShown = false;
    state_.controlsShown = false;
}

bool PictureCanvas::Paste(const QImage& bitmap)
{
    endDrag();
    const CanvasState before = state_;
    DropSelection();
    if (bitmap.isNull()) {
        return false;
    }
    // Before anything is lost: what cannot be scrolled over is not taken.
    static_cast<void>(toInt16(bitmap.width() - page_.width()));
    static_cast<void>(toInt16(bitmap.height() - page_.height()));

    const int rim = 2 * canvasBorder_;
    const QSize size =
        bitmap.size().expandedTo({pageWidth() - rim, pageHeight() - rim}).expandedTo({1, 1});
    QImage image = OpaqueImage(bitmap);
    if (size != image.size()) {
        const QImage picture = std::exchange(image, BlankImage(size));
        DrawRegion(image, picture, 0, 0, picture.width(), picture.height(), 0, 0);
    }
    CanvasState after = state_;
    after.covered = {};
    UpdateScrollBars(after, size);
    commit(before, std::move(image), std::move(after));
    return true;
}

void PictureCanvas::Begin(const QImage& picture)
{
    Paste(picture);
    history_ = {};
}

void PictureCanvas::UpdateScrollBars(CanvasState& state, QSize canvas) const
{
    const auto update = [this](CanvasScroll& bar, int size, int page) {
        bar.value = 0;
        bar.visible = size + 2 * canvasBorder_ > page;
        if (bar.visible) {
            bar.maximum = toInt16(size + 2 * canvasBorder_ - page);
        }
    };
    update(state.HScroll, canvas.width(), pageWidth());
    update(state.VScroll, canvas.height(), pageHeight());
}

void PictureCanvas::setHScroll(int value)
{
    state_.HScroll.value = toInt16(value);
}

void PictureCanvas::setVScroll(int value)
{
    state_.VScroll.value = toInt16(value);
}

void PictureCanvas::ScrollBy(int dx, int dy)
{
    const auto scrolled = [](const CanvasScroll& bar, int by) {
        return std::clamp(bar.value + by, 0, bar.visible ? int{bar.maximum} : 0);
    };
    setHScroll(scrolled(state_.HScroll, dx));
    setVScroll(scrolled(state_.VScroll, dy));
}

void PictureCanvas::centre(const CanvasState& before, const QImage& block, const QRect& part,
                           bool selected)
{
    CanvasState after = state_;
    const QPoint corner(centred(page_.width(), part.width()),
                        centred(page_.height(), part.height()));
    place(after, corner, part.width(), part.height());
    QImage image = BlankImage(page_);
    DrawRegion(image, block, part.x(), part.y(), part.width(), part.height(), corner.x(),
               corner.y());
    UpdateScrollBars(after, page_);
    after.covered = {};
    after.FreshSelection = true;
    after.SelectionShown = after.controlsShown = selected;
    commit(before, std::move(image), std::move(after));
}

void PictureCanvas::Crop()
{
    endDrag();
    const CanvasState before = state_;
    DropSelection();
    orderCorners(state_);
    const std::int32_t w = difference(state_.SelX2, state_.SelX1);
    const std::int32_t h = difference(state_.SelY2, state_.SelY1);
    if (w == 0 || h == 0) {
        return;
    }
    // Not as a QRect, whose arithmetic is not checked.
    static_cast<void>(sum(centred(page_.width(), w), w));
    static_cast<void>(sum(centred(page_.height(), h), h));
    centre(before, image_, state_.selection(), true);
}

void PictureCanvas::FitToPage()
{
    endDrag();
    const bool framed = state_.SelectionShown;
    const CanvasState before = state_;
    const QRect part = (framed ? state_.selection() : image_.rect()).intersected(image_.rect());
    DropSelection();
    if (part.isEmpty() || (!framed && !imageExceedsPage())) {
        return;
    }
    const QSize size = part.size().scaled(page_, Qt::KeepAspectRatio).expandedTo({1, 1});
    centre(before, ScaledByArea(image_, part, size), QRect({}, size), framed);
}

bool PictureCanvas::selectionExceedsPage() const
{
    const QSize size = state_.selection().size();
    return state_.SelectionShown &&
           (size.width() > page_.width() || size.height() > page_.height());
}

bool PictureCanvas::imageExceedsPage() const
{
    return state_.HScroll.visible || state_.VScroll.visible;
}

QPoint PictureCanvas::movedTo(SelectionMove mode) const
{
    const std::int32_t w = difference(state_.SelX2, state_.SelX1);
    const std::int32_t h = difference(state_.SelY2, state_.SelY1);
    QPoint to(state_.SelX1, state_.SelY1);
    switch (mode) {
    case SelectionMove::Up:
        to.setY(stepBack(to.y()));
        break;
    case SelectionMove::Right:
        to.setX(sum(to.x(), stepWithin(difference(image_.width(), sum(to.x(), w)))));
        break;
    case SelectionMove::Down:
        to.setY(sum(to.y(), stepWithin(difference(image_.height(), sum(to.y(), h)))));
        break;
    case SelectionMove::Left:
        to.setX(stepBack(to.x()));
        break;
    case SelectionMove::Dragged:
        to = {draggedTo(MoveX1, w, canvasWidth()), draggedTo(MoveY1, h, canvasHeight())};
        break;
    case SelectionMove::Erase:
        break;
    }
    return to;
}

void PictureCanvas::MoveSelection(SelectionMove mode)
{
    move(mode, false);
}

void PictureCanvas::move(SelectionMove mode, bool joins)
{
    endDrag();
    const CanvasState before = state_;
    state_.SelectionShown = false;
    const std::int32_t w = difference(state_.SelX2, state_.SelX1);
    const std::int32_t h = difference(state_.SelY2, state_.SelY1);
    // Below 0 when the mouse was interrupted in the middle of a frame.
    if (w <= 0 || h <= 0) {
        return;
    }
    const QPoint from(state_.SelX1, state_.SelY1);
    const QPoint to = movedTo(mode);
    CanvasState after = state_;
    place(after, to, w, h);

    QImage image = image_;
    QImage block = BlankImage({w, h});
    DrawRegion(block, image_, from.x(), from.y(), w, h, 0, 0);
    // The place a block was cut from stays white; what a moved block passes over comes back.
    if (after.FreshSelection || mode == SelectionMove::Erase) {
        after.FreshSelection = false;
        BlankRegion(image, from.x(), from.y(), w, h);
    } else {
        DrawRegion(image, after.covered, 0, 0, w, h, from.x(), from.y());
    }
    after.covered = {};
    if (mode != SelectionMove::Erase) {
        after.covered = BlankImage({w, h});
        DrawRegion(after.covered, image, to.x(), to.y(), w, h, 0, 0);
        DrawRegion(image, block, 0, 0, w, h, to.x(), to.y());
    }
    keepInView(mode, after);
    after.SelectionShown = true;
    if (joins) {
        showSelection(after);
    }
    commit(before, std::move(image), std::move(after), joins);
}

void PictureCanvas::keepInView(SelectionMove mode, CanvasState& state) const
{
    switch (mode) {
    case SelectionMove::Up:
        state.VScroll.value = toInt16(std::min<std::int32_t>(state.VScroll.value, state.SelY1));
        break;
    case SelectionMove::Right:
        state.HScroll.value = toInt16(
            std::max<std::int32_t>(state.HScroll.value, difference(state.SelX2, pageWidth())));
        break;
    case SelectionMove::Down:
        state.VScroll.value = toInt16(
            std::max<std::int32_t>(state.VScroll.value, difference(state.SelY2, pageHeight())));
        break;
    case SelectionMove::Left:
        state.HScroll.value = toInt16(std::min<std::int32_t>(state.HScroll.value, state.SelX1));
        break;
    case SelectionMove::Dragged:
    case SelectionMove::Erase:
        break;
    }
}

void PictureCanvas::showSelection(CanvasState& state) const
{
    state.HScroll.value = scrolledTo(state.HScroll.value, state.SelX1, state.SelX2, pageWidth());
    state.VScroll.value = scrolledTo(state.VScroll.value, state.SelY1, state.SelY2, pageHeight());
}

void PictureCanvas::Nudge(std::int32_t dx, std::int32_t dy)
{
    if (!state_.SelectionShown || Moving) {
        return;
    }
    MoveX1 = sum(state_.SelX1, dx);
    MoveY1 = sum(state_.SelY1, dy);
    move(SelectionMove::Dragged, true);
}

void PictureCanvas::StampText(const QString& text)
{
    endDrag();
    const CanvasState before = state_;
    state_.SelectionShown = false;
    CanvasState after = state_;
    after.controlsShown = false;
    after.covered = {};
    QImage image = image_;
    PrintLine(image, after.SelX1, after.SelY1, text, stampFont(font));
    commit(before, std::move(image), std::move(after));
}

QImage PictureCanvas::renderPage() const
{
    QImage page = BlankImage(page_);
    DrawRegion(page, image_, 0, 0, page.width(), page.height(), 0, 0);
    return page;
}

} // namespace varnholt
