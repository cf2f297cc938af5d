// Somebody who does anything in any order to a canvas, by mouse at any zoom, by buttons and keys.
// After every step the canvas must be what the steps so far make of it. VARNHOLT_TEST_SEEDS says
// how many such people there are.

#include "authoring/CanvasView.h"
#include "authoring/PictureCanvas.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QPainter>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <functional>
#include <random>

namespace varnholt::test {

using namespace Qt::Literals::StringLiterals;

namespace {

QImage white(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::white);
    return image;
}

void draw(QImage& to, QPoint at, const QImage& from, QRect part)
{
    const QRect there = part & from.rect();
    if (!there.isEmpty()) {
        QPainter(&to).drawImage(at + there.topLeft() - part.topLeft(), from, there);
    }
}

QImage cut(const QImage& from, QRect part)
{
    QImage block = white(part.size());
    draw(block, {}, from, part);
    return block;
}

class RandomHands
{
public:
    explicit RandomHands(unsigned seed)
        : random_(seed)
        , canvasBorder_(oneIn(4) ? 2 : 0)
        , pageBorder_(oneIn(4) ? 1 : 0)
        , canvas_({between(8, 40), between(8, 30)}, canvasBorder_, pageBorder_)
        , view_(canvas_)
        , image_(canvas_.image())
        , background_(image_)
        , first_(image_)
    {
        const auto watch = [this](auto signal, auto work) {
            QObject::connect(&view_, signal, &view_, work);
        };
        watch(&CanvasView::MouseDown, [this](double X, double Y) { canvas_.MouseDown(X, Y); });
        watch(&CanvasView::HandleDown, [this](int x, int y) { canvas_.HandleDown(x, y); });
        watch(&CanvasView::MouseMove, [this](double X, double Y) { canvas_.MouseMove(X, Y); });
        watch(&CanvasView::MouseUp, [this] { canvas_.MouseUp(); });
    }

    void run(int steps)
    {
        for (int i = 0; i < steps && !testing::Test::HasFailure(); ++i) {
            const int event = between(0, 99);
            SCOPED_TRACE("step " + std::to_string(i) + " event " + std::to_string(event));
            step(event);
            check();
        }
        // All the way back, all the way forward.
        canvas_.CancelDrag();
        const QImage last = canvas_.image();
        while (canvas_.canUndo()) {
            canvas_.Undo();
        }
        EXPECT_EQ(canvas_.image(), first_);
        while (canvas_.canRedo()) {
            canvas_.Redo();
        }
        EXPECT_EQ(canvas_.image(), last);
    }

private:
    int between(int low, int high)
    {
        return std::uniform_int_distribution<int>(low, high)(random_);
    }
    bool oneIn(int n) { return between(1, n) == 1; }

    /// Now and then long enough for moves by 100; with holes at times, meant for a sharp screen.
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

    void mouse(QEvent::Type type, QPoint at)
    {
        const bool up = type == QEvent::MouseButtonRelease;
        QMouseEvent event(type, at, at, type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                          up ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&view_, &event);
    }

    QRect selection() const { return canvas_.state().selection(); }
    QSize page() const { return canvas_.page(); }
    QRect centred(QSize size) const
    {
        const auto half = [](int room) { return static_cast<int>(std::nearbyint(room / 2.0)); };
        return {QPoint(half(page().width() - size.width()), half(page().height() - size.height())),
                size};
    }

    /// What moving the selection to `to` (or blanking it) makes of the image.
    void moved(QRect from, QPoint to, bool fresh, bool erased)
    {
        if (from.width() <= 0 || from.height() <= 0) {
            return;
        }
        const QImage block = cut(image_, from);
        image_ = background_;
        if (fresh || erased) {
            draw(image_, from.topLeft(), white(from.size()), QRect({}, from.size()));
        }
        background_ = image_;
        if (!erased) {
            draw(image_, to, block, block.rect());
        }
        EXPECT_EQ(selection(), QRect(to, from.size()));
    }

    /// A move by button or key, or blanking.
    void move(SelectionMove mode, QPoint to, const std::function<void()>& act)
    {
        canvas_.CancelDrag();
        const CanvasState before = canvas_.state();
        act();
        moved(before.selection(), to, before.FreshSelection, mode == SelectionMove::Erase);
        if (canvas_.state() == before || before.selection().isEmpty()) {
            return;
        }
        const CanvasState& now = canvas_.state();
        const int h = before.HScroll.value;
        const int v = before.VScroll.value;
        const int right = now.SelX2 - page().width() - 2 * pageBorder_;
        const int bottom = now.SelY2 - page().height() - 2 * pageBorder_;
        if (mode != SelectionMove::Dragged) {
            EXPECT_EQ(now.HScroll.value, mode == SelectionMove::Left    ? std::min(h, to.x())
                                         : mode == SelectionMove::Right ? std::max(h, right)
                                                                        : h);
            EXPECT_EQ(now.VScroll.value, mode == SelectionMove::Up     ? std::min(v, to.y())
                                         : mode == SelectionMove::Down ? std::max(v, bottom)
                                                                       : v);
        }
        EXPECT_TRUE(now.SelectionShown);
    }

    QPoint dragged(QPoint to) const
    {
        const QSize room = canvas_.image().size() + QSize(2 * canvasBorder_, 2 * canvasBorder_) -
                           selection().size();
        return {std::min(std::max(to.x(), 0), room.width()),
                std::min(std::max(to.y(), 0), room.height())};
    }

    void button(SelectionMove mode)
    {
        canvas_.CancelDrag();
        const QRect from = selection();
        const QSize room = canvas_.image().size() - from.size();
        QPoint to = from.topLeft();
        switch (mode) {
        case SelectionMove::Up:
            to.setY(std::max(to.y() - 100, 0));
            break;
        case SelectionMove::Left:
            to.setX(std::max(to.x() - 100, 0));
            break;
        case SelectionMove::Right:
            to.setX(std::min(to.x() + 100, room.width()));
            break;
        case SelectionMove::Down:
            to.setY(std::min(to.y() + 100, room.height()));
            break;
        default:
            break;
        }
        move(mode, to, [&] { canvas_.MoveSelection(mode); });
    }

    void release()
    {
        const bool drawing = canvas_.Drawing;
        const bool fresh = canvas_.state().FreshSelection;
        const QRect from = selection();
        const QPoint to(canvas_.MoveX1, canvas_.MoveY1);
        const bool moves = canvas_.Moving && to != from.topLeft();
        const QPoint place = dragged(to);
        mouse(QEvent::MouseButtonRelease, {});
        if (moves) {
            moved(from, place, fresh, false);
        } else if (drawing) {
            background_ = image_;
            const CanvasState& now = canvas_.state();
            const bool point = from.width() == 0 && from.height() == 0;
            EXPECT_TRUE(now.FreshSelection);
            EXPECT_EQ(now.SelectionShown, !point);
            EXPECT_EQ(now.controlsShown, !point);
            EXPECT_TRUE(point || (now.SelX1 >= 0 && now.SelX2 <= image_.width() && now.SelY1 >= 0 &&
                                  now.SelY2 <= image_.height()));
        }
    }

    void step(int event)
    {
        if (event < 4) {
            const QImage bitmap = event == 0 ? QImage() : picture();
            EXPECT_NE(canvas_.Paste(bitmap), bitmap.isNull());
            EXPECT_FALSE(canvas_.state().SelectionShown || canvas_.state().controlsShown);
            if (!bitmap.isNull()) {
                QImage plain = bitmap;
                plain.setDevicePixelRatio(1);
                const int rim = 2 * (pageBorder_ - canvasBorder_);
                image_ = white(plain.size().expandedTo(page() + QSize(rim, rim)));
                draw(image_, {}, plain, plain.rect());
                background_ = image_;
                EXPECT_EQ(canvas_.state().HScroll.maximum * canvas_.state().HScroll.visible,
                          std::max(0, image_.width() - page().width() - rim));
            }
        } else if (event < 24) {
            // A press inside, as a window reports it; often on the selection.
            const double zoom =
                std::array{0.25, 0.74, 1.0, 1.0, 1.5, 8.0}[std::size_t(between(0, 5))];
            view_.setZoom(zoom);
            view_.refresh();
            const bool aimed = canvas_.state().SelectionShown && !oneIn(3);
            const QRect in = aimed ? selection() : canvas_.image().rect();
            const QPoint pixel(between(in.left(), std::max(in.left(), in.right() + 1)),
                               between(in.top(), std::max(in.top(), in.bottom() + 1)));
            press_ = view_.toWidget(pixel);
            release();
            const bool free = !canvas_.state().SelectionShown;
            mouse(QEvent::MouseButtonPress, press_);
            EXPECT_TRUE(zoom < 1 || !free || selection().topLeft() == pixel);
            background_ = canvas_.state().covered.isNull() ? image_ : background_;
        } else if (event < 55) {
            const int reach = oneIn(10) ? 60 : 4;
            const QPoint at(between(-reach, image_.width() + reach),
                            between(-reach, image_.height() + reach));
            mouse(QEvent::MouseMove, oneIn(6) ? press_ : view_.toWidget(at));
        } else if (event < 75) {
            release();
        } else if (event < 80) {
            const bool fit = event > 77;
            canvas_.CancelDrag();
            QRect part = canvas_.state().SelectionShown || !fit ? selection() : image_.rect();
            part = fit ? part & image_.rect()
                       : QRect(std::min(part.x(), part.x() + part.width()),
                               std::min(part.y(), part.y() + part.height()), std::abs(part.width()),
                               std::abs(part.height()));
            const QImage before = image_;
            const qint64 key = canvas_.image().cacheKey();
            fit ? canvas_.FitToPage() : canvas_.Crop();
            if (!fit && part.width() > 0 && part.height() > 0) {
                image_ = white(page());
                draw(image_, centred(part.size()).topLeft(), before, part);
                EXPECT_EQ(selection(), centred(part.size()));
            } else if (fit && canvas_.image().cacheKey() != key) {
                const QSize size = part.size().scaled(page(), Qt::KeepAspectRatio);
                image_ = canvas_.image();
                EXPECT_EQ(image_.size(), page());
                EXPECT_EQ(selection(), centred(size.expandedTo({1, 1})));
            }
            background_ = canvas_.image().cacheKey() != key ? image_ : background_;
        } else if (event < 81) {
            canvas_.SelectAll();
            background_ = image_;
            EXPECT_EQ(selection(), image_.rect());
        } else if (event < 83) {
            event == 81 ? canvas_.MoveFrame(between(-9, 9), 3) : canvas_.SizeFrame(4, -2);
            background_ = image_;
            EXPECT_TRUE(image_.rect().contains(selection()));
        } else if (event < 91) {
            button(std::array{SelectionMove::Up, SelectionMove::Right, SelectionMove::Down,
                              SelectionMove::Left, SelectionMove::Erase}[std::size_t(event % 5)]);
        } else if (event < 94) {
            canvas_.CancelDrag();
            if (canvas_.state().SelectionShown) {
                const QPoint by(between(-10, 10), between(-3, 3));
                move(SelectionMove::Dragged, dragged(selection().topLeft() + by),
                     [&] { canvas_.Nudge(by.x(), by.y()); });
            }
        } else if (event == 94) {
            canvas_.StampText(u"ab"_s);
            image_ = background_ = canvas_.image();
        } else if (event == 95) {
            canvas_.DropSelection();
        } else if (event < 98) {
            canvas_.ScrollBy(between(-50, 50), between(-50, 50));
        } else {
            // There and back; a moved block still knows what it covers.
            const CanvasState before = (canvas_.CancelDrag(), canvas_.state());
            int steps = 0;
            for (; steps < event - 96 && canvas_.canUndo(); ++steps) {
                canvas_.Undo();
            }
            for (int i = 0; i < steps; ++i) {
                canvas_.Redo();
            }
            background_ = image_;
            draw(background_, selection().topLeft(), canvas_.state().covered,
                 canvas_.state().covered.rect());
        }
    }

    void check()
    {
        EXPECT_EQ(canvas_.image(), image_);
        EXPECT_EQ(canvas_.renderPage(), cut(image_, QRect({}, page())));
    }

    std::mt19937 random_;
    int canvasBorder_;
    int pageBorder_;
    PictureCanvas canvas_;
    CanvasView view_;
    /// What the canvas should show, and that without the block that was moved last.
    QImage image_, background_, first_;
    QPoint press_;
};

} // namespace

TEST(CanvasModel, IsWhatItsStepsMakeOfItAndGoesAllTheWayBack)
{
    const QByteArray wanted = qgetenv("VARNHOLT_TEST_SEEDS");
    const unsigned seeds = wanted.isEmpty() ? 200 : wanted.toUInt();
    for (unsigned seed = 0; seed < seeds && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        RandomHands(seed).run(120);
    }
}

} // namespace varnholt::test
