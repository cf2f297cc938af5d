#include "library/Library.h"
#include "selection/frmMain.h"
#include "support/gui.h"
#include "support/test_services.h"
#include "toolkit/ComboBox.h"
#include "toolkit/ListBox.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include <gtest/gtest.h>

#include <algorithm>

namespace varnholt::test {
namespace {

using namespace Qt::Literals::StringLiterals;

class FrmMain : public testing::Test, protected TestWorld
{
protected:
    FrmMain() { owner.open(); }

    void open()
    {
        window = std::make_unique<frmMain>(services, state, owner);
        window->show();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    }

    void press(const char* button) { click(window.get(), button); }
    void choose(const char* option)
    {
        control<QRadioButton>(window.get(), option)->setChecked(true);
    }
    ListBox& topics() { return *control<ListBox>(window.get(), "lstTopics"); }
    ListBox& subTopics() { return *control<ListBox>(window.get(), "lstSubTopics"); }
    ComboBox& assessments() { return *control<ComboBox>(window.get(), "cboAssessment"); }
    QLineEdit& number() { return *control<QLineEdit>(window.get(), "txtQuestions"); }

    /// The two places that show the count.
    int count()
    {
        const QString caption = control<QLabel>(window.get(), "lblQuestionCount")->text();
        EXPECT_EQ(number().text(), caption);
        return caption.toInt();
    }

    QString lastId() { return library.value(u"SELECT LastID FROM History"_s); }
    /// The calls of the last build that start so.
    QStringList calls(const QString& what) { return presentations.calls.filter(what); }

    Library owner{library.folder(), clock};
    std::unique_ptr<frmMain> window;
};

TEST_F(FrmMain, OpensOnTheRememberedAssessmentWithEverythingSelected)
{
    library.addGenerated(u"First"_s, 1, 1, 1);
    library.addGenerated(u"Second"_s, 3, 2, 4);
    library.addGenerated(u"Third"_s, 1, 1, 2);
    library.sql(u"UPDATE History SET LastID=2"_s);
    open();
    EXPECT_EQ(assessments().currentText(), u"Second"_s);
    EXPECT_EQ(state.CurrentAssessmentNum, 2);
    ASSERT_EQ(topics().listCount(), 3);
    EXPECT_EQ(topics().itemText(2), u"Topic 3 (2 of 2 topics)"_s);
    EXPECT_TRUE(topics().selected(0) && topics().selected(1) && topics().selected(2));
    EXPECT_EQ(topics().listIndex(), 0);
    ASSERT_EQ(subTopics().listCount(), 2);
    EXPECT_TRUE(subTopics().selected(0) && subTopics().selected(1));
    EXPECT_EQ(count(), 24);
    for (const char* option : {"optSelectYes", "optTopicYes", "optKeyYes"}) {
        EXPECT_TRUE(control<QRadioButton>(window.get(), option)->isChecked()) << option;
    }
    EXPECT_EQ(random.seeds, std::vector<std::uint64_t>{1'700'000'000'000});

    assessments().setListIndex(2);
    EXPECT_EQ(count(), 2);
    window->close();
    EXPECT_EQ(lastId(), u"3"_s);
    open();
    EXPECT_EQ(assessments().currentText(), u"Third"_s);
    EXPECT_EQ(random.seeds.size(), 1U);
}

TEST_F(FrmMain, FallsBackToTheFirstAssessmentOrNone)
{
    open();
    EXPECT_EQ(assessments().listCount() + topics().listCount() + count(), 0);
    EXPECT_TRUE(control<QLabel>(window.get(), "lblObstacle")->isVisible());
    messages.expectInform(u"No Questions"_s, u"There are no questions selected."_s);
    for (const char* button :
         {"cmdCreate", "cmdSelectAllTopics", "cmdClearAllTopics", "cmdSelectAllSub",
          "cmdSelectAllSubTopics", "cmdClearAllSubTopics"}) {
        press(button);
    }
    window->close();
    EXPECT_EQ(lastId(), u"0"_s);

    library.addGenerated(u"First"_s, 1, 2, 3);
    library.addGenerated(u"Second"_s, 1, 1, 1);
    for (const int remembered : {0, -5, 99}) {
        library.sql(u"UPDATE History SET LastID=%1"_s.arg(remembered));
        open();
        EXPECT_EQ(state.CurrentAssessmentNum, 1);
        EXPECT_EQ(assessments().currentText(), u"First"_s);
        EXPECT_EQ(count(), 6);
        EXPECT_FALSE(control<QLabel>(window.get(), "lblObstacle")->isVisible());
    }
}

TEST_F(FrmMain, CountsFollowTopicsAndSubtopics)
{
    library.addGenerated(u"A"_s, 3, 2, 5);
    // Its subtopic has gone: it counts whenever its topic is ticked.
    library.addQuestion(1, 1, 999, u"orphan"_s, {});
    open();
    EXPECT_EQ(count(), 31);

    topics().setListIndex(1);
    EXPECT_EQ(subTopics().itemText(0), u"Subtopic 2.1"_s);
    subTopics().setListIndex(0);
    subTopics().setSelected(0, false);
    EXPECT_EQ(count(), 26);
    EXPECT_EQ(topics().itemText(1), u"Topic 2 (1 of 2 topics)"_s);
    EXPECT_EQ(topics().listIndex(), 1);

    // The subtopics' own flags outlive their topic's.
    press("cmdClearAllTopics");
    EXPECT_EQ(count(), 0);
    topics().setSelected(0, true);
    EXPECT_EQ(count(), 11);
    press("cmdSelectAllTopics");
    EXPECT_EQ(count(), 26);
    EXPECT_EQ(topics().listIndex(), 0);

    topics().setListIndex(2);
    press("cmdClearAllSubTopics");
    EXPECT_EQ(count(), 16);
    EXPECT_EQ(topics().itemText(2), u"Topic 3 (0 of 2 topics)"_s);
    topics().setListIndex(1);
    topics().setListIndex(2);
    EXPECT_FALSE(subTopics().selected(0) || subTopics().selected(1));
    press("cmdSelectAllSubTopics");
    EXPECT_EQ(count(), 26);
    EXPECT_EQ(subTopics().listIndex(), 0);

    press("cmdSelectAllSub");
    EXPECT_EQ(count(), 31);
    EXPECT_EQ(topics().listIndex(), 0);
    // A number typed by hand lasts until the next change, which offers it again while it can.
    const auto offered = [&] {
        return control<QWidget>(window.get(), "cmdAskAgain")->isVisible() ? u"offered"_s
               : control<QLabel>(window.get(), "lblAsked")->isVisible()
                   ? control<QLabel>(window.get(), "lblAsked")->text()
                   : QString();
    };
    number().selectAll();
    QTest::keyClicks(&number(), u"7"_s);
    EXPECT_EQ(offered(), QString());
    topics().setListIndex(0);
    EXPECT_EQ(count(), 31);
    EXPECT_EQ(offered(), u"offered"_s);
    press("cmdClearAllTopics");
    EXPECT_EQ(offered(), u"You asked for 7; fewer are selected now."_s);
    press("cmdSelectAllTopics");
    press("cmdAskAgain");
    EXPECT_EQ(number().text(), u"7"_s);
    EXPECT_EQ(offered(), QString());
}

TEST_F(FrmMain, WorksByKeyboard)
{
    library.addGenerated(u"A"_s, 2, 2, 3);
    open();
    topics().setFocus();
    QTest::keyClick(&topics(), Qt::Key_Down);
    EXPECT_EQ(subTopics().itemText(0), u"Subtopic 2.1"_s);
    QTest::keyClick(&topics(), Qt::Key_Space);
    EXPECT_EQ(count(), 6);

    QStringList order;
    for (int i = 0; i < 16; ++i) {
        order.append(window->focusWidget()->objectName());
        QTest::keyClick(window->focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(order.join(u' ').toStdString(),
              "lstTopics cmdSelectAllTopics cmdClearAllTopics cmdSelectAllSub lstSubTopics "
              "cmdSelectAllSubTopics cmdClearAllSubTopics optSelectYes optTopicYes optKeyYes "
              "txtQuestions cmdCreate cboAssessment lstTopics cmdSelectAllTopics "
              "cmdClearAllTopics");

    // Enter asks for the slides, but for a button that has the focus.
    assessments().setFocus();
    QTest::keyClick(&assessments(), Qt::Key_Return);
    EXPECT_TRUE(assessments().view()->isVisible());
    assessments().hidePopup();
    for (QWidget* place : std::initializer_list<QWidget*>{&number(), &topics()}) {
        number().setText(u"x"_s);
        place->setFocus();
        messages.expectInform(u"Error"_s, u"Please enter a number for the number of questions."_s);
        QTest::keyClick(place, Qt::Key_Return);
        EXPECT_EQ(number().selectedText(), u"x"_s);
        EXPECT_EQ(window->focusWidget(), &number());
    }
    auto* clear = control<QPushButton>(window.get(), "cmdClearAllTopics");
    clear->setFocus();
    QTest::keyClick(clear, Qt::Key_Return);
    EXPECT_EQ(count(), 0);
}

TEST_F(FrmMain, BuildsTheDrawnQuestionsWithTheChosenOptionsAndTellsFailures)
{
    library.addGenerated(u"A"_s, 1, 1, 5, true);
    open();
    choose("optSelectNo");
    number().setText(u"3"_s);
    press("cmdCreate");
    EXPECT_EQ(calls(u"addPicture"_s).size(), 3);
    EXPECT_EQ(calls(u"setShapeText 1 Topic 1 - Subtopic 1.1"_s).size(), 3);
    EXPECT_EQ(calls(u"appendBlankSlide"_s).size(), 4);
    for (int i = 1; i <= 3; ++i) {
        const QString picture = calls(u"addPicture"_s).at(i - 1);
        const auto shown = std::find_if(
            state.QuestionList.begin(), state.QuestionList.end(), [&](const QuestionRecord& q) {
                return picture.contains(library.picturePath(q.PictureIndex));
            });
        ASSERT_NE(shown, state.QuestionList.end());
        EXPECT_EQ(calls(u"%1) %2"_s.arg(i).arg((*shown).Answer)).size(), 1);
    }

    choose("optTopicNo");
    press("cmdCreate");
    EXPECT_EQ(calls(u"appendBlankSlide"_s).size(), 4);
    EXPECT_EQ(calls(u"setShapeText 1 #1"_s).size(), 1);
    choose("optKeyNo");
    press("cmdCreate");
    EXPECT_EQ(calls(u"appendBlankSlide"_s).size(), 3);

    presentations.startFailure = u"The office does not start."_s;
    messages.expectInform(u"Error"_s, u"The office does not start."_s);
    press("cmdCreate");
    presentations.startFailure.clear();
    presentations.next.failAt(u"appendBlankSlide"_s);
    messages.expectInform(u"Error"_s, u"told to fail"_s);
    press("cmdCreate");
    presentations.next = {};
    presentations.next.failAt(u"addPicture"_s, 2);
    messages.expectInform(
        u"File Missing"_s,
        u"The creation of the powerpoint has been aborted because one of the questions selected "
        "is missing a picture file. Please go to Manage Assessments and delete that questions."
        "\n\ntold to fail\n\nIt happened at question 2 of the presentation (Topic 1 - Subtopic 1.1)."_s);
    messages.beforeAnswer = [] { EXPECT_EQ(QApplication::overrideCursor(), nullptr); };
    press("cmdCreate");
    EXPECT_TRUE(window->isEnabled());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(FrmMain, FollowsTheLibraryAndKeepsWhatIsTicked)
{
    library.addGenerated(u"A"_s, 3, 2, 2);
    library.addGenerated(u"B"_s, 1, 1, 1);
    open();
    const auto shown = [this] {
        QStringList rows{assessments().currentText()};
        for (ListBox* list : {&topics(), &subTopics()}) {
            for (int row = 0; row < list->listCount(); ++row) {
                rows.append((row == list->listIndex() ? u">"_s : QString()) +
                            (list->selected(row) ? u'+' : u'-') +
                            list->itemText(row).remove(u"topic "_s, Qt::CaseInsensitive));
            }
        }
        return rows.join(u' ').remove(u" topics)"_s).toStdString();
    };
    topics().setSelected(0, false);
    topics().setListIndex(1);
    subTopics().setListIndex(1);
    subTopics().setSelected(1, false);
    EXPECT_EQ(count(), 6);
    const std::string before = "A -1 (2 of 2 >+2 (1 of 2 +3 (2 of 2 +Sub2.1 >-Sub2.2";
    EXPECT_EQ(shown(), before);

    // Only the list that has changed is read again; a number typed by hand stays.
    state.TopicList(1).Topic = u"kept"_s;
    QTest::keyClicks(&number(), u"5"_s);
    owner.deleteQuestion(5);
    EXPECT_EQ(state.TopicList(1).Topic, u"kept"_s);
    EXPECT_EQ(number().text(), u"65"_s);
    owner.undo();
    number().setText(u"6"_s);

    const std::int32_t added = owner.addTopic(1, u"New"_s);
    owner.addSubtopic(1, 2, u"Sub2.3"_s);
    owner.addSubtopic(1, added, u"S"_s);
    EXPECT_EQ(shown(), "A -1 (2 of 2 >+2 (2 of 3 +3 (2 of 2 +New (1 of 1 "
                       "+Sub2.1 >-Sub2.2 +Sub2.3");
    for (int step = 0; step < 3; ++step) {
        owner.undo();
    }
    EXPECT_EQ(shown(), before);
    owner.deleteTopic(2);
    EXPECT_EQ(shown(), "A -1 (2 of 2 >+3 (2 of 2 +Sub3.1 >+Sub3.2");
    EXPECT_EQ(count(), 4);
    owner.rename({ItemKind::Assessment, 1}, u"Mine"_s);
    EXPECT_EQ(shown(), "Mine -1 (2 of 2 >+3 (2 of 2 +Sub3.1 >+Sub3.2");
    owner.deleteAssessment(1);
    EXPECT_EQ(shown(), "B >+1 (1 of 1 +Sub1.1");
    owner.deleteAssessment(2);
    EXPECT_EQ(shown(), "");
    EXPECT_EQ(count(), 0);
    EXPECT_TRUE(control<QLabel>(window.get(), "lblObstacle")->isVisible());
}

TEST_F(FrmMain, SurvivesALibraryThatFailsUnderIt)
{
    library.addGenerated(u"A"_s, 1, 1, 2);
    library.addGenerated(u"B"_s, 1, 1, 2);
    open();
    library.sql(u"DROP TABLE Questions"_s);
    messages.expectInform(u"Database Error"_s, u"There was an error loading the questions."_s);
    assessments().setListIndex(1);
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(topics().listCount(), 1);
    QFile::remove(library.databasePath());
    window->close();
}

} // namespace
} // namespace varnholt::test
