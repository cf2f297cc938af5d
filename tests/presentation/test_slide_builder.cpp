#include "presentation/slide_builder.h"

#include "presentation/build_fixture.h"
#include "store/errors.h"
#include "support/recording_presentation_program.h"

#include <set>

using namespace Qt::StringLiterals;
using namespace varnholt;
using namespace varnholt::test;

namespace {

class SlideBuilder : public testing::Test
{
protected:
    /// A pool of `size` questions with keys 101, 102, ... and all but `rejected` selected.
    void fillPool(int size, const std::set<int>& rejected = {})
    {
        pool_.clear();
        for (int i = 1; i <= size; ++i) {
            pool_.append({i, 100 + i, 1, 1, QStringLiteral("A%1").arg(i), !rejected.contains(i)});
        }
    }

    BuildOutcome build(bool topicLine, bool answerKey, const BuildProgress& progress = {})
    {
        const BuildInput input{
            pool_, topicLine, answerKey,
            [](const QuestionRecord& q) { return QStringLiteral("Topic of %1").arg(q.SOLIndex); },
            [](const QuestionRecord& q) { return QStringLiteral("%1.jpg").arg(q.PictureIndex); }};
        return BuildPresentation(program_, input, boxes_, progress);
    }

    /// The calls, one after the other; a line break in `expected` is a semicolon.
    void expectCalls(QString expected) const
    {
        EXPECT_EQ(program_.calls.join(u"; "_s).toStdString(),
                  expected.replace(u'\n', u"; "_s).toStdString());
    }

    /// The texts of each key slide, "<top>: <text>", a line a box.
    QList<QStringList> keySlides()
    {
        QList<QStringList> slides;
        QString top;
        bool inKey = false;
        QStringList slide;
        for (const QString& call : program_.calls) {
            if (call.startsWith(u"addBlankSlide")) {
                if (inKey) {
                    slides.append(slide);
                }
                slide.clear();
            } else if (call.startsWith(u"addTextBox")) {
                top = call.section(u' ', 2, 2);
                inKey = inKey || call == u"addTextBox 0 0 300 100";
            } else if (call.startsWith(u"setShapeText")) {
                slide.append(QStringLiteral("%1: %2").arg(top, call.section(u' ', 2)));
            }
        }
        slides.append(slide);
        return slides;
    }

    List1<QuestionRecord> pool_;
    ScriptedMessageBoxes boxes_;
    RecordingPresentationProgram program_;
};

TEST_F(SlideBuilder, CallsInOrderWithTopicAndKey)
{
    fillPool(3, {2});
    EXPECT_EQ(build(true, true), BuildOutcome::complete);
    expectCalls(uR"(addPresentation; setVisible
slideCount; addBlankSlide 1; selectSlide 1
addTextBox 0 0 1000 100; setShapeText 1 Topic of 1
addTextBox 0 40 100 100; addPicture 101.jpg 2 70 -1 -1
setShapeText 2 #1; scaleHeight 3 1; scaleWidth 3 1
slideCount; addBlankSlide 2; selectSlide 2
addTextBox 0 0 1000 100; setShapeText 1 Topic of 3
addTextBox 0 40 100 100; addPicture 103.jpg 2 70 -1 -1
setShapeText 2 #2; scaleHeight 3 1; scaleWidth 3 1
slideCount; addBlankSlide 3; selectSlide 3
addTextBox 0 0 300 100; setShapeText 1 Answer Key
addTextBox 0 20 100 100; setShapeText 2 1) A1
addTextBox 0 40 100 100; setShapeText 3 2) A3
selectSlide 1; finish)"_s);
}

TEST_F(SlideBuilder, CallsInOrderWithoutTopicAndKey)
{
    fillPool(1);
    EXPECT_EQ(build(false, false), BuildOutcome::complete);
    expectCalls(uR"(addPresentation; setVisible
slideCount; addBlankSlide 1; selectSlide 1
addTextBox 0 0 100 100; addPicture 101.jpg 2 50 -1 -1
setShapeText 1 #1; scaleHeight 2 1; scaleWidth 2 1
selectSlide 1; finish)"_s);
}

struct KeyCase
{
    int pool;
    std::set<int> rejected;
    /// Boxes on each key slide, the title among them.
    QList<qsizetype> boxes;
    /// Last line of each key slide that has one.
    QStringList lastLines;
};

class AnswerKey : public SlideBuilder, public testing::WithParamInterface<KeyCase>
{};

TEST_P(AnswerKey, BreaksByPoolIndex)
{
    const KeyCase& key = GetParam();
    fillPool(key.pool, key.rejected);
    int reported = 0;
    int announced = 0;
    EXPECT_EQ(build(false, true,
                    [&](int slide, int slides) {
                        EXPECT_EQ(slide, ++reported);
                        announced = slides;
                    }),
              BuildOutcome::complete);
    EXPECT_EQ(reported, announced);
    EXPECT_EQ(program_.callsOf(u"addBlankSlide"_s).size(), announced);

    QList<qsizetype> boxes;
    QStringList lastLines;
    for (const QStringList& slide : keySlides()) {
        boxes.append(slide.size());
        if (!slide.isEmpty()) {
            lastLines.append(slide.last());
        }
    }
    EXPECT_EQ(boxes, key.boxes);
    EXPECT_EQ(lastLines, key.lastLines);
    EXPECT_EQ(keySlides().first().first(), u"0: Answer Key");
}

INSTANTIATE_TEST_SUITE_P(
    Counts, AnswerKey,
    testing::Values(
        KeyCase{24, {}, {25}, {u"480: 24) A24"_s}}, KeyCase{25, {}, {26, 0}, {u"500: 25) A25"_s}},
        KeyCase{26, {}, {26, 1}, {u"500: 25) A25"_s, u"0: 26) A26"_s}},
        KeyCase{50, {}, {26, 25, 0}, {u"500: 25) A25"_s, u"480: 50) A50"_s}},
        KeyCase{51, {}, {26, 25, 1}, {u"500: 25) A25"_s, u"480: 50) A50"_s, u"0: 51) A51"_s}},
        // The break waits for the next included multiple of 25.
        KeyCase{30, {25}, {30}, {u"580: 29) A30"_s}},
        KeyCase{51, {25}, {50, 1}, {u"980: 49) A50"_s, u"0: 50) A51"_s}},
        // Rejections before it make a slide shorter, not later.
        KeyCase{26, {1, 2, 3}, {23, 1}, {u"440: 22) A25"_s, u"0: 23) A26"_s}},
        KeyCase{2, {1, 2}, {1}, {u"0: Answer Key"_s}}));

struct Failure
{
    QString call;
    int nth;
    /// Whether the user gets the message; else the caller gets the error.
    bool aborts;
    /// The last call before the end.
    QString last;
};

class FailurePhase : public SlideBuilder, public testing::WithParamInterface<Failure>
{};

TEST_P(FailurePhase, ReachesTheCallerOnlyBeforeTheFirstPicture)
{
    const Failure& failure = GetParam();
    fillPool(2);
    program_.failAt(failure.call, failure.nth);
    if (failure.aborts) {
        boxes_.expectInform(abortTitle, abortText);
        EXPECT_EQ(build(true, true), BuildOutcome::aborted);
    } else {
        EXPECT_THROW(build(true, true), Error);
    }
    if (program_.calls.size() > 1) {
        ASSERT_EQ(program_.calls.takeLast(), u"finish");
    }
    EXPECT_EQ(program_.calls.last(), failure.last);
}

INSTANTIATE_TEST_SUITE_P(
    Phases, FailurePhase,
    testing::Values(Failure{u"addPresentation"_s, 1, false, u"addPresentation"_s},
                    Failure{u"setVisible"_s, 1, false, u"setVisible"_s},
                    Failure{u"addBlankSlide"_s, 1, false, u"addBlankSlide 1"_s},
                    Failure{u"selectSlide"_s, 1, false, u"selectSlide 1"_s},
                    Failure{u"setShapeText"_s, 1, false, u"setShapeText 1 Topic of 1"_s},
                    Failure{u"addTextBox"_s, 2, false, u"addTextBox 0 40 100 100"_s},
                    Failure{u"addPicture"_s, 1, true, u"addPicture 101.jpg 2 70 -1 -1"_s},
                    Failure{u"scaleWidth"_s, 1, true, u"scaleWidth 3 1"_s},
                    Failure{u"addBlankSlide"_s, 2, true, u"addBlankSlide 2"_s},
                    Failure{u"addTextBox"_s, 3, true, u"addTextBox 0 0 1000 100"_s},
                    Failure{u"addPicture"_s, 2, true, u"addPicture 102.jpg 2 70 -1 -1"_s},
                    Failure{u"addBlankSlide 3"_s, 1, true, u"addBlankSlide 3"_s},
                    Failure{u"setShapeText 1 Answer"_s, 1, true, u"setShapeText 1 Answer Key"_s},
                    Failure{u"selectSlide 1"_s, 2, true, u"selectSlide 1"_s}));

TEST_F(SlideBuilder, NothingIncludedAndNoKeyFailsAtTheEnd)
{
    fillPool(2, {1, 2});
    EXPECT_THROW(build(true, false), Error);
    EXPECT_EQ(program_.callsOf(u"selectSlide"_s), QStringList{u"selectSlide 1"_s});
}

TEST_F(SlideBuilder, AFailingFinishReachesTheCaller)
{
    fillPool(1);
    program_.failAt(u"finish"_s);
    EXPECT_THROW(build(true, true), Error);
}

TEST_F(SlideBuilder, CancelStopsWithoutAWord)
{
    fillPool(3);
    const auto cancelAtSecond = [](int slide, int) {
        if (slide == 2) {
            throw Cancelled();
        }
    };
    EXPECT_EQ(build(true, true, cancelAtSecond), BuildOutcome::cancelled);
    EXPECT_EQ(program_.calls.last(), u"scaleWidth 3 1");
}

} // namespace
