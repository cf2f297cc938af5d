#include "authoring/CanvasHistory.h"

#include "authoring/canvas_image.h"

namespace varnholt {

void CanvasHistory::Step::turn(QImage& image)
{
    if (!area.isValid()) {
        if (!pixels.isNull()) {
            std::swap(image, pixels);
        }
        return;
    }
    QImage other = image.copy(area);
    DrawRegion(image, pixels, 0, 0, area.width(), area.height(), area.x(), area.y());
    pixels = std::move(other);
}

qint64 CanvasHistory::Step::bytes() const
{
    return pixels.sizeInBytes() + before.covered.sizeInBytes() + after.covered.sizeInBytes();
}

qint64 CanvasHistory::bytes() const
{
    qint64 sum = 0;
    for (const Step& step : steps_) {
        sum += step.bytes();
    }
    return sum;
}

void CanvasHistory::add(const QImage& before, const CanvasState& stateBefore, const QImage& after,
                        const CanvasState& stateAfter, bool joins)
{
    QImage from = before;
    Step step{stateBefore, stateAfter, {}, {}, joins};
    const bool joined = joins && !canRedo() && canUndo() && steps_.back().joins &&
                        steps_.back().after == stateBefore;
    if (joined) {
        steps_.back().turn(from);
        step.before = steps_.back().before;
    }
    if (from.size() != after.size()) {
        step.pixels = from;
    } else if (const QRect area = ChangedArea(from, after); !area.isEmpty()) {
        step.area = area;
        step.pixels = from.copy(area);
    }
    steps_.resize(joined ? done_ - 1 : done_);
    steps_.push_back(std::move(step));
    for (qint64 sum = bytes();
         steps_.size() > 1 && (sum > most || (sum > plenty && steps_.size() > alwaysKept));) {
        sum -= steps_.front().bytes();
        steps_.pop_front();
    }
    done_ = steps_.size();
}

void CanvasHistory::undo(QImage& image, CanvasState& state)
{
    Step& step = steps_[done_ - 1];
    step.turn(image);
    state = step.before;
    --done_;
}

void CanvasHistory::redo(QImage& image, CanvasState& state)
{
    Step& step = steps_[done_];
    step.turn(image);
    state = step.after;
    ++done_;
}

} // namespace varnholt
