#include "authoring/PictureCanvas.h"

#include <QFontMetricsF>
#include <QPainter>

#include <gtest/gtest.h>

#include <random>

namespace varnholt::test {

using namespace Qt::Literals::StringLiterals;

namespace {

QImage blank(int w, int h)
{
    QImage image(w, h, QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

/// Takes w x h pixels of another picture, where both have them; what is transparent there
/// is white.
void copy(QImage& to, int toX, int toY, const QImage& from, int fromX, int fromY, int w, int h)
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

void copy(QImage& to, const QImage& from)
{
    copy(to, 0, 0, from, 0, 0, from.width(), from.height());
}

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

/// One direction of scrolling: value, maximum and where the canvas is put.
struct Bar
{
    int page; ///< outer size
    bool visible = false;
    int value = 0, maximum = 0, edge = 0;

    void scroll(int to)
    {
        value = to;
        edge = -to;
    }
    void resized(int canvas)
    {
        scroll(0);
        visible = canvas > page;
        maximum = visible ? canvas - page : maximum;
    }
    void show(int first, int last)
    {
        scroll(last > value + page ? last - page : value);
        scroll(first < value ? std::max(first, 0) : value);
    }
};

enum class Mouse
{
    Idle,
    Drawing,
    Grabbed,
    Dragging
};

/// The canvas once more, as simple as can be: frames are never drawn into the pixels, what the
/// user sees is put together when asked for. All pixels at all times hold what is fixed;
/// copying is done pixel by pixel.
struct NaiveCanvas
{
    NaiveCanvas(QSize page, int canvasBorder, int pageBorder)
        : pageW(page.width())
        , pageH(page.height())
        , rim(2 * canvasBorder)
        , across{pageW + 2 * pageBorder}
        , along{pageH + 2 * pageBorder}
        , canvas(blank(pageW, pageH))
        , undo(canvas)
    {}

    void DropSelection()
    {
        mouse = Mouse::Idle;
        shown = controls = false;
    }

    void CancelDrag()
    {
        controls = controls && mouse != Mouse::Drawing;
        mouse = Mouse::Idle;
    }

    void paste(const QImage& bitmap)
    {
        DropSelection();
        if (!bitmap.isNull()) {
            picture = blank(bitmap.width(), bitmap.height());
            copy(picture, bitmap);
            canvas = blank(std::max(picture.width(), across.page - rim),
                           std::max(picture.height(), along.page - rim));
            copy(canvas, picture);
            saved = canvas;
            resized();
        }
    }

    void MouseDown(double x, double y)
    {
        if (shown && selection.has(x, y)) {
            mouse = Mouse::Grabbed;
            grabX = whole(std::fabs(selection.x1 - x));
            grabY = whole(std::fabs(selection.y1 - y));
            follow(x, y);
            return;
        }
        DropSelection();
        controls = true;
        mouse = Mouse::Drawing;
        drawn = selection = {whole(x), whole(y), whole(x), whole(y)};
        saved = canvas;
    }

    void MouseMove(double x, double y)
    {
        if (mouse == Mouse::Drawing) {
            drawn = selection = {selection.x1, selection.y1, whole(x), whole(y)};
        } else if (mouse != Mouse::Idle) {
            mouse = Mouse::Dragging;
            follow(x, y);
        }
    }

    void MouseUp()
    {
        const Mouse was = std::exchange(mouse, Mouse::Idle);
        if (was == Mouse::Drawing) {
            fresh = true;
            shown = controls = selection.w() != 0 || selection.h() != 0;
            if (shown) {
                const Box box = selection.ordered();
                selection = {std::max(0, box.x1), std::max(0, box.y1),
                             std::min(canvas.width(), box.x2), std::min(canvas.height(), box.y2)};
            }
        } else if (was != Mouse::Idle) {
            if (moving.x1 == selection.x1 && moving.y1 == selection.y1) {
                DropSelection();
            } else {
                moveSelection(5);
            }
        }
    }

    void SelectAll()
    {
        DropSelection();
        drawn = {0, 0, canvas.width() - 1, canvas.height() - 1};
        selection = {0, 0, canvas.width(), canvas.height()};
        saved = canvas;
        shown = controls = fresh = true;
    }

    void Crop()
    {
        DropSelection();
        const Box old = selection = selection.ordered();
        if (old.w() == 0 || old.h() == 0) {
            return;
        }
        undo = canvas;
        drawn = selection = old.at(whole((pageW - old.w()) / 2.0), whole((pageH - old.h()) / 2.0));
        canvas = blank(pageW, pageH);
        copy(canvas, selection.x1, selection.y1, picture, old.x1, old.y1, old.w(), old.h());
        saved = picture = canvas;
        resized();
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
        const int x = mode == 2   ? old.x1 + std::min(100, canvas.width() - old.x2)
                      : mode == 4 ? (old.x1 < 100 ? 0 : old.x1 - 100)
                      : mode == 5 ? std::min(std::max(moving.x1, 0), canvas.width() + rim - old.w())
                                  : old.x1;
        const int y = mode == 3   ? old.y1 + std::min(100, canvas.height() - old.y2)
                      : mode == 1 ? (old.y1 < 100 ? 0 : old.y1 - 100)
                      : mode == 5
                          ? std::min(std::max(moving.y1, 0), canvas.height() + rim - old.h())
                          : old.y1;
        const QImage white = blank(old.w(), old.h());
        QImage block = white;
        copy(block, 0, 0, picture, old.x1, old.y1, old.w(), old.h());
        if (fresh || mode == 6) {
            fresh = false;
            copy(saved, old.x1, old.y1, white, 0, 0, old.w(), old.h());
        }
        copy(canvas, old.x1, old.y1, saved, old.x1, old.y1, old.w(), old.h());
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

    void Nudge(int dx, int dy)
    {
        if (shown && mouse == Mouse::Idle) {
            moving = selection.at(selection.x1 + dx, selection.y1 + dy);
            moveSelection(5);
            across.show(selection.x1, selection.x2);
            along.show(selection.y1, selection.y2);
        }
    }

    void stamp(const QString& text, const QFont& font)
    {
        DropSelection();
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
        copy(result, picture);
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
    Mouse mouse = Mouse::Idle;
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
        across.resized(canvas.width() + rim);
        along.resized(canvas.height() + rim);
    }

    static void invert(QImage& image, const Box& box)
    {
        for (int y = std::max(box.y1, 0); y <= std::min(box.y2, image.height() - 1); ++y) {
            for (int x = std::max(box.x1, 0); x <= std::min(box.x2, image.width() - 1); ++x) {
                const bool border = x == box.x1 || x == box.x2 || y == box.y1 || y == box.y2;
                if (border && (box.w() != 0 || box.h() != 0)) {
                    image.setPixel(x, y, image.pixel(x, y) ^ 0xFFFFFF);
                }
            }
        }
    }
};

/// Somebody who does anything in any order to both canvases, compared after every step.
class RandomHands
{
public:
    explicit RandomHands(unsigned seed)
        : random_(seed)
        , page_(between(8, 40), between(8, 30))
        , canvasBorder_(oneIn(4) ? 2 : 0)
        , pageBorder_(oneIn(4) ? 1 : 0)
        , canvas_(page_, canvasBorder_, pageBorder_)
        , naive_(page_, canvasBorder_, pageBorder_)
    {}

    void run(int steps)
    {
        for (int i = 0; i < steps && !testing::Test::HasFailure(); ++i) {
            const int event = between(0, 99);
            SCOPED_TRACE("step " + std::to_string(i) + " event " + std::to_string(event));
            step(event);
            compare();
        }
    }

private:
    int between(int low, int high)
    {
        return std::uniform_int_distribution<int>(low, high)(random_);
    }
    bool oneIn(int n) { return between(1, n) == 1; }

    /// On the canvas, at and past its edges; whole, half and odd fractions.
    double position(int size)
    {
        static constexpr double parts[] = {0, 0, 0, 0.5, 0.25, -0.5};
        const int reach = oneIn(10) ? 60 : 4;
        return between(-reach, size + reach) + parts[between(0, 5)];
    }

    /// Now and then long enough for moves by 100; opaque, or with holes and meant for a
    /// sharp screen.
    QImage picture()
    {
        const bool holes = oneIn(4);
        QImage image(between(1, oneIn(5) ? 260 : 60), between(1, oneIn(5) ? 260 : 50),
                     holes ? QImage::Format_ARGB32 : QImage::Format_RGB32);
        for (int i = 0; i < image.width() * image.height(); ++i) {
            const QRgb colour = static_cast<QRgb>(random_()) | 0xFF000000;
            image.setPixel(i % image.width(), i / image.width(),
                           holes && colour % 3 == 0 ? 0 : colour);
        }
        image.setDevicePixelRatio(holes ? 2 : 1);
        return image;
    }

    template <typename Act>
    void both(Act act)
    {
        act(canvas_);
        act(naive_);
    }

    void step(int event)
    {
        const int width = canvas_.picQuestion.innerWidth();
        const int height = canvas_.picQuestion.innerHeight();
        double x = position(width);
        double y = position(height);
        if (event < 4) {
            const QImage image = event == 0 ? QImage() : picture();
            EXPECT_NE(canvas_.Paste(image), image.isNull());
            naive_.paste(image);
        } else if (event < 24) {
            // A press inside the canvas, as a window reports it; often on the selection.
            const bool aimed = canvas_.SelectionShown && !oneIn(3);
            x = aimed ? between(canvas_.SelX1, std::max(canvas_.SelX1, canvas_.SelX2))
                      : std::clamp<double>(x, 0, width);
            y = aimed ? between(canvas_.SelY1, std::max(canvas_.SelY1, canvas_.SelY2))
                      : std::clamp<double>(y, 0, height);
            press_ = {x, y};
            both([&](auto& canvas) { canvas.MouseDown(x, y); });
        } else if (event < 55) {
            const QPointF to = oneIn(6) ? press_ : QPointF(x, y);
            both([&](auto& canvas) { canvas.MouseMove(to.x(), to.y()); });
        } else if (event < 75) {
            both([](auto& canvas) { canvas.MouseUp(); });
        } else if (event < 78) {
            both([](auto& canvas) { canvas.Crop(); });
        } else if (event < 79) {
            both([](auto& canvas) { canvas.SelectAll(); });
        } else if (event < 91) {
            const int mode = event < 89 ? 1 + event % 5 : 6;
            canvas_.MoveSelection(static_cast<SelectionMove>(mode));
            naive_.moveSelection(mode);
        } else if (event < 95) {
            const int dx = between(-10, 10);
            both([&](auto& canvas) { canvas.Nudge(dx, event - 92); });
        } else if (event == 95) {
            canvas_.font = {u"Verdana"_s, 10 + 2 * between(0, 5), oneIn(2)};
            canvas_.StampText(u"ab"_s);
            naive_.stamp(u"ab"_s, stampFont(canvas_.font));
        } else if (event == 96) {
            both([](auto& canvas) { canvas.DropSelection(); });
        } else if (event == 97) {
            both([](auto& canvas) { canvas.CancelDrag(); });
        } else {
            naive_.across.scroll(between(0, naive_.across.maximum));
            canvas_.setHScroll(naive_.across.value);
            naive_.along.scroll(between(0, naive_.along.maximum));
            canvas_.setVScroll(naive_.along.value);
        }
    }

    void compare()
    {
        EXPECT_EQ(canvas_.picQuestion.image(), naive_.seen());
        EXPECT_EQ(canvas_.picQuestion.picture(), naive_.picture);
        EXPECT_EQ(canvas_.picSaved.picture(), naive_.saved);
        EXPECT_EQ(canvas_.picUndo.image(), naive_.undo);
        EXPECT_EQ(canvas_.renderPage(), naive_.page());
        EXPECT_EQ(canvas_.picCropped.image(), blank(naive_.pageW, naive_.pageH));
        EXPECT_FALSE(canvas_.picCropped.hasPicture() || canvas_.picTemp.hasPicture());

        const auto& [x1, y1, x2, y2] = naive_.selection;
        const Bar& h = naive_.across;
        const Bar& v = naive_.along;
        EXPECT_EQ(
            (std::vector<int>{canvas_.SelX1, canvas_.SelY1, canvas_.SelX2, canvas_.SelY2,
                              canvas_.SelectionShown, canvas_.FreshSelection,
                              canvas_.controlsShown(), canvas_.Drawing, canvas_.isDragging(),
                              canvas_.HScroll().visible, canvas_.HScroll().value,
                              canvas_.HScroll().maximum, canvas_.left(), canvas_.VScroll().visible,
                              canvas_.VScroll().value, canvas_.VScroll().maximum, canvas_.top()}),
            (std::vector<int>{x1, y1, x2, y2, naive_.shown, naive_.fresh, naive_.controls,
                              naive_.mouse == Mouse::Drawing, naive_.mouse != Mouse::Idle,
                              h.visible, h.value, h.maximum, h.edge, v.visible, v.value, v.maximum,
                              v.edge}));
    }

    std::mt19937 random_;
    QSize page_;
    int canvasBorder_;
    int pageBorder_;
    PictureCanvas canvas_;
    NaiveCanvas naive_;
    QPointF press_;
};

} // namespace

TEST(CanvasModel, AgreesWithTheNaiveCanvasAfterEveryEvent)
{
    const QByteArray wanted = qgetenv("VARNHOLT_TEST_SEEDS");
    const unsigned seeds = wanted.isEmpty() ? 200 : wanted.toUInt();
    for (unsigned seed = 0; seed < seeds && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomHands(seed).run(120);
    }
}

} // namespace varnholt::test
