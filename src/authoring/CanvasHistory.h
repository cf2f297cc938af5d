#pragma once

#include <QImage>
#include <QRect>

#include <cstdint>
#include <deque>

namespace varnholt {

/// One of the canvas's scroll bars, in canvas pixels.
struct CanvasScroll
{
    bool visible = false;
    std::int16_t value = 0;
    std::int16_t maximum = 0;

    friend bool operator==(const CanvasScroll&, const CanvasScroll&) = default;
};

/// What there is of a canvas besides its pixels. After a finished drag the selection's first
/// corner is the upper left one; the block it selects is the half-open rectangle from
/// (SelX1, SelY1) to (SelX2, SelY2).
struct CanvasState
{
    std::int32_t SelX1 = 0, SelY1 = 0, SelX2 = 0, SelY2 = 0;
    bool SelectionShown = false; ///< there is a finished frame
    bool FreshSelection = false; ///< not moved or blanked since it was made
    bool controlsShown = false;  ///< the frame with the picture controls is shown
    bool hasPicture = false;     ///< something was put on the canvas
    /// What the block covers, in its size; null where that is what the canvas shows there.
    QImage covered;
    CanvasScroll HScroll;
    CanvasScroll VScroll;

    /// Left, top, width and height of the selection.
    [[nodiscard]] QRect selection() const { return {SelX1, SelY1, SelX2 - SelX1, SelY2 - SelY1}; }

    friend bool operator==(const CanvasState&, const CanvasState&) = default;
};

/// The steps that can be undone and done again. A step holds the pixels in which the canvas
/// differed before it, or the whole picture where that had another size.
///
/// Memory: the newest `alwaysKept` steps, more while all together take less than `plenty` bytes,
/// and never more than `most` bytes apart from the newest step.
class CanvasHistory
{
public:
    static constexpr std::size_t alwaysKept = 30;
    static constexpr qint64 plenty = qint64{64} * 1024 * 1024;
    static constexpr qint64 most = qint64{512} * 1024 * 1024;

    /// A step from one picture to another; what had been undone is forgotten. `joins` makes it
    /// one with the step before if that was to be joined, too, and nothing has come between.
    void add(const QImage& before, const CanvasState& stateBefore, const QImage& after,
             const CanvasState& stateAfter, bool joins = false);

    [[nodiscard]] bool canUndo() const { return done_ > 0; }
    [[nodiscard]] bool canRedo() const { return done_ < steps_.size(); }
    /// Take the picture and its state to the other side of a step that there is.
    void undo(QImage& image, CanvasState& state);
    void redo(QImage& image, CanvasState& state);

    [[nodiscard]] std::size_t steps() const { return steps_.size(); }
    [[nodiscard]] qint64 bytes() const;

private:
    struct Step
    {
        CanvasState before, after;
        QRect area;    ///< where the pixels differ; not valid for pictures of different sizes
        QImage pixels; ///< those of the side on which the canvas is not
        bool joins = false;

        void turn(QImage& image);
        [[nodiscard]] qint64 bytes() const;
    };

    std::deque<Step> steps_;
    std::size_t done_ = 0;
};

} // namespace varnholt
