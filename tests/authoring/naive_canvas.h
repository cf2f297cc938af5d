#pragma once

#include <QFontMetricsF>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace varnholt::test {

inline QImage blank(int w, int h)
{
    QImage image(w, h, QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

/// Takes w x h pixels of another picture, where both have them; what is transparent there
/// is white.
inline void copy(QImage& to, int toX, int toY, const QImage& from, int fromX, int fromY, int w,
                 int h)
{
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            if (from.valid(fromX + x, fromY + y) && to.valid(toX + x, toY + y)) {
                const QRgb pixel = from.pixel(fromX + x, fromY + y);
                to.setPixel(toX + x, toY + y, qAlpha(pixel) == 0 ? 0xFFFFFFFF : pixel);
            }
        }
    }
}

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
        , canvas(blank(pageW, pageH))
        , undo(blank(pageW, pageH))
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
            picture = blank(bitmap.width(), bitmap.height());
            copy(picture, 0, 0, bitmap, 0, 0, bitmap.width(), bitmap.height());
            canvas = blank(std::max(picture.width(), across.page - rim),
                           std::max(picture.height(), along.page - rim));
            copy(canvas, 0, 0, picture, 0, 0, picture.width(), picture.height());
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
                             std::min(canvas.width(), box.x2), std::min(canvas.height(), box.y2)};
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
        canvas = blank(pageW, pageH);
        copy(canvas, selection.x1, selection.y1, picture, old.x1, old.y1, old.w(), old.h());
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
            x += std::min(100, canvas.width() - old.x2);
        } else if (mode == 3) {
            y += std::min(100, canvas.height() - old.y2);
        } else if (mode == 4) {
            x = x < 100 ? 0 : x - 100;
        } else if (mode == 5) {
            x = std::min(std::max(moving.x1, 0), canvas.width() + rim - old.w());
            y = std::min(std::max(moving.y1, 0), canvas.height() + rim - old.h());
        }
        const QImage white = blank(old.w(), old.h());
        QImage block = white;
        copy(block, 0, 0, picture, old.x1, old.y1, old.w(), old.h());
        if (fresh || mode == 6) {
            fresh = false;
            copy(canvas, old.x1, old.y1, white, 0, 0, old.w(), old.h());
            copy(saved, old.x1, old.y1, white, 0, 0, old.w(), old.h());
        } else {
            copy(canvas, old.x1, old.y1, saved, old.x1, old.y1, old.w(), old.h());
        }
        if (mode != 6) {
            copy(canvas, x, y, block, 0, 0, old.w(), old.h());
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
        QPainter painter(&canvas);
        painter.setFont(font);
        const double baseline = selection.y1 + QFontMetricsF(font, &canvas).ascent();
        painter.drawText(QPointF(selection.x1, baseline), text);
        painter.end();
        saved = picture = canvas;
    }

    /// The canvas with its frames on it.
    [[nodiscard]] QImage seen() const
    {
        QImage result = canvas;
        if (shown || mouse == Mouse::Drawing) {
            invert(result, drawn.ordered());
        }
        if (mouse == Mouse::Dragging) {
            invert(result, moving.ordered());
        }
        return result;
    }

    /// What would be saved.
    [[nodiscard]] QImage page() const
    {
        QImage result = blank(pageW, pageH);
        copy(result, 0, 0, picture, 0, 0, pageW, pageH);
        return result;
    }

    int pageW, pageH;
    int rim; ///< outer size of the canvas less its inner size
    Bar across, along;
    QImage canvas;  ///< without frames
    QImage picture; ///< what blocks are cut from: smaller than the canvas after a small paste
    QImage saved;
    QImage undo;
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
        across.update(canvas.width() + rim);
        along.update(canvas.height() + rim);
    }

    static void invert(QImage& image, const Box& box)
    {
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const bool border = x == box.x1 || x == box.x2 || y == box.y1 || y == box.y2;
                if (box.has(x, y) && border && (box.w() != 0 || box.h() != 0)) {
                    image.setPixel(x, y, image.pixel(x, y) ^ 0xFFFFFF);
                }
            }
        }
    }
};

} // namespace varnholt::test
