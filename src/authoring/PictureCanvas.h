#pragma once

#include "authoring/canvas_font.h"
#include "pictures/PictureSurface.h"

#include <QString>

#include <cstdint>

namespace varnholt {

/// The page that every question picture fills, in pixels. At 96 dots per inch it is
/// 600 x 375 points: under the number and the topic line it fits a slide of 960 x 540, and
/// with the controls beside it a screen of 1280 x 720 units.
inline constexpr QSize questionPage{800, 500};

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

/// The picture-editing canvas of the authoring window: surfaces, a selection rectangle and
/// two scroll positions. It knows no widgets; the window passes events on, shows
/// `picQuestion` at (`left`, `top`) behind an opening of the page's size, and shows the
/// scroll bars and the frame with the picture controls as told here.
///
/// Coordinates are pixels of `picQuestion`. A frame is inverted pixels on `picQuestion`'s
/// image, never in its picture, and is removed by drawing it a second time with the very
/// coordinates of the first: a frame that reached over an edge is remembered as drawn,
/// apart from the selection that was cut back to the canvas. So whenever no frame shows,
/// what the user sees is what a save stores. Frames include both corners; the block they
/// select is the half-open rectangle from (SelX1, SelY1) to (SelX2, SelY2).
///
/// An operation that comes while the mouse holds a frame or a block ends that first: the
/// unfinished frame goes, the rectangle stays as it was last.
///
/// Arithmetic on coordinates is checked: beyond 32 bits, or 16 bits for scroll positions, an
/// operation throws `OverflowError`, and the frame on show is still the one remembered.
class PictureCanvas
{
public:
    struct ScrollBar
    {
        bool visible = false;
        std::int16_t value = 0;
        std::int16_t maximum = 0;
    };

    /// `page` is the page's inner size. Borders make outer sizes differ from inner ones.
    explicit PictureCanvas(QSize page = questionPage, int canvasBorder = 0, int pageBorder = 0);

    // The work surfaces.
    PictureSurface picQuestion; ///< what the user sees
    PictureSurface picCropped;  ///< the page; white except while something passes through it
    PictureSurface picSaved;    ///< the background that a moved block uncovers
    PictureSurface picTemp;     ///< the block on the move
    PictureSurface picUndo;     ///< the canvas before the last crop

    /// Ends the selection and replaces the canvas by the picture, on white where that is
    /// smaller than the page. False, with no more done than the selection ended, for a null
    /// picture. Throws `OverflowError` for one too large to scroll over.
    bool Paste(const QImage& bitmap);

    void MouseDown(double X, double Y);
    void MouseMove(double X, double Y);
    void MouseUp();

    /// Centres the selected region on a white page.
    void Crop();
    void MoveSelection(SelectionMove mode);
    /// Selects the whole canvas. The frame's far sides are drawn on the last pixels, where
    /// they show; the selection reaches to the edges.
    void SelectAll();
    /// Moves the selection by a few pixels as dragging it does, and keeps it in view.
    void Nudge(std::int32_t dx, std::int32_t dy);
    /// Prints a line at the selection's, or the last selection's, first corner.
    void StampText(const QString& text);

    /// Erases the frame, if one is shown, and forgets the selection.
    void DropSelection();
    /// Takes back a frame or a drag that the mouse has not finished.
    void CancelDrag();

    void setHScroll(int value);
    void setVScroll(int value);

    /// What a save stores: the canvas's picture from its top left corner, on white, in the
    /// size of the page.
    [[nodiscard]] QImage renderPage();

    /// True where a press would take hold of the selection.
    [[nodiscard]] bool grabs(double X, double Y) const;

    [[nodiscard]] const ScrollBar& HScroll() const { return hScroll_; }
    [[nodiscard]] const ScrollBar& VScroll() const { return vScroll_; }
    [[nodiscard]] int left() const { return left_; }
    [[nodiscard]] int top() const { return top_; }
    /// Whether the frame with the picture controls is shown.
    [[nodiscard]] bool controlsShown() const { return controlsShown_; }
    [[nodiscard]] bool isDragging() const { return Drawing || Moving; }

    CanvasFont font;

    // The selection. After a finished drag the first corner is the upper left one.
    std::int32_t SelX1 = 0, SelY1 = 0, SelX2 = 0, SelY2 = 0;
    /// The frame that follows the mouse while a selection is dragged.
    std::int32_t MoveX1 = 0, MoveY1 = 0, MoveX2 = 0, MoveY2 = 0;
    /// From the selection's first corner to where it was grabbed.
    std::int32_t GrabDX = 0, GrabDY = 0;
    bool Drawing = false;        ///< a frame is being drawn
    bool SelectionShown = false; ///< a finished frame is on the canvas
    bool FreshSelection = false; ///< not moved or blanked since it was made
    bool Moving = false;         ///< the selection is being dragged
    bool FirstMove = false;      ///< the drag has not drawn its own frame yet

private:
    struct Frame
    {
        std::int32_t x1 = 0, y1 = 0, x2 = 0, y2 = 0;
    };

    void UpdateScrollBars();
    void draw(const Frame& frame);
    void drawSelectionFrame();
    void drawMovingFrame();
    void eraseShownFrame();
    void endDrag();
    void orderCorners();
    void keepInView(SelectionMove mode);

    /// The selection's frame as it was drawn.
    Frame shownFrame_;
    ScrollBar hScroll_;
    ScrollBar vScroll_;
    int left_ = 0;
    int top_ = 0;
    bool controlsShown_ = false;
};

} // namespace varnholt
