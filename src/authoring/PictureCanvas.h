#pragma once

#include "authoring/CanvasHistory.h"
#include "authoring/canvas_font.h"

#include <QString>

#include <optional>

namespace varnholt {

/// The page that every question picture fills, in pixels. At 96 dots per inch it is 954 x 468
/// points: under the number and the topic line, the whole width of a slide of 960 x 540.
inline constexpr QSize questionPage{1272, 624};

/// Modes of `PictureCanvas::MoveSelection`.
enum class SelectionMove : std::int16_t
{
    Up = 1,
    Right = 2,
    Down = 3,
    Left = 4,
    Dragged = 5,
    Erase = 6,
};

/// The picture of a question while it is worked on: a value of an image, a selection, a font and
/// steps that can be undone. It knows no widgets and no zoom; whoever shows it passes events on
/// and paints the frames and the block on the move over the image, which never holds them. So the
/// image is always what a save stores.
///
/// Coordinates are pixels of the image. The page is an opening through which the image is seen,
/// scrolled by `HScroll` and `VScroll`. Borders make outer sizes differ from inner ones.
///
/// An operation that comes while the mouse holds a frame or a block ends that first: an unfinished
/// new frame goes, a finished one that was being sized is as before. An operation that throws
/// leaves the image as it was.
///
/// Arithmetic on coordinates is checked: beyond 32 bits, or 16 bits for scroll positions, an
/// operation throws `OverflowError`.
class PictureCanvas
{
public:
    explicit PictureCanvas(QSize page = questionPage, int canvasBorder = 0, int pageBorder = 0);

    /// Begins with a picture, or with another one, in a way that cannot be undone.
    void Begin(const QImage& picture);

    // Operations that can be undone.

    /// Ends the selection and replaces the canvas by the picture, on white where that is
    /// smaller than the page. False, with no more done than the selection ended, for a null
    /// picture. Throws `OverflowError` for one too large to scroll over.
    bool Paste(const QImage& bitmap);
    /// Centres the selected region on a white page.
    void Crop();
    /// The same with the region as large as the page can hold it; without a frame the whole image
    /// where it is larger than the page.
    void FitToPage();
    void MoveSelection(SelectionMove mode);
    /// Moves the selection by a few pixels as dragging it does, and keeps it in view. One after
    /// the other they are one step.
    void Nudge(std::int32_t dx, std::int32_t dy);
    /// Prints a line at the selection's, or the last selection's, first corner.
    void StampText(const QString& text);

    [[nodiscard]] bool canUndo() const { return history_.canUndo(); }
    [[nodiscard]] bool canRedo() const { return history_.canRedo(); }
    void Undo();
    void Redo();
    [[nodiscard]] const CanvasHistory& history() const { return history_; }

    // Framing.

    void MouseDown(double X, double Y);
    /// Takes hold of a side (-1, 0 or 1 across and down) of the finished frame.
    void HandleDown(int across, int down);
    void MouseMove(double X, double Y);
    void MouseUp();
    void SelectAll();
    /// Moves a finished frame, or its far sides, over the image. Without one a frame appears in
    /// the middle of what the page shows.
    void MoveFrame(std::int32_t dx, std::int32_t dy);
    void SizeFrame(std::int32_t dx, std::int32_t dy);
    /// Forgets the selection.
    void DropSelection();
    /// Takes back a frame or a drag that the mouse has not finished.
    void CancelDrag();

    void setHScroll(int value);
    void setVScroll(int value);
    /// Scrolls by so much, as far as that goes.
    void ScrollBy(int dx, int dy);

    /// What a save stores: the image from its top left corner, on white, in the size of the page.
    [[nodiscard]] QImage renderPage() const;

    /// True where a press would take hold of the selection.
    [[nodiscard]] bool grabs(double X, double Y) const;
    [[nodiscard]] const QImage& image() const { return image_; }
    [[nodiscard]] QSize page() const { return page_; }
    [[nodiscard]] const CanvasState& state() const { return state_; }
    [[nodiscard]] bool isDragging() const { return Drawing || Moving; }
    /// A selection that is larger than the page, so that `Crop` cuts it.
    [[nodiscard]] bool selectionExceedsPage() const;
    /// An image of which a save stores a part only.
    [[nodiscard]] bool imageExceedsPage() const;

    CanvasFont font;

    /// The frame that follows the mouse while a selection is dragged.
    std::int32_t MoveX1 = 0, MoveY1 = 0, MoveX2 = 0, MoveY2 = 0;
    /// From the selection's first corner to where it was grabbed.
    std::int32_t GrabDX = 0, GrabDY = 0;
    bool Drawing = false;   ///< a frame is being drawn
    bool Moving = false;    ///< the selection is being dragged
    bool FirstMove = false; ///< the drag has not drawn its own frame yet

private:
    [[nodiscard]] int canvasWidth() const { return image_.width() + 2 * canvasBorder_; }
    [[nodiscard]] int canvasHeight() const { return image_.height() + 2 * canvasBorder_; }
    [[nodiscard]] int pageWidth() const { return page_.width() + 2 * pageBorder_; }
    [[nodiscard]] int pageHeight() const { return page_.height() + 2 * pageBorder_; }
    void endDrag();
    /// What has been drawn counts as a picture from now on.
    void commit(const CanvasState& before, QImage image, CanvasState after, bool joins = false);
    /// Puts a page with a part of an image in its middle in the canvas's place.
    void centre(const CanvasState& before, const QImage& block, const QRect& part, bool selected);
    void move(SelectionMove mode, bool joins);
    [[nodiscard]] QPoint movedTo(SelectionMove mode) const;
    void UpdateScrollBars(CanvasState& state, QSize canvas) const;
    void keepInView(SelectionMove mode, CanvasState& state) const;
    void showSelection(CanvasState& state) const;
    /// A finished frame as large as that, as far as it lies on the image.
    void select(const QRect& frame);
    [[nodiscard]] QRect frameToChange() const;

    QSize page_;
    int canvasBorder_;
    int pageBorder_;
    QImage image_;
    CanvasState state_;
    CanvasHistory history_;
    /// Whether the corner that is drawn follows the mouse across and down.
    bool across_ = true;
    bool down_ = true;
    /// The finished frame that is being sized.
    std::optional<CanvasState> sized_;
};

} // namespace varnholt
