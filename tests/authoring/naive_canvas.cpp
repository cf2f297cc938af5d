#include "authoring/naive_canvas.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace varnholt::test {

namespace {

/// Halves to the even neighbour.
int whole(double value)
{
    const double below = std::floor(value);
    const double part = value - below;
    const bool up = part > 0.5 || (part == 0.5 && std::fmod(below, 2.0) != 0);
    return static_cast<int>(below) + (up ? 1 : 0);
}

void copy(const Pixels& from, int fx, int fy, int w, int h, Pixels& to, int tx, int ty)
{
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            if (from.has(fx + x, fy + y) && to.has(tx + x, ty + y)) {
                to.at(tx + x, ty + y) = from.at(fx + x, fy + y);
            }
        }
    }
}

void whiten(Pixels& pixels, int x1, int y1, int x2, int y2)
{
    for (int y = y1; y < y2; ++y) {
        for (int x = x1; x < x2; ++x) {
            if (pixels.has(x, y)) {
                pixels.at(x, y) = 0xFFFFFF;
            }
        }
    }
}

} // namespace

Pixels::Pixels(const QImage& image)
    : Pixels(image.width(), image.height())
{
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            at(x, y) = image.pixel(x, y) & 0xFFFFFF;
        }
    }
}

NaiveCanvas::NaiveCanvas(int pageWidth, int pageHeight, int canvasBorder, int pageBorder)
    : pageW(pageWidth)
    , pageH(pageHeight)
    , canvasRim(2 * canvasBorder)
    , pageRim(2 * pageBorder)
    , canvas(pageWidth, pageHeight)
    , undo(pageWidth, pageHeight)
{}

void NaiveCanvas::unframe(const Box& box)
{
    const auto found = std::find(frames.rbegin(), frames.rend(), box);
    if (found != frames.rend()) {
        frames.erase(std::next(found).base());
    }
}

void NaiveCanvas::endMouse()
{
    if (mouse == Mouse::Dragging) {
        unframe(moving);
    } else if (mouse == Mouse::Drawing) {
        unframe(drawn);
    }
    mouse = Mouse::Idle;
}

void NaiveCanvas::drop()
{
    endMouse();
    if (shown) {
        unframe(drawn);
    }
    shown = false;
    controls = false;
}

void NaiveCanvas::cancel()
{
    controls = controls && mouse != Mouse::Drawing;
    endMouse();
}

void NaiveCanvas::bars()
{
    left = top = 0;
    hBar = canvas.width + canvasRim > pageW + pageRim;
    vBar = canvas.height + canvasRim > pageH + pageRim;
    if (hBar) {
        h = 0;
        hMax = canvas.width + canvasRim - pageW - pageRim;
    }
    if (vBar) {
        v = 0;
        vMax = canvas.height + canvasRim - pageH - pageRim;
    }
}

void NaiveCanvas::paste(const QImage& bitmap)
{
    drop();
    if (bitmap.isNull()) {
        return;
    }
    h = v = 0;
    picture = Pixels(bitmap);
    canvas = Pixels(std::max(bitmap.width(), pageW + pageRim - canvasRim),
                    std::max(bitmap.height(), pageH + pageRim - canvasRim));
    copy(picture, 0, 0, picture.width, picture.height, canvas, 0, 0);
    saved = canvas;
    bars();
}

void NaiveCanvas::down(double x, double y)
{
    endMouse();
    if (shown && x >= selection.x1 && x <= selection.x2 && y >= selection.y1 && y <= selection.y2) {
        grabX = whole(std::fabs(selection.x1 - x));
        grabY = whole(std::fabs(selection.y1 - y));
        moving.x1 = whole(x - grabX);
        moving.y1 = whole(y - grabY);
        moving.x2 = moving.x1 + selection.x2 - selection.x1;
        moving.y2 = moving.y1 + selection.y2 - selection.y1;
        mouse = Mouse::Grabbed;
        return;
    }
    drop();
    controls = true;
    mouse = Mouse::Drawing;
    selection = {whole(x), whole(y), whole(x), whole(y)};
    drawn = selection;
    frames.push_back(drawn);
    saved = canvas;
}

void NaiveCanvas::move(double x, double y)
{
    if (mouse == Mouse::Grabbed || mouse == Mouse::Dragging) {
        if (mouse == Mouse::Dragging) {
            unframe(moving);
        }
        mouse = Mouse::Dragging;
        moving.x1 = whole(x - grabX);
        moving.y1 = whole(y - grabY);
        moving.x2 = moving.x1 + selection.x2 - selection.x1;
        moving.y2 = moving.y1 + selection.y2 - selection.y1;
        frames.push_back(moving);
    } else if (mouse == Mouse::Drawing) {
        unframe(drawn);
        selection.x2 = whole(x);
        selection.y2 = whole(y);
        drawn = selection;
        frames.push_back(drawn);
    }
}

void NaiveCanvas::up()
{
    const Mouse was = mouse;
    if (was == Mouse::Grabbed || was == Mouse::Dragging) {
        endMouse();
        if (moving.x1 == selection.x1 && moving.y1 == selection.y1) {
            drop();
        } else {
            moveSelection(5);
        }
    } else if (was == Mouse::Drawing) {
        mouse = Mouse::Idle;
        fresh = true;
        if (selection.x1 == selection.x2 && selection.y1 == selection.y2) {
            unframe(drawn);
            controls = false;
            return;
        }
        shown = true;
        selection = {std::max(0, std::min(selection.x1, selection.x2)),
                     std::max(0, std::min(selection.y1, selection.y2)),
                     std::min(canvas.width, std::max(selection.x1, selection.x2)),
                     std::min(canvas.height, std::max(selection.y1, selection.y2))};
    }
}

void NaiveCanvas::crop()
{
    drop();
    selection = {std::min(selection.x1, selection.x2), std::min(selection.y1, selection.y2),
                 std::max(selection.x1, selection.x2), std::max(selection.y1, selection.y2)};
    const int w = selection.x2 - selection.x1;
    const int height = selection.y2 - selection.y1;
    if (w == 0 || height == 0) {
        return;
    }
    undo = canvas;
    const int x = whole((pageW - w) / 2.0);
    const int y = whole((pageH - height) / 2.0);
    canvas = Pixels(pageW, pageH);
    copy(picture, selection.x1, selection.y1, w, height, canvas, x, y);
    picture = canvas;
    saved = canvas;
    h = v = 0;
    bars();
    selection = {x, y, x + w, y + height};
    drawn = selection;
    frames = {drawn};
    shown = true;
    controls = true;
    fresh = true;
}

void NaiveCanvas::moveSelection(int mode)
{
    endMouse();
    if (shown) {
        unframe(drawn);
        shown = false;
    }
    const Box old = selection;
    const int w = old.x2 - old.x1;
    const int height = old.y2 - old.y1;
    if (w <= 0 || height <= 0) {
        return;
    }
    int x = old.x1;
    int y = old.y1;
    if (mode == 1) {
        y = old.y1 < 100 ? 0 : old.y1 - 100;
    } else if (mode == 2) {
        x += std::min(100, canvas.width - old.x2);
    } else if (mode == 3) {
        y += std::min(100, canvas.height - old.y2);
    } else if (mode == 4) {
        x = old.x1 < 100 ? 0 : old.x1 - 100;
    } else if (mode == 5) {
        x = std::max(moving.x1, 0);
        y = std::max(moving.y1, 0);
        x = std::min(x, canvas.width + canvasRim - w);
        y = std::min(y, canvas.height + canvasRim - height);
    }
    Pixels block(w, height);
    copy(picture, old.x1, old.y1, w, height, block, 0, 0);
    if (fresh || mode == 6) {
        fresh = false;
        whiten(canvas, old.x1, old.y1, old.x2, old.y2);
        whiten(saved, old.x1, old.y1, old.x2, old.y2);
    } else {
        copy(saved, old.x1, old.y1, w, height, canvas, old.x1, old.y1);
    }
    if (mode != 6) {
        copy(block, 0, 0, w, height, canvas, x, y);
    }
    picture = canvas;
    selection = {x, y, x + w, y + height};
    if (mode == 1) {
        v = std::min(v, y);
    } else if (mode == 2) {
        h = std::max(h, selection.x2 - pageW - pageRim);
    } else if (mode == 3) {
        v = std::max(v, selection.y2 - pageH - pageRim);
    } else if (mode == 4) {
        h = std::min(h, x);
    }
    left = -h;
    top = -v;
    shown = true;
    drawn = selection;
    frames.push_back(drawn);
}

void NaiveCanvas::nudge(int dx, int dy)
{
    if (shown && mouse == Mouse::Idle) {
        moving.x1 = selection.x1 + dx;
        moving.y1 = selection.y1 + dy;
        moveSelection(5);
    }
}

void NaiveCanvas::stamp(const QString& text, const QFont& font)
{
    drop();
    QImage image(canvas.width, canvas.height, QImage::Format_RGB32);
    for (int y = 0; y < canvas.height; ++y) {
        for (int x = 0; x < canvas.width; ++x) {
            image.setPixel(x, y, canvas.at(x, y));
        }
    }
    QPainter painter(&image);
    painter.setFont(font);
    painter.drawText(QPointF(selection.x1, selection.y1 + QFontMetricsF(font, &image).ascent()),
                     text);
    painter.end();
    canvas = Pixels(image);
    picture = canvas;
    saved = canvas;
}

Pixels NaiveCanvas::seen() const
{
    Pixels result = canvas;
    for (const Box& box : frames) {
        const int x1 = std::min(box.x1, box.x2);
        const int x2 = std::max(box.x1, box.x2);
        const int y1 = std::min(box.y1, box.y2);
        const int y2 = std::max(box.y1, box.y2);
        if (x1 == x2 && y1 == y2) {
            continue;
        }
        for (int y = 0; y < result.height; ++y) {
            for (int x = 0; x < result.width; ++x) {
                const bool inside = x >= x1 && x <= x2 && y >= y1 && y <= y2;
                if (inside && (x == x1 || x == x2 || y == y1 || y == y2)) {
                    result.at(x, y) ^= 0xFFFFFF;
                }
            }
        }
    }
    return result;
}

Pixels NaiveCanvas::page() const
{
    Pixels result(pageW, pageH);
    copy(picture, 0, 0, pageW, pageH, result, 0, 0);
    return result;
}

} // namespace varnholt::test
