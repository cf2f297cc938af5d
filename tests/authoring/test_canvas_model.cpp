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
        , canvasBorder_(between(0, 3) == 0 ? 2 : 0)
        , pageBorder_(between(0, 3) == 0 ? 1 : 0)
        , canvas_(page_, canvasBorder_, pageBorder_)
        , naive_(page_.width(), page_.height(), canvasBorder_, pageBorder_)
    {}

    void run(int steps)
    {
        for (int i = 0; i < steps && !testing::Test::HasFailure(); ++i) {
            step();
            compare();
        }
        if (testing::Test::HasFailure()) {
            ADD_FAILURE() << "after:" << log_;
        }
    }

private:
    int between(int low, int high)
    {
        return std::uniform_int_distribution<int>(low, high)(random_);
    }

    /// On the canvas, at and past its edges; whole, half and odd fractions.
    double position(int size)
    {
        static constexpr double parts[] = {0, 0, 0, 0.5, 0.25, -0.5};
        const int reach = between(0, 9) == 0 ? 60 : 4;
        return between(-reach, size + reach) + parts[between(0, 5)];
    }
    double X() { return position(canvas_.picQuestion.innerWidth()); }
    double Y() { return position(canvas_.picQuestion.innerHeight()); }

    QImage picture()
    {
        // Now and then long enough for moves by 100.
        QImage image(between(1, between(0, 4) == 0 ? 260 : 60), between(1, 50),
                     QImage::Format_RGB32);
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                image.setPixel(x, y, random_() & 0xFFFFFF);
            }
        }
        return image;
    }

    void step()
    {
        const int event = between(0, 99);
        const double x = X();
        const double y = Y();
        log_ += ' ' + std::to_string(event);
        if (event < 4) {
            const QImage image = event == 0 ? QImage() : picture();
            EXPECT_EQ(canvas_.Paste(image), !image.isNull());
            naive_.paste(image);
        } else if (event < 24) {
            // A press inside the canvas, as a window reports it; often on the selection.
            const bool aimed = canvas_.SelectionShown && between(0, 2) != 0;
            const double px = aimed ? between(canvas_.SelX1, std::max(canvas_.SelX1, canvas_.SelX2))
                                    : std::clamp<double>(x, 0, canvas_.picQuestion.innerWidth());
            const double py = aimed ? between(canvas_.SelY1, std::max(canvas_.SelY1, canvas_.SelY2))
                                    : std::clamp<double>(y, 0, canvas_.picQuestion.innerHeight());
            canvas_.MouseDown(px, py);
            naive_.down(px, py);
        } else if (event < 55) {
            canvas_.MouseMove(x, y);
            naive_.move(x, y);
        } else if (event < 75) {
            canvas_.MouseUp();
            naive_.up();
        } else if (event < 79) {
            canvas_.Crop();
            naive_.crop();
        } else if (event < 91) {
            const int mode = event < 80 ? 5 : 1 + (event - 79) % 4;
            canvas_.MoveSelection(static_cast<SelectionMove>(mode));
            naive_.moveSelection(mode);
        } else if (event < 93) {
            canvas_.MoveSelection(SelectionMove::Erase);
            naive_.moveSelection(6);
        } else if (event < 95) {
            const int dx = between(-10, 10);
            canvas_.Nudge(dx, 1);
            naive_.nudge(dx, 1);
        } else if (event == 95) {
            canvas_.font = {QStringLiteral("Verdana"), 10 + 2 * between(0, 5), between(0, 1) == 1};
            canvas_.StampText(QStringLiteral("ab"));
            naive_.stamp(QStringLiteral("ab"), stampFont(canvas_.font));
        } else if (event == 96) {
            canvas_.DropSelection();
            naive_.drop();
        } else if (event == 97) {
            canvas_.CancelDrag();
            naive_.cancel();
        } else {
            const int value = between(0, naive_.hMax);
            canvas_.setHScroll(value);
            naive_.h = value;
            naive_.left = -value;
        }
    }

    void compare()
    {
        EXPECT_EQ(Pixels(canvas_.picQuestion.image()), naive_.seen());
        EXPECT_EQ(Pixels(canvas_.picQuestion.picture()), naive_.picture);
        EXPECT_EQ(Pixels(canvas_.picSaved.picture()), naive_.saved);
        EXPECT_EQ(Pixels(canvas_.picUndo.image()), naive_.undo);
        EXPECT_EQ(Pixels(canvas_.picCropped.image()), Pixels(naive_.pageW, naive_.pageH));
        EXPECT_FALSE(canvas_.picCropped.hasPicture());
        EXPECT_FALSE(canvas_.picTemp.hasPicture());
        EXPECT_EQ(Pixels(canvas_.renderPage()), naive_.page());

        const NaiveCanvas::Box& box = naive_.selection;
        EXPECT_EQ((std::vector{canvas_.SelX1, canvas_.SelY1, canvas_.SelX2, canvas_.SelY2}),
                  (std::vector{box.x1, box.y1, box.x2, box.y2}));
        EXPECT_EQ(canvas_.SelectionShown, naive_.shown);
        EXPECT_EQ(canvas_.FreshSelection, naive_.fresh);
        EXPECT_EQ(canvas_.controlsShown(), naive_.controls);
        EXPECT_EQ(canvas_.Drawing, naive_.mouse == NaiveCanvas::Mouse::Drawing);
        EXPECT_EQ(canvas_.Moving, naive_.mouse == NaiveCanvas::Mouse::Grabbed ||
                                      naive_.mouse == NaiveCanvas::Mouse::Dragging);
        EXPECT_EQ((std::vector<int>{canvas_.HScroll().visible, canvas_.HScroll().value,
                                    canvas_.HScroll().maximum, canvas_.left()}),
                  (std::vector<int>{naive_.hBar, naive_.h, naive_.hMax, naive_.left}));
        EXPECT_EQ((std::vector<int>{canvas_.VScroll().visible, canvas_.VScroll().value,
                                    canvas_.VScroll().maximum, canvas_.top()}),
                  (std::vector<int>{naive_.vBar, naive_.v, naive_.vMax, naive_.top}));
    }

    std::mt19937 random_;
    QSize page_;
    int canvasBorder_;
    int pageBorder_;
    PictureCanvas canvas_;
    NaiveCanvas naive_;
    std::string log_;
};

class CanvasModel : public testing::TestWithParam<unsigned>
{};

} // namespace

TEST_P(CanvasModel, AgreesWithTheNaiveCanvasAfterEveryEvent)
{
    for (unsigned i = 0; i < 50 && !HasFailure(); ++i) {
        const unsigned seed = GetParam() * 1000 + i;
        SCOPED_TRACE("seed " + std::to_string(seed));
        Session(seed).run(120);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, CanvasModel, testing::Range(1U, 9U));

} // namespace varnholt::test
