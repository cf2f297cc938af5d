#pragma once

#include <QFontMetricsF>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <vector>

namespace varnholt::test {

/// Pixels as numbers 0xRRGGBB, asked and set one at a time; outside there is nothing.
struct Pixels
{
    Pixels() = default;
    Pixels(int w, int h)
        : width(w)
        , height(h)
        , cells(static_cast<std::size_t>(w * h), 0xFFFFFF)
    {}
    /// What is transparent is white.
    explicit Pixels(const QImage& image)
        : Pixels(image.width(), image.height())
    {
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const QRgb pixel = image.pixel(x, y);
                *at(x, y) = qAlpha(pixel) == 0 ? 0xFFFFFF : pixel & 0xFFFFFF;
            }
        }
    }

    [[nodiscard]] const unsigned* at(int x, int y) const
    {
        const bool inside = x >= 0 && y >= 0 && x < width && y < height;
        return inside ? &cells[static_cast<std::size_t>(y * width + x)] : nullptr;
    }
    unsigned* at(int x, int y) { return const_cast<unsigned*>(std::as_const(*this).at(x, y)); }

    /// Takes w x h pixels of another, where both have them.
    void copy(const Pixels& from, int fromX, int fromY, int w, int h, int toX, int toY)
    {
        for (int y = 0; y < h; ++y) {
            for (int x = 0; x < w; ++x) {
                const unsigned* source = from.at(fromX + x, fromY + y);
                unsigned* target = at(toX + x, toY + y);
                if (source && target) {
                    *target = *source;
                }
            }
        }
    }

    bool operator==(const Pixels&) const = default;

    int width = 0;
    int height = 0;
    std::vector<unsigned> cells;
};

/// The canvas once more, as simple as can be: frames are never drawn into the pixels, what the
/// user sees is put together when asked for. All pixels at all times hold what is fixed;
/// copying is done pixel by pixel.
struct NaiveCanvas
{
    struct Box
    {
        int x1 = 0, y1 = 0, x2 = 0, y2 = 0;

        [[nodiscard]] int w() const { return x2 - x1; }
        [[nodiscard]] int h() const { return y2 - y1; }
        [[nodiscard]] Box at(int x, int y) const { return {x, y, x + w(), y + h()}; }
        [[nodiscard]] Box ordered() const
        {
            return {std::min(x1, x2), std::min(y1, y2), std::max(x1, x2), std::max(y1, y2)};
        }
        [[nodiscard]] bool has(double x, double y) const
        {
            return x >= x1 && x <= x2 && y >= y1 && y <= y2;
        }
    };

    struct Bar
    {
        int page; ///< outer size
        bool visible = false;
        int value = 0, maximum = 0;
        int edge = 0; ///< where the canvas is put

        void scroll(int to)
        {
            value = to;
            edge = -to;
        }
        void update(int canvas)
        {
            edge = 0;
            visible = canvas > page;
            if (visible) {
                value = 0;
                maximum = canvas - page;
            }
        }
    };

    NaiveCanvas(QSize page, int canvasBorder, int pageBorder)
        : pageW(page.width())
        , pageH(page.height())
        , rim(2 * canvasBorder)
        , across{pageW + 2 * pageBorder}
        , along{pageH + 2 * pageBorder}
        , canvas(pageW, pageH)
        , undo(pageW, pageH)
    {}

    void drop()
    {
        mouse = Mouse::Idle;
        shown = false;
        controls = false;
    }

    void cancel()
    {
        controls = controls && mouse != Mouse::Drawing;
        mouse = Mouse::Idle;
    }

    void paste(const QImage& bitmap)
    {
        drop();
        if (!bitmap.isNull()) {
            picture = Pixels(bitmap);
            canvas = Pixels(std::max(picture.width, across.page - rim),
                            std::max(picture.height, along.page - rim));
            canvas.copy(picture, 0, 0, picture.width, picture.height, 0, 0);
            saved = canvas;
            resized();
        }
    }

    void down(double x, double y)
    {
        if (shown && selection.has(x, y)) {
            mouse = Mouse::Grabbed;
            grabX = whole(std::fabs(selection.x1 - x));
            grabY = whole(std::fabs(selection.y1 - y));
            follow(x, y);
            return;
        }
        drop();
        controls = true;
        mouse = Mouse::Drawing;
        drawn = selection = {whole(x), whole(y), whole(x), whole(y)};
        saved = canvas;
    }

    void move(double x, double y)
    {
        if (mouse == Mouse::Drawing) {
            selection.x2 = whole(x);
            selection.y2 = whole(y);
            drawn = selection;
        } else if (mouse != Mouse::Idle) {
            mouse = Mouse::Dragging;
            follow(x, y);
        }
    }

    void up()
    {
        const Mouse was = std::exchange(mouse, Mouse::Idle);
        if (was == Mouse::Grabbed || was == Mouse::Dragging) {
            if (moving.x1 == selection.x1 && moving.y1 == selection.y1) {
                drop();
            } else {
                moveSelection(5);
            }
        } else if (was == Mouse::Drawing) {
            fresh = true;
            shown = controls = selection.w() != 0 || selection.h() != 0;
            if (shown) {
                const Box box = selection.ordered();
                selection = {std::max(0, box.x1), std::max(0, box.y1),
                             std::min(canvas.width, box.x2), std::min(canvas.height, box.y2)};
            }
        }
    }

    void crop()
    {
        drop();
        const Box old = selection = selection.ordered();
        if (old.w() == 0 || old.h() == 0) {
            return;
        }
        undo = canvas;
        selection = old.at(whole((pageW - old.w()) / 2.0), whole((pageH - old.h()) / 2.0));
        canvas = Pixels(pageW, pageH);
        canvas.copy(picture, old.x1, old.y1, old.w(), old.h(), selection.x1, selection.y1);
        saved = picture = canvas;
        resized();
        drawn = selection;
        shown = controls = fresh = true;
    }

    /// 1 up, 2 right, 3 down, 4 left, 5 dragged, 6 erase.
    void moveSelection(int mode)
    {
        mouse = Mouse::Idle;
        shown = false;
        const Box old = selection;
        if (old.w() <= 0 || old.h() <= 0) {
            return;
        }
        int x = old.x1;
        int y = old.y1;
        if (mode == 1) {
            y = y < 100 ? 0 : y - 100;
        } else if (mode == 2) {
            x += std::min(100, canvas.width - old.x2);
        } else if (mode == 3) {
            y += std::min(100, canvas.height - old.y2);
        } else if (mode == 4) {
            x = x < 100 ? 0 : x - 100;
        } else if (mode == 5) {
            x = std::min(std::max(moving.x1, 0), canvas.width + rim - old.w());
            y = std::min(std::max(moving.y1, 0), canvas.height + rim - old.h());
        }
        Pixels block(old.w(), old.h());
        const Pixels white = block;
        block.copy(picture, old.x1, old.y1, old.w(), old.h(), 0, 0);
        if (fresh || mode == 6) {
            fresh = false;
            canvas.copy(white, 0, 0, old.w(), old.h(), old.x1, old.y1);
            saved.copy(white, 0, 0, old.w(), old.h(), old.x1, old.y1);
        } else {
            canvas.copy(saved, old.x1, old.y1, old.w(), old.h(), old.x1, old.y1);
        }
        if (mode != 6) {
            canvas.copy(block, 0, 0, old.w(), old.h(), x, y);
        }
        picture = canvas;
        drawn = selection = old.at(x, y);
        shown = true;
        const int h = across.value;
        const int v = along.value;
        across.scroll(mode == 2   ? std::max(h, selection.x2 - across.page)
                      : mode == 4 ? std::min(h, x)
                                  : h);
        along.scroll(mode == 3   ? std::max(v, selection.y2 - along.page)
                     : mode == 1 ? std::min(v, y)
                                 : v);
    }

    void nudge(int dx, int dy)
    {
        if (shown && mouse == Mouse::Idle) {
            moving.x1 = selection.x1 + dx;
            moving.y1 = selection.y1 + dy;
            moveSelection(5);
        }
    }

    void stamp(const QString& text, const QFont& font)
    {
        drop();
        QImage image(reinterpret_cast<uchar*>(canvas.cells.data()), canvas.width, canvas.height,
                     4 * canvas.width, QImage::Format_RGB32);
        QPainter painter(&image);
        painter.setFont(font);
        const double baseline = selection.y1 + QFontMetricsF(font, &image).ascent();
        painter.drawText(QPointF(selection.x1, baseline), text);
        painter.end();
        saved = picture = canvas = Pixels(image);
    }

    /// The canvas with its frames on it.
    [[nodiscard]] Pixels seen() const
    {
        Pixels result = canvas;
        if (shown || mouse == Mouse::Drawing) {
            invert(result, drawn.ordered());
        }
        if (mouse == Mouse::Dragging) {
            invert(result, moving.ordered());
        }
        return result;
    }

    /// What would be saved.
    [[nodiscard]] Pixels page() const
    {
        Pixels result(pageW, pageH);
        result.copy(picture, 0, 0, pageW, pageH, 0, 0);
        return result;
    }

    int pageW, pageH;
    int rim; ///< outer size of the canvas less its inner size
    Bar across, along;
    Pixels canvas;  ///< without frames
    Pixels picture; ///< what blocks are cut from: smaller than the canvas after a small paste
    Pixels saved;
    Pixels undo;
    Box selection;
    Box drawn; ///< the selection's frame as on the canvas
    Box moving;
    int grabX = 0, grabY = 0;
    enum class Mouse
    {
        Idle,
        Drawing,
        Grabbed,
        Dragging
    } mouse = Mouse::Idle;
    bool shown = false, fresh = false, controls = false;

private:
    /// Halves to the even neighbour.
    static int whole(double value)
    {
        const double below = std::floor(value);
        const double part = value - below;
        const bool up = part > 0.5 || (part == 0.5 && std::fmod(below, 2.0) != 0);
        return static_cast<int>(below) + (up ? 1 : 0);
    }

    void follow(double x, double y) { moving = selection.at(whole(x - grabX), whole(y - grabY)); }

    void resized()
    {
        across.scroll(0);
        along.scroll(0);
        across.update(canvas.width + rim);
        along.update(canvas.height + rim);
    }

    static void invert(Pixels& pixels, const Box& box)
    {
        for (int y = 0; y < pixels.height; ++y) {
            for (int x = 0; x < pixels.width; ++x) {
                const bool border = x == box.x1 || x == box.x2 || y == box.y1 || y == box.y2;
                if (box.has(x, y) && border && (box.w() != 0 || box.h() != 0)) {
                    *pixels.at(x, y) ^= 0xFFFFFF;
                }
            }
        }
    }
};

} // namespace varnholt::test
