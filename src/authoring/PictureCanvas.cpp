#include "authoring/PictureCanvas.h"

#include "store/errors.h"

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <limits>

namespace varnholt {

namespace {

constexpr std::int32_t moveStep = 100;

QString tr(const char* sentence)
{
    return QCoreApplication::translate("PictureCanvas", sentence);
}

std::int32_t checked(std::int64_t value)
{
    if (value < std::numeric_limits<std::int32_t>::min() ||
        value > std::numeric_limits<std::int32_t>::max()) {
        throw OverflowError(tr("The position %1 is too far away.").arg(value));
    }
    return static_cast<std::int32_t>(value);
}

std::int32_t sum(std::int32_t a, std::int32_t b)
{
    return checked(std::int64_t{a} + b);
}

std::int32_t difference(std::int32_t a, std::int32_t b)
{
    return checked(std::int64_t{a} - b);
}

/// To a whole number, halves to even.
std::int32_t rounded(double value)
{
    // Written so that a value that is no number fails as well.
    if (!(std::abs(value) < 4e18)) {
        throw OverflowError(tr("The position is too far away."));
    }
    return checked(std::llrint(value));
}

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
std::int32_t scrolledTo(std::int32_t value, std::int32_t first, std::int32_t last,
                        std::int32_t page)
{
    return std::max(std::min(std::max(value, difference(last, page)), first), 0);
}

} // namespace

PictureCanvas::PictureCanvas(QSize page, int canvasBorder, int pageBorder)
    : picQuestion(page, canvasBorder)
    , picCropped(page, pageBorder)
    , picSaved(page)
    , picTemp({1, 1})
    , picUndo(page)
{}

void PictureCanvas::draw(const Frame& frame)
{
    picQuestion.drawFrame(frame.x1, frame.y1, frame.x2, frame.y2);
}

void PictureCanvas::drawSelectionFrame()
{
    shownFrame_ = {SelX1, SelY1, SelX2, SelY2};
    draw(shownFrame_);
}

void PictureCanvas::drawMovingFrame()
{
    draw({MoveX1, MoveY1, MoveX2, MoveY2});
}

void PictureCanvas::eraseShownFrame()
{
    if (SelectionShown) {
        SelectionShown = false;
        draw(shownFrame_);
    }
}

void PictureCanvas::endDrag()
{
    if (Moving && !FirstMove) {
        drawMovingFrame();
    }
    if (Drawing) {
        draw(shownFrame_);
    }
    Moving = false;
    Drawing = false;
}

void PictureCanvas::CancelDrag()
{
    if (Drawing) {
        controlsShown_ = false;
    }
    endDrag();
}

void PictureCanvas::DropSelection()
{
    endDrag();
    eraseShownFrame();
    controlsShown_ = false;
}

bool PictureCanvas::Paste(const QImage& bitmap)
{
    DropSelection();
    if (bitmap.isNull()) {
        return false;
    }
    // Before anything is lost: what cannot be scrolled over is not taken.
    static_cast<void>(toInt16(bitmap.width() - picCropped.innerWidth()));
    static_cast<void>(toInt16(bitmap.height() - picCropped.innerHeight()));

    picQuestion.setPicture(bitmap);
    picQuestion.growOuter(picCropped.outerWidth(), picCropped.outerHeight());
    picSaved.setPicture(picQuestion.image());
    setHScroll(0);
    setVScroll(0);
    UpdateScrollBars();
    return true;
}

void PictureCanvas::UpdateScrollBars()
{
    left_ = 0;
    top_ = 0;
    const auto update = [](ScrollBar& bar, int canvas, int page) {
        bar.visible = canvas > page;
        if (bar.visible) {
            bar.value = 0;
            bar.maximum = toInt16(canvas - page);
        }
    };
    update(hScroll_, picQuestion.outerWidth(), picCropped.outerWidth());
    update(vScroll_, picQuestion.outerHeight(), picCropped.outerHeight());
}

void PictureCanvas::setHScroll(int value)
{
    hScroll_.value = toInt16(value);
    left_ = -value;
}

void PictureCanvas::setVScroll(int value)
{
    vScroll_.value = toInt16(value);
    top_ = -value;
}

bool PictureCanvas::grabs(double X, double Y) const
{
    return SelectionShown && SelX1 <= X && X <= SelX2 && SelY1 <= Y && Y <= SelY2;
}

void PictureCanvas::MouseDown(double X, double Y)
{
    endDrag();
    if (grabs(X, Y)) {
        GrabDX = rounded(std::abs(SelX1 - X));
        GrabDY = rounded(std::abs(SelY1 - Y));
        MoveX1 = rounded(X - GrabDX);
        MoveY1 = rounded(Y - GrabDY);
        MoveX2 = sum(difference(SelX2, SelX1), MoveX1);
        MoveY2 = sum(difference(SelY2, SelY1), MoveY1);
        Moving = true;
        FirstMove = true;
        return;
    }
    const std::int32_t x = rounded(X);
    const std::int32_t y = rounded(Y);
    eraseShownFrame();
    controlsShown_ = true;
    Drawing = true;
    SelX1 = SelX2 = x;
    SelY1 = SelY2 = y;
    drawSelectionFrame();
    picSaved.setPicture(picQuestion.image());
}

void PictureCanvas::MouseMove(double X, double Y)
{
    if (Moving) {
        const std::int32_t x1 = rounded(X - GrabDX);
        const std::int32_t y1 = rounded(Y - GrabDY);
        const std::int32_t x2 = sum(x1, difference(SelX2, SelX1));
        const std::int32_t y2 = sum(y1, difference(SelY2, SelY1));
        // The selection's own frame stays as a marker of where the block comes from.
        if (!FirstMove) {
            drawMovingFrame();
        }
        FirstMove = false;
        MoveX1 = x1;
        MoveY1 = y1;
        MoveX2 = x2;
        MoveY2 = y2;
        drawMovingFrame();
    } else if (Drawing) {
        const std::int32_t x = rounded(X);
        const std::int32_t y = rounded(Y);
        draw(shownFrame_);
        SelX2 = x;
        SelY2 = y;
        drawSelectionFrame();
    }
}

void PictureCanvas::MouseUp()
{
    if (Moving) {
        const bool moved = SelX1 != MoveX1 || SelY1 != MoveY1;
        endDrag();
        if (moved) {
            MoveSelection(SelectionMove::Dragged);
        } else {
            DropSelection();
        }
        return;
    }
    if (!Drawing) {
        return;
    }
    Drawing = false;
    FreshSelection = true;
    if (SelX1 == SelX2 && SelY1 == SelY2) {
        controlsShown_ = false;
        return;
    }
    SelectionShown = true;
    orderCorners();
    SelX1 = std::max(SelX1, 0);
    SelX2 = std::min(SelX2, picQuestion.innerWidth());
    SelY1 = std::max(SelY1, 0);
    SelY2 = std::min(SelY2, picQuestion.innerHeight());
}

void PictureCanvas::SelectAll()
{
    DropSelection();
    MouseDown(0, 0);
    MouseMove(picQuestion.innerWidth() - 1, picQuestion.innerHeight() - 1);
    MouseUp();
    SelX2 = picQuestion.innerWidth();
    SelY2 = picQuestion.innerHeight();
}

void PictureCanvas::orderCorners()
{
    if (SelX1 > SelX2) {
        std::swap(SelX1, SelX2);
    }
    if (SelY1 > SelY2) {
        std::swap(SelY1, SelY2);
    }
}

void PictureCanvas::Crop()
{
    DropSelection();
    orderCorners();
    const std::int32_t w = difference(SelX2, SelX1);
    const std::int32_t h = difference(SelY2, SelY1);
    if (w == 0 || h == 0) {
        return;
    }
    picUndo.setPicture(picQuestion.image());
    const std::int32_t left = centred(picCropped.innerWidth(), w);
    const std::int32_t top = centred(picCropped.innerHeight(), h);
    const std::int32_t right = sum(left, w);
    const std::int32_t bottom = sum(top, h);
    picCropped.drawRegion(picQuestion.picture(), SelX1, SelY1, w, h, left, top);
    picCropped.fixImage();
    picQuestion.setPicture(picCropped.picture());
    picCropped.clearPicture();
    setHScroll(0);
    setVScroll(0);
    UpdateScrollBars();

    SelX1 = left;
    SelY1 = top;
    SelX2 = right;
    SelY2 = bottom;
    drawSelectionFrame();
    SelectionShown = true;
    controlsShown_ = true;
    picSaved.setPicture(picQuestion.picture());
    FreshSelection = true;
}

void PictureCanvas::MoveSelection(SelectionMove mode)
{
    endDrag();
    eraseShownFrame();
    const std::int32_t w = difference(SelX2, SelX1);
    const std::int32_t h = difference(SelY2, SelY1);
    // Below 0 when the mouse was interrupted in the middle of a frame.
    if (w <= 0 || h <= 0) {
        return;
    }
    std::int32_t newX = SelX1;
    std::int32_t newY = SelY1;
    switch (mode) {
    case SelectionMove::Up:
        newY = stepBack(SelY1);
        break;
    case SelectionMove::Right:
        newX = sum(SelX1, stepWithin(difference(picQuestion.innerWidth(), sum(SelX1, w))));
        break;
    case SelectionMove::Down:
        newY = sum(SelY1, stepWithin(difference(picQuestion.innerHeight(), sum(SelY1, h))));
        break;
    case SelectionMove::Left:
        newX = stepBack(SelX1);
        break;
    case SelectionMove::Dragged:
        newX = draggedTo(MoveX1, w, picQuestion.outerWidth());
        newY = draggedTo(MoveY1, h, picQuestion.outerHeight());
        break;
    case SelectionMove::Erase:
        break;
    }
    const std::int32_t newRight = sum(newX, w);
    const std::int32_t newBottom = sum(newY, h);

    picTemp.reset({w, h});
    picTemp.drawRegion(picQuestion.picture(), SelX1, SelY1, w, h, 0, 0);
    picTemp.fixImage();
    if (FreshSelection || mode == SelectionMove::Erase) {
        FreshSelection = false;
        picQuestion.blankRegion(SelX1, SelY1, w, h);
        picSaved.blankRegion(SelX1, SelY1, w, h);
        picSaved.fixImage();
    } else {
        picQuestion.drawRegion(picSaved.picture(), SelX1, SelY1, w, h, SelX1, SelY1);
    }
    if (mode != SelectionMove::Erase) {
        picQuestion.drawRegion(picTemp.picture(), 0, 0, w, h, newX, newY);
    }
    picQuestion.fixImage();
    picTemp.clearPicture();
    left_ = -hScroll_.value;
    top_ = -vScroll_.value;

    SelX1 = newX;
    SelY1 = newY;
    SelX2 = newRight;
    SelY2 = newBottom;
    keepInView(mode);
    SelectionShown = true;
    drawSelectionFrame();
}

void PictureCanvas::keepInView(SelectionMove mode)
{
    switch (mode) {
    case SelectionMove::Up:
        if (vScroll_.value > SelY1) {
            setVScroll(SelY1);
        }
        break;
    case SelectionMove::Right:
        if (SelX2 > hScroll_.value + picCropped.outerWidth()) {
            setHScroll(difference(SelX2, picCropped.outerWidth()));
        }
        break;
    case SelectionMove::Down:
        if (SelY2 > vScroll_.value + picCropped.outerHeight()) {
            setVScroll(difference(SelY2, picCropped.outerHeight()));
        }
        break;
    case SelectionMove::Left:
        if (hScroll_.value > SelX1) {
            setHScroll(SelX1);
        }
        break;
    case SelectionMove::Dragged:
    case SelectionMove::Erase:
        break;
    }
}

void PictureCanvas::Nudge(std::int32_t dx, std::int32_t dy)
{
    if (!SelectionShown || Moving) {
        return;
    }
    MoveX1 = sum(SelX1, dx);
    MoveY1 = sum(SelY1, dy);
    MoveSelection(SelectionMove::Dragged);
    setHScroll(scrolledTo(hScroll_.value, SelX1, SelX2, picCropped.outerWidth()));
    setVScroll(scrolledTo(vScroll_.value, SelY1, SelY2, picCropped.outerHeight()));
}

void PictureCanvas::StampText(const QString& text)
{
    endDrag();
    eraseShownFrame();
    picQuestion.printText(SelX1, SelY1, text, stampFont(font));
    picQuestion.fixImage();
    controlsShown_ = false;
    picSaved.setPicture(picQuestion.picture());
}

QImage PictureCanvas::renderPage()
{
    const int width = picCropped.innerWidth();
    const int height = picCropped.innerHeight();
    picCropped.drawRegion(picQuestion.picture(), 0, 0, width, height, 0, 0);
    picCropped.fixImage();
    const QImage page = picCropped.picture();
    // White again: a save that fails must not leave the page as the source of blanks.
    picCropped.clearPicture();
    return page;
}

} // namespace varnholt
