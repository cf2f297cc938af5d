#include "presentation/build_fixture.h"
#include "presentation/deck.h"
#include "presentation/slide_space.h"
#include "store/errors.h"
#include "support/recording_presentation_program.h"

#include <QRectF>

#include <set>
#include <vector>

using namespace Qt::StringLiterals;
using namespace varnholt;
using namespace varnholt::test;

namespace {

class SlideBuilder : public BuildFixture
{
protected:
    /// Questions with the answers A1, A2, ..., all but the `rejected` ones selected.
    void fillPool(int size, const std::set<int>& rejected = {})
    {
        pool_.clear();
        topics_.clear();
        program_ = {};
        for (int i = 1; i <= size; ++i) {
            addQuestion(u"A%1"_s.arg(i), u"Topic of %1"_s.arg(i));
            pool_(i).Selected = !rejected.contains(i);
        }
    }

    /// The calls, one after the other; a line break in `expected` is a semicolon.
    void expectCalls(QString expected) const
    {
        EXPECT_EQ(program_.calls.join(u"; "_s).remove(folder_.path() + u'/').toStdString(),
                  expected.replace(u'\n', u"; "_s).toStdString());
    }

    /// "<boxes>: <top of the last> <its text>" of each key slide.
    [[nodiscard]] QString keySlides() const
    {
        const auto first = program_.calls.indexOf(u"addTextBox 0 0 300 100"_s);
        const QString calls =
            program_.calls.mid(first, program_.calls.size() - first - 2).join(u'\n');
        QStringList slides;
        for (const QString& slide : calls.split(u"appendBlankSlide"_s)) {
            slides.append(u"%1: "_s.arg(slide.count(u"addTextBox"_s)));
            if (const QString box = slide.section(u"addTextBox"_s, -1); box != slide) {
                slides.last() += box.section(u' ', 2, 2) + u' ' + box.section(u' ', 6).trimmed();
            }
        }
        return slides.join(u" | "_s);
    }

    RecordingPresentationProgram program_;
};

TEST_F(SlideBuilder, CallsInOrder)
{
    fillPool(3, {2});
    EXPECT_EQ(build(program_, true, true).end, End::Complete);
    expectCalls(uR"(addPresentation; setVisible
appendBlankSlide
addTextBox 0 0 1000 100; setShapeText 1 Topic of 1
addTextBox 0 40 100 100; addPicture 1.jpg 2 70 -1 -1
setShapeText 2 #1; scaleHeight 3 1; scaleWidth 3 1
appendBlankSlide
addTextBox 0 0 1000 100; setShapeText 1 Topic of 3
addTextBox 0 40 100 100; addPicture 3.jpg 2 70 -1 -1
setShapeText 2 #2; scaleHeight 3 1; scaleWidth 3 1
appendBlankSlide
addTextBox 0 0 300 100; setShapeText 1 Answer Key
addTextBox 0 20 100 100; setShapeText 2 1) A1
addTextBox 0 40 100 100; setShapeText 3 2) A3
showSlide 1; finish)"_s);
    fillPool(1);
    EXPECT_EQ(build(program_, false, false).end, End::Complete);
    expectCalls(uR"(addPresentation; setVisible
appendBlankSlide
addTextBox 0 0 100 100; addPicture 1.jpg 2 50 -1 -1
setShapeText 1 #1; scaleHeight 2 1; scaleWidth 2 1
showSlide 1; finish)"_s);
}

TEST_F(SlideBuilder, TheKeyBreaksByPoolIndex)
{
    using Rejected = std::set<int>;
    // The break waits for the next included multiple of 25; rejections before it make a slide
    // shorter, not later.
    for (const auto& [pool, rejected, key] :
         {std::tuple(24, Rejected(), "25: 480 24) A24"),
          {25, {}, "26: 500 25) A25 | 0: "},
          {51, {}, "26: 500 25) A25 | 25: 480 50) A50 | 1: 0 51) A51"},
          {30, {25}, "30: 580 29) A30"},
          {51, {25}, "50: 980 49) A50 | 1: 0 50) A51"},
          {26, {1, 2, 3}, "23: 440 22) A25 | 1: 0 23) A26"},
          {2, {1, 2}, "1: 0 Answer Key"}}) {
        SCOPED_TRACE(key);
        fillPool(pool, rejected);
        int reported = 0;
        int announced = 0;
        const auto progress = [&](int slide, int slides) {
            EXPECT_EQ(slide, ++reported);
            announced = slides;
        };
        EXPECT_EQ(build(program_, false, true, progress).end, End::Complete);
        EXPECT_EQ(reported, announced);
        EXPECT_EQ(program_.callsOf(u"appendBlankSlide"_s).size(), announced);
        EXPECT_EQ(keySlides().toStdString(), key);
    }
}

TEST_F(SlideBuilder, AKeyInColumnsHoldsEveryAnswerInsideItsSlidesAndNothingOverlaps)
{
    constexpr double textSize = 18;
    for (const bool longOnes : {false, true}) {
        fillPool(60);
        for (int i = 7; longOnes && i <= 60; i += 7) {
            pool_(i).Answer = i == 28 ? u"several words "_s.repeated(400)
                              : i % 2 ? u"first\nsecond\nthird"_s
                                      : QString(300, u'W');
        }
        const Deck deck = MakeDeck(
            {pool_, false, true, {}, [](const auto&) { return QString(); }, {.keyColumns = true}});
        EXPECT_EQ(deck.slides.size() == 61, !longOnes);
        QString written;
        for (const DeckSlide& slide : deck.slides) {
            std::vector<QRectF> taken;
            for (const KeyLine& line : slide.lines) {
                const QRectF place(line.left, line.top, line.width, line.height);
                EXPECT_TRUE(QRectF(0, 40, slideWidth, slideHeight - 40).contains(place));
                for (const QRectF& other : taken) {
                    EXPECT_FALSE(place.intersects(other)) << qPrintable(line.text);
                }
                taken.push_back(place);
                const auto lines = GuessedLines(line.text, textSize, line.width);
                EXPECT_GE(line.height, double(lines.size()) * textSize * lineOfSize);
                EXPECT_EQ(line.wraps, lines.size() > 1);
                for (std::size_t i = 0; i < lines.size(); ++i) {
                    EXPECT_LE(GuessedWidth(lines[i].trimmed(), textSize), line.width - boxMargins);
                    EXPECT_TRUE(i + 1 == lines.size() || !lines[i].contains(u"words") ||
                                lines[i].endsWith(u' '));
                }
                EXPECT_GE(lines.size(), std::size_t(line.text.count(u'\n')) + 1);
                written += line.text + u' ';
            }
        }
        QString wanted;
        for (int i = 1; i <= 60; ++i) {
            wanted += u"%1) %2 "_s.arg(i).arg(pool_(i).Answer);
        }
        EXPECT_EQ(written.simplified(), wanted.simplified());
    }
}

TEST_F(SlideBuilder, AFailureReachesTheCallerOnlyBeforeTheFirstPicture)
{
    // The call, which of them, whether it becomes the outcome (else the caller gets the error),
    // and the number of the question it happens at.
    for (const auto& [call, nth, aborts, number] : {std::tuple("addPresentation", 1, false, 0),
                                                    {"setVisible", 1, false, 0},
                                                    {"appendBlankSlide", 1, false, 0},
                                                    {"addTextBox", 2, false, 0},
                                                    {"addPicture", 1, true, 1},
                                                    {"scaleWidth", 1, true, 1},
                                                    {"appendBlankSlide", 2, true, 2},
                                                    {"addPicture", 2, true, 2},
                                                    {"setShapeText 1 Answer", 1, true, 0},
                                                    {"showSlide 1", 1, true, 0}}) {
        SCOPED_TRACE(testing::Message() << call << ' ' << nth);
        fillPool(3, {1});
        program_.failAt(QLatin1String(call), nth);
        if (aborts) {
            const BuildOutcome outcome = build(program_, true, true);
            EXPECT_EQ(outcome.end, End::Aborted);
            EXPECT_EQ(outcome.reason, u"told to fail");
            EXPECT_EQ(outcome.number, number);
            EXPECT_EQ(outcome.poolIndex, number > 0 ? number + 1 : 0);
            EXPECT_EQ(outcome.pictureIsBad, qstrcmp(call, "addPicture") == 0);
        } else {
            EXPECT_THROW(build(program_, true, true), Error);
        }
        if (program_.calls.size() > 1) {
            EXPECT_EQ(program_.calls.takeLast(), u"finish");
        }
        EXPECT_TRUE(program_.calls.last().startsWith(QLatin1String(call)));
        EXPECT_EQ(program_.callsOf(QLatin1String(call)).size(), nth);
    }
}

TEST_F(SlideBuilder, NothingToShowFailsAtTheEndAndCancelStopsWithoutAWord)
{
    fillPool(2, {1, 2});
    EXPECT_THROW(build(program_, true, false), Error);
    EXPECT_EQ(program_.callsOf(u"showSlide"_s), QStringList{u"showSlide 1"_s});
    fillPool(3);
    const auto cancelAtSecond = [](int slide, int) {
        if (slide == 2) {
            throw Cancelled();
        }
    };
    EXPECT_EQ(build(program_, true, true, cancelAtSecond).end, End::Cancelled);
    EXPECT_EQ(program_.calls.last(), u"scaleWidth 3 1");
}

} // namespace
