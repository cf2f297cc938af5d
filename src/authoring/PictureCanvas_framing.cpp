// How the canvas takes frames: by mouse, handles and keys.
#include "authoring/PictureCanvas.h"
#include "authoring/canvas_numbers.h"

#include <algorithm>
#include <cmath>

namespace varnholt {

bool PictureCanvas::grabs(double X, double Y) const
{
    return state_.SelectionShown && state_.SelX1 <= X && X <= state_.SelX2 && state_.SelY1 <= Y &&
           Y <= state_.SelY2;
}

void PictureCanvas::MouseDown(double X, double Y)
{
    endDrag();
    if (grabs(X, Y)) {
        GrabDX = rounded(std::abs(state_.SelX1 - X));
        GrabDY = rounded(std::abs(state_.SelY1 - Y));
        MoveX1 = rounded(X - GrabDX);
        MoveY1 = rounded(Y - GrabDY);
        MoveX2 = sum(difference(state_.SelX2, state_.SelX1), MoveX1);
        MoveY2 = sum(difference(state_.SelY2, state_.SelY1), MoveY1);
        Moving = true;
        FirstMove = true;
        return;
    }
    place(state_, {rounded(X), rounded(Y)}, 0, 0);
    state_.SelectionShown = false;
    state_.controlsShown = true;
    state_.covered = {};
    Drawing = across_ = down_ = true;
}

void PictureCanvas::HandleDown(int across, int down)
{
    endDrag();
    if (!state_.SelectionShown) {
        return;
    }
    sized_ = state_;
    if (across < 0) {
        std::swap(state_.SelX1, state_.SelX2);
    }
    if (down < 0) {
        std::swap(state_.SelY1, state_.SelY2);
    }
    across_ = across != 0;
    down_ = down != 0;
    state_.SelectionShown = false;
    state_.controlsShown = true;
    Drawing = true;
}

void PictureCanvas::MouseMove(double X, double Y)
{
    if (Moving) {
        const std::int32_t x1 = rounded(X - GrabDX);
        const std::int32_t y1 = rounded(Y - GrabDY);
        const std::int32_t x2 = sum(x1, difference(state_.SelX2, state_.SelX1));
        const std::int32_t y2 = sum(y1, difference(state_.SelY2, state_.SelY1));
        FirstMove = false;
        MoveX1 = x1;
        MoveY1 = y1;
        MoveX2 = x2;
        MoveY2 = y2;
    } else if (Drawing) {
        const std::int32_t x = across_ ? rounded(X) : state_.SelX2;
        const std::int32_t y = down_ ? rounded(Y) : state_.SelY2;
        state_.SelX2 = x;
        state_.SelY2 = y;
    }
}

void PictureCanvas::MouseUp()
{
    if (Moving) {
        const bool moved = state_.SelX1 != MoveX1 || state_.SelY1 != MoveY1;
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
    sized_.reset();
    state_.FreshSelection = true;
    state_.covered = {};
    if (state_.SelX1 == state_.SelX2 && state_.SelY1 == state_.SelY2) {
        state_.controlsShown = false;
        return;
    }
    state_.SelectionShown = true;
    orderCorners(state_);
    state_.SelX1 = std::max(state_.SelX1, 0);
    state_.SelX2 = std::min(state_.SelX2, image_.width());
    state_.SelY1 = std::max(state_.SelY1, 0);
    state_.SelY2 = std::min(state_.SelY2, image_.height());
}

void PictureCanvas::select(const QRect& frame)
{
    endDrag();
    const QRect inside = frame.intersected(image_.rect());
    place(state_, inside.topLeft(), inside.width(), inside.height());
    state_.covered = {};
    state_.SelectionShown = state_.FreshSelection = state_.controlsShown = true;
}

void PictureCanvas::SelectAll()
{
    select(image_.rect());
}

QRect PictureCanvas::frameToChange() const
{
    const QRect frame = state_.selection().intersected(image_.rect());
    if (state_.SelectionShown && !frame.isEmpty()) {
        return frame;
    }
    const QSize half = (page_ / 2).expandedTo({1, 1});
    return QRect(
        QPoint(state_.HScroll.value + half.width() / 2, state_.VScroll.value + half.height() / 2),
        half);
}

void PictureCanvas::MoveFrame(std::int32_t dx, std::int32_t dy)
{
    const bool there = state_.SelectionShown;
    QRect frame = frameToChange();
    if (there) {
        frame.moveTo(std::clamp(frame.x() + dx, 0, image_.width() - frame.width()),
                     std::clamp(frame.y() + dy, 0, image_.height() - frame.height()));
    }
    select(frame);
    showSelection(state_);
}

void PictureCanvas::SizeFrame(std::int32_t dx, std::int32_t dy)
{
    const bool there = state_.SelectionShown;
    QRect frame = frameToChange();
    if (there) {
        frame.setSize(QSize(frame.width() + dx, frame.height() + dy).expandedTo({1, 1}));
    }
    select(frame);
    showSelection(state_);
}

} // namespace varnholt
