#include "authoring/PictureCanvas.h"
#include "authoring/naive_canvas.h"

#include <gtest/gtest.h>

#include <random>

namespace varnholt::test {

namespace {

/// One random session on both canvases, compared after every step.
class Session
{
public:
    explicit Session(unsigned seed)
        : random_(seed)
        , page_(between(8, 40), between(8, 30))
        , canvasBorder_(oneIn(4) ? 2 : 0)
        , pageBorder_(oneIn(4) ? 1 : 0)
        , canvas_(page_, canvasBorder_, pageBorder_)
        , naive_(page_, canvasBorder_, pageBorder_)
    {}

    void run(int steps)
    {
        std::string log;
        for (int i = 0; i < steps && !testing::Test::HasFailure(); ++i) {
            const int event = between(0, 99);
            log += ' ' + std::to_string(event);
            step(event);
            compare();
        }
        if (testing::Test::HasFailure()) {
            ADD_FAILURE() << "after:" << log;
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
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                const QRgb colour = static_cast<QRgb>(random_()) | 0xFF000000;
                image.setPixel(x, y, holes && colour % 3 == 0 ? 0 : colour);
            }
        }
        image.setDevicePixelRatio(holes ? 2 : 1);
        return image;
    }

    void step(int event)
    {
        double x = position(canvas_.picQuestion.innerWidth());
        double y = position(canvas_.picQuestion.innerHeight());
        if (event < 4) {
            const QImage image = event == 0 ? QImage() : picture();
            EXPECT_NE(canvas_.Paste(image), image.isNull());
            naive_.paste(image);
        } else if (event < 24) {
            // A press inside the canvas, as a window reports it; often on the selection.
            const bool aimed = canvas_.SelectionShown && !oneIn(3);
            x = aimed ? between(canvas_.SelX1, std::max(canvas_.SelX1, canvas_.SelX2))
                      : std::clamp<double>(x, 0, canvas_.picQuestion.innerWidth());
            y = aimed ? between(canvas_.SelY1, std::max(canvas_.SelY1, canvas_.SelY2))
                      : std::clamp<double>(y, 0, canvas_.picQuestion.innerHeight());
            press_ = {x, y};
            canvas_.MouseDown(x, y);
            naive_.down(x, y);
        } else if (event < 55) {
            const QPointF to = oneIn(6) ? press_ : QPointF(x, y);
            canvas_.MouseMove(to.x(), to.y());
            naive_.move(to.x(), to.y());
        } else if (event < 75) {
            canvas_.MouseUp();
            naive_.up();
        } else if (event < 79) {
            canvas_.Crop();
            naive_.crop();
        } else if (event < 93) {
            const int mode = event < 91 ? 1 + event % 5 : 6;
            canvas_.MoveSelection(static_cast<SelectionMove>(mode));
            naive_.moveSelection(mode);
        } else if (event < 95) {
            const int dx = between(-10, 10);
            canvas_.Nudge(dx, 1);
            naive_.nudge(dx, 1);
        } else if (event == 95) {
            canvas_.font = {QStringLiteral("Verdana"), 10 + 2 * between(0, 5), oneIn(2)};
            canvas_.StampText(QStringLiteral("ab"));
            naive_.stamp(QStringLiteral("ab"), stampFont(canvas_.font));
        } else if (event == 96) {
            canvas_.DropSelection();
            naive_.drop();
        } else if (event == 97) {
            canvas_.CancelDrag();
            naive_.cancel();
        } else {
            canvas_.setHScroll(between(0, naive_.across.maximum));
            naive_.across.scroll(canvas_.HScroll().value);
            canvas_.setVScroll(between(0, naive_.along.maximum));
            naive_.along.scroll(canvas_.VScroll().value);
        }
    }

    void compare()
    {
        using Numbers = std::vector<int>;
        using Mouse = NaiveCanvas::Mouse;
        EXPECT_EQ(canvas_.picQuestion.image(), naive_.seen());
        EXPECT_EQ(canvas_.picQuestion.picture(), naive_.picture);
        EXPECT_EQ(canvas_.picSaved.picture(), naive_.saved);
        EXPECT_EQ(canvas_.picUndo.image(), naive_.undo);
        EXPECT_EQ(canvas_.renderPage(), naive_.page());
        EXPECT_EQ(canvas_.picCropped.image(), blank(naive_.pageW, naive_.pageH));
        EXPECT_FALSE(canvas_.picCropped.hasPicture() || canvas_.picTemp.hasPicture());

        const NaiveCanvas::Box& box = naive_.selection;
        EXPECT_EQ((Numbers{canvas_.SelX1, canvas_.SelY1, canvas_.SelX2, canvas_.SelY2}),
                  (Numbers{box.x1, box.y1, box.x2, box.y2}));
        EXPECT_EQ(canvas_.SelectionShown, naive_.shown);
        EXPECT_EQ(canvas_.FreshSelection, naive_.fresh);
        EXPECT_EQ(canvas_.controlsShown(), naive_.controls);
        EXPECT_EQ(canvas_.Drawing, naive_.mouse == Mouse::Drawing);
        EXPECT_EQ(canvas_.isDragging(), naive_.mouse != Mouse::Idle);
        const auto bar = [](const auto& of, int edge) {
            return Numbers{of.visible, of.value, of.maximum, edge};
        };
        EXPECT_EQ(bar(canvas_.HScroll(), canvas_.left()), bar(naive_.across, naive_.across.edge));
        EXPECT_EQ(bar(canvas_.VScroll(), canvas_.top()), bar(naive_.along, naive_.along.edge));
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
    const QByteArray wanted = qgetenv("VARNHOLT_TEST_SESSIONS");
    const unsigned sessions = wanted.isEmpty() ? 200 : wanted.toUInt();
    for (unsigned seed = 0; seed < sessions && !HasFailure(); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        Session(seed).run(120);
    }
}

} // namespace varnholt::test
