#include "library/Library.h"
#include "selection/draw_wishes.h"
#include "selection/frmMain.h"
#include "selection/frmSelect.h"
#include "support/gui.h"
#include "support/test_files.h"
#include "support/test_services.h"
#include "toolkit/PictureView.h"

#include <QAccessible>
#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

#include <gtest/gtest.h>

namespace varnholt::test {
namespace {

using namespace Qt::Literals::StringLiterals;

/// The selection window with the review on, and the review window it opens for five
/// questions of which `number` are wanted.
class ReviewWindow : public testing::Test, protected TestWorld
{
protected:
    ReviewWindow()
    {
        library.addGenerated(u"A"_s, 1, 1, 5, true);
        owner.open();
        selection = std::make_unique<frmMain>(services, state, owner);
        selection->show();
    }

    void create(int number)
    {
        control<QLineEdit>(selection.get(), "txtQuestions")->setText(QString::number(number));
        click(selection.get(), "cmdCreate");
        review = nullptr;
        for (auto* found : selection->findChildren<frmSelect*>()) {
            if (found->isVisible()) {
                review = found;
            }
        }
        if (review) {
            review->activateWindow();
            ASSERT_TRUE(QTest::qWaitForWindowActive(review));
        }
    }

    // Both after what there is to see was painted.
    static void click(QWidget* window, const char* name)
    {
        QApplication::processEvents();
        test::click(window, name);
    }
    void key(Qt::Key which)
    {
        QApplication::processEvents();
        QTest::keyClick(review->focusWidget(), which);
    }
    QString text(const char* label) { return control<QLabel>(review, label)->text(); }
    QString counters() { return text("lblCount1") + u", "_s + text("lblCount2"); }
    /// Shows the question at this position of the pool with everything that belongs to it.
    bool shows(int position)
    {
        const QuestionRecord& question = review->draw().DrawPool(position);
        return control<PictureView>(review, "imgQuestion")->picture() ==
                   QImage(library.picturePath(question.PictureIndex)) &&
               text("lblTopicDescription") == u"Topic 1 - Subtopic 1.1"_s &&
               text("lblAnswer") == u"Answer: "_s + question.Answer;
    }
    QString pathAt(int position)
    {
        return library.picturePath(review->draw().DrawPool(position).PictureIndex);
    }
    void expectClosed(int started)
    {
        EXPECT_TRUE(!review || !review->isVisible());
        EXPECT_TRUE(selection->isEnabled());
        EXPECT_EQ(presentations.started, started);
        EXPECT_TRUE(presentations.prepared.expired()) << "nothing is kept ready any longer";
    }
    QStringList pictures() { return presentations.calls.filter(u"addPicture"_s); }

    Library owner{library.folder(), clock};
    std::unique_ptr<frmMain> selection;
    QPointer<frmSelect> review;
};

TEST_F(ReviewWindow, IncludingTheNumberAskedForBuildsInPoolOrder)
{
    create(2);
    ASSERT_NE(review, nullptr);
    EXPECT_EQ(review->windowTitle(), u"Select Questions"_s);
    EXPECT_FALSE(review->isModal() || selection->isEnabled());
    EXPECT_EQ(counters(), u"Questions Selected: 0, Questions Left to View: 5"_s);
    EXPECT_TRUE(shows(1));
    key(Qt::Key_I);
    EXPECT_EQ(counters(), u"Questions Selected: 1, Questions Left to View: 4"_s);
    EXPECT_TRUE(shows(2));
    key(Qt::Key_E);
    EXPECT_TRUE(shows(3));
    EXPECT_EQ(counters(), u"Questions Selected: 1, Questions Left to View: 3"_s);
    EXPECT_FALSE(presentations.prepared.expired()) << "the program is ready for the last key";
    EXPECT_EQ(QAccessible::queryAccessibleInterface(review)->role(), QAccessible::Dialog);
    // What nobody has seen yet is not judged, neither by keys nor by the mouse.
    control<QWidget>(review, "imgQuestion")->setUpdatesEnabled(false);
    key(Qt::Key_E);
    click(review, "cmdInclude");
    ASSERT_TRUE(review && shows(3));
    control<QWidget>(review, "imgQuestion")->setUpdatesEnabled(true);
    const QString first = pathAt(1);
    const QString third = pathAt(3);
    click(review, "cmdInclude");
    expectClosed(1);
    ASSERT_EQ(pictures().size(), 2);
    EXPECT_TRUE(pictures()[0].contains(first) && pictures()[1].contains(third));

    // Each opening starts afresh.
    create(1);
    EXPECT_EQ(counters(), u"Questions Selected: 0, Questions Left to View: 5"_s);
    key(Qt::Key_Return); // the focus is on Include
    expectClosed(2);
    EXPECT_EQ(pictures().size(), 1);
}

TEST_F(ReviewWindow, CreateBuildsWhatIsIncludedSoFar)
{
    create(5);
    click(review, "cmdInclude");
    click(review, "cmdCreate");
    expectClosed(1);
    EXPECT_EQ(pictures().size(), 1);

    // With nothing included there is only the answer key's title, or nothing to show.
    create(5);
    click(review, "cmdCreate");
    expectClosed(2);
    EXPECT_EQ(presentations.calls.filter(u"appendBlankSlide"_s).size(), 1);
    control<QRadioButton>(selection.get(), "optKeyNo")->setChecked(true);
    messages.expectInform(u"Error"_s, u"no such slide"_s);
    create(5);
    // It stands where it was left.
    review->setGeometry(40, 50, 510, 420);
    click(review, "cmdCreate");
    EXPECT_TRUE(review->isVisible() && shows(1));
    click(review, "cmdCancel");
    expectClosed(3);
    create(5);
    EXPECT_EQ(review->geometry(), QRect(40, 50, 510, 420));
}

TEST_F(ReviewWindow, GoesOnWithItsLastJudgementTakenBackWhenThereAreNoSlides)
{
    create(2);
    key(Qt::Key_I);
    key(Qt::Key_E);
    const auto goesOn = [&] {
        key(Qt::Key_I);
        EXPECT_TRUE(review->isVisible() && shows(3));
        EXPECT_EQ(counters(), u"Questions Selected: 1, Questions Left to View: 3"_s);
    };
    presentations.startFailure = u"The office does not start."_s;
    messages.expectInform(u"Error"_s, presentations.startFailure);
    goesOn();
    presentations.startFailure.clear();
    presentations.cancelled = true; // by herself: nothing to tell
    goesOn();
    presentations.cancelled = false;
    key(Qt::Key_E);
    EXPECT_TRUE(shows(4));
    const QString fourth = pathAt(4);
    key(Qt::Key_I);
    EXPECT_EQ(pictures().size(), 2);
    EXPECT_TRUE(pictures()[1].contains(fourth));
    EXPECT_FALSE(review && review->isVisible());
}

TEST_F(ReviewWindow, CancelEscapeClosingAndExcludingAllBuildNothing)
{
    create(3);
    key(Qt::Key_I);
    click(review, "cmdCancel");
    expectClosed(0);
    // What has been included is not thrown away unasked by any other way out.
    const std::vector<std::function<void()>> ways{
        [&] { key(Qt::Key_Escape); }, [&] { review->close(); }, [&] { selection->close(); }};
    for (const auto& way : ways) {
        create(3);
        key(Qt::Key_I);
        for (const bool leave : {false, true}) {
            EXPECT_TRUE(review->isVisible() && selection->isVisible());
            messages.expectYesNo(u"Leave the Review?"_s,
                                 u"Questions included so far: 1. If you leave the review now, no "
                                 "slides are made of them. Do you want to leave it?"_s,
                                 leave);
            way();
        }
        expectClosed(0);
    }
    selection->show();
    create(5);
    for (int i = 1; i <= 5; ++i) {
        EXPECT_TRUE(shows(i));
        click(review, "cmdExclude");
    }
    expectClosed(0);
    // Leaving the selection window takes the review with it.
    create(3);
    selection->close();
    EXPECT_FALSE(review && review->isVisible());
}

TEST_F(ReviewWindow, SwapsTakesBackOrdersAndKeepsByKey)
{
    SaveQuotas(library.folder(), 1, {{1, 4}});
    selection = std::make_unique<frmMain>(services, state, owner);
    selection->show();
    create(4);
    const auto included = [&] {
        std::vector<std::int32_t> keys;
        for (const DrawnQuestion& question : review->draw().DrawPool) {
            if (question.Selected) {
                keys.push_back(question.SOLIndex);
            }
        }
        return keys;
    };
    key(Qt::Key_S);
    EXPECT_TRUE(shows(2));
    EXPECT_EQ(counters(), u"Questions Selected: 0, Questions Left to View: 4"_s);
    EXPECT_FALSE(control<QLabel>(review, "lblShort")->isVisible());
    key(Qt::Key_E);
    EXPECT_EQ(text("lblShort"), u"Topic 1 has only 3: one place is free."_s);
    key(Qt::Key_Backspace);
    EXPECT_TRUE(shows(2));
    EXPECT_FALSE(control<QLabel>(review, "lblShort")->isVisible());
    key(Qt::Key_I);
    QApplication::processEvents();
    for (const bool held : {false, true}) {
        QKeyEvent russian(QEvent::KeyPress, 0x428, Qt::NoModifier, 31, 'I', 0, u"ш"_s, held);
        QApplication::sendEvent(review->focusWidget(), &russian);
        QApplication::processEvents();
    }
    const auto before = included();
    ASSERT_EQ(before.size(), 2U);
    const std::int32_t third = review->draw().DrawPool(4).SOLIndex;
    QApplication::processEvents();
    QTimer::singleShot(0, qApp, [] {
        auto* overview = QApplication::activeModalWidget();
        present(*overview);
        auto* list = control<QListWidget>(overview, "lstQuestions");
        QTest::keyClick(list, Qt::Key_Home);
        QTest::keyClick(list, Qt::Key_S);
        QTest::keyClick(list, Qt::Key_Right, Qt::ControlModifier);
        QTest::keyClick(overview, Qt::Key_Escape);
    });
    QTest::keyClick(review->focusWidget(), Qt::Key_O);
    EXPECT_EQ(included(), (std::vector{before[1], third}));
    EXPECT_EQ(review->draw().DrawPool(5).SOLIndex, before[0]) << "once more at the very end";
    EXPECT_EQ(counters(), u"Questions Selected: 2, Questions Left to View: 2"_s);
    const auto kept = included();
    click(review, "cmdKeep");
    expectClosed(0);
    const PastTest test = owner.pastTests().list().at(0);
    EXPECT_EQ(std::tuple(test.kind, test.options.asked), std::tuple(TestKind::Kept, 4));
    std::vector<std::int32_t> keys;
    for (const TestItem& item : owner.pastTests().items(test.TestID)) {
        keys.push_back(item.SOLIndex);
    }
    EXPECT_EQ(keys, kept);
}

TEST_F(ReviewWindow, AMissingPictureClosesTheReview)
{
    const QString text = u"One of the questions you have selected is missing the picture file.  "
                         "Please go to Manage Assessments and delete the question that is missing "
                         "the picture file."_s;
    create(5);
    // The next one is decoded already, but gone when its turn comes.
    for (int i = 1; i <= 5; ++i) {
        removeFile(library.picturePath(i));
    }
    messages.expectInform(u"File Missing"_s, text);
    key(Qt::Key_I);
    expectClosed(0);
    messages.expectInform(u"File Missing"_s, text);
    create(5);
    expectClosed(0);
}

} // namespace
} // namespace varnholt::test
