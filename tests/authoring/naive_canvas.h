#pragma once

#include <QImage>
#include <QString>

#include <vector>

namespace varnholt::test {

/// Pixels as numbers 0xRRGGBB, asked and set one at a time; outside there is nothing.
class Pixels
{
public:
    Pixels() = default;
    Pixels(int w, int h)
        : width(w)
        , height(h)
        , cells(static_cast<std::size_t>(w) * static_cast<std::size_t>(h), 0xFFFFFF)
    {}
    explicit Pixels(const QImage& image);

    [[nodiscard]] bool has(int x, int y) const
    {
        return x >= 0 && y >= 0 && x < width && y < height;
    }
    unsigned& at(int x, int y) { return cells[static_cast<std::size_t>(y * width + x)]; }
    [[nodiscard]] unsigned at(int x, int y) const
    {
        return cells[static_cast<std::size_t>(y * width + x)];
    }

    bool operator==(const Pixels&) const = default;

    int width = 0;
    int height = 0;
    std::vector<unsigned> cells;
};

/// The canvas once more, as simple as can be: frames are never drawn into the pixels but kept
/// in a list, and what the user sees is put together when asked for. All pixels at all times
/// hold what is fixed; copying is done pixel by pixel.
struct NaiveCanvas
{
    NaiveCanvas(int pageWidth, int pageHeight, int canvasBorder, int pageBorder);

    void paste(const QImage& picture);
    void down(double x, double y);
    void move(double x, double y);
    void up();
    void crop();
    /// 1 up, 2 right, 3 down, 4 left, 5 dragged, 6 erase.
    void moveSelection(int mode);
    void nudge(int dx, int dy);
    void stamp(const QString& text, const QFont& font);
    void drop();
    void cancel();

    /// The canvas with its frames on it.
    [[nodiscard]] Pixels seen() const;
    /// What would be saved.
    [[nodiscard]] Pixels page() const;

    struct Box
    {
        int x1, y1, x2, y2;
        bool operator==(const Box&) const = default;
    };

    int pageW, pageH, canvasRim, pageRim;
    Pixels canvas;  ///< without frames
    Pixels picture; ///< what blocks are cut from: smaller than the canvas after a small paste
    Pixels saved;
    Pixels undo;
    std::vector<Box> frames;
    Box selection{0, 0, 0, 0};
    Box drawn{0, 0, 0, 0}; ///< the selection's frame as on the canvas
    Box moving{0, 0, 0, 0};
    int grabX = 0, grabY = 0;
    enum class Mouse
    {
        Idle,
        Drawing,
        Grabbed,
        Dragging
    } mouse = Mouse::Idle;
    bool shown = false, fresh = false, controls = false;
    int hMax = 0, vMax = 0, h = 0, v = 0, left = 0, top = 0;
    bool hBar = false, vBar = false;

private:
    void bars();
    void unframe(const Box& box);
    void endMouse();
};

} // namespace varnholt::test
