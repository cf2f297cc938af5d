#include "selection/frmMain.h"
#include "support/gui.h"
#include "support/test_services.h"
#include "toolkit/ComboBox.h"
#include "toolkit/ListBox.h"

#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include <gtest/gtest.h>

namespace varnholt {
namespace {

using test::click;
using test::control;

class FrmMain : public testing::Test, protected test::TestWorld
{
protected:
    void open()
    {
        if (!connection.isOpen()) {
            connection.open(library.databasePath());
        }
        window = std::make_unique<frmMain>(services, state, connection);
        window->show();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    }

    ListBox& topics() { return *control<ListBox>(window.get(), "lstTopics"); }
    ListBox& subTopics() { return *control<ListBox>(window.get(), "lstSubTopics"); }
    ComboBox& assessments() { return *control<ComboBox>(window.get(), "cboAssessment"); }
    QLineEdit& number() { return *control<QLineEdit>(window.get(), "txtQuestions"); }

    /// The two places that show the count, which must agree with the catalogue.
    int count()
    {
        const QString caption = control<QLabel>(window.get(), "lblQuestionCount")->text();
        EXPECT_EQ(number().text(), caption);
        EXPECT_EQ(caption.toInt(), state.SelectedQuestionCount);
        return state.SelectedQuestionCount;
    }

    QString lastId() { return library.value(QStringLiteral("SELECT LastID FROM History")); }

    std::unique_ptr<frmMain> window;
};

TEST_F(FrmMain, OpensOnTheRememberedAssessmentWithEverythingSelected)
{
    library.addGenerated(QStringLiteral("First"), 1, 1, 1);
    const auto second = library.addGenerated(QStringLiteral("Second"), 3, 2, 4);
    library.addGenerated(QStringLiteral("Third"), 1, 1, 2);
    library.sql(QStringLiteral("UPDATE History SET LastID=%1").arg(second));
    open();
    EXPECT_EQ(assessments().currentText(), QStringLiteral("Second"));
    EXPECT_EQ(state.CurrentAssessmentNum, second);
    ASSERT_EQ(topics().listCount(), 3);
    EXPECT_EQ(topics().itemText(2), QStringLiteral("Topic 3 (2 of 2 topics)"));
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
    EXPECT_EQ(lastId(), QString::number(state.CurrentAssessmentNum));
    open();
    EXPECT_EQ(assessments().currentText(), QStringLiteral("Third"));
    EXPECT_EQ(random.seeds.size(), 1U);
}

TEST_F(FrmMain, FallsBackToTheFirstAssessmentOrNone)
{
    open();
    EXPECT_EQ(assessments().listCount(), 0);
    EXPECT_EQ(topics().listCount(), 0);
    EXPECT_EQ(count(), 0);
    messages.expectInform(QStringLiteral("No Questions"),
                          QStringLiteral("There are no questions selected."));
    click(window.get(), "cmdCreate");
    for (const char* button : {"cmdSelectAllTopics", "cmdClearAllTopics", "cmdSelectAllSub",
                               "cmdSelectAllSubTopics", "cmdClearAllSubTopics"}) {
        click(window.get(), button);
    }
    window->close();
    EXPECT_EQ(lastId(), QStringLiteral("0"));

    const auto first = library.addGenerated(QStringLiteral("First"), 1, 2, 3);
    library.addGenerated(QStringLiteral("Second"), 1, 1, 1);
    for (const char* remembered : {"0", "-5", "99"}) {
        library.sql(QStringLiteral("UPDATE History SET LastID=%1").arg(QLatin1String(remembered)));
        open();
        EXPECT_EQ(state.CurrentAssessmentNum, first);
        EXPECT_EQ(assessments().currentText(), QStringLiteral("First"));
        EXPECT_EQ(count(), 6);
        window->close();
    }
}

TEST_F(FrmMain, CountsFollowTopicsAndSubtopics)
{
    const auto number1 = library.addGenerated(QStringLiteral("A"), 3, 2, 5);
    // Its subtopic has gone: it counts whenever its topic is ticked.
    library.addQuestion(number1, 1, 999, QStringLiteral("orphan"), {});
    open();
    EXPECT_EQ(count(), 31);

    topics().setListIndex(1);
    EXPECT_EQ(subTopics().itemText(0), QStringLiteral("Subtopic 2.1"));
    subTopics().setListIndex(0);
    subTopics().setSelected(0, false);
    EXPECT_EQ(count(), 26);
    EXPECT_EQ(topics().itemText(1), QStringLiteral("Topic 2 (1 of 2 topics)"));
    EXPECT_EQ(topics().listIndex(), 1);

    // The subtopics' own flags outlive their topic's.
    click(window.get(), "cmdClearAllTopics");
    EXPECT_EQ(count(), 0);
    topics().setSelected(0, true);
    EXPECT_EQ(count(), 11);
    click(window.get(), "cmdSelectAllTopics");
    EXPECT_EQ(count(), 26);
    EXPECT_EQ(topics().listIndex(), 0);

    topics().setListIndex(2);
    click(window.get(), "cmdClearAllSubTopics");
    EXPECT_EQ(count(), 16);
    EXPECT_EQ(topics().itemText(2), QStringLiteral("Topic 3 (0 of 2 topics)"));
    topics().setListIndex(1);
    topics().setListIndex(2);
    EXPECT_FALSE(subTopics().selected(0) || subTopics().selected(1));
    click(window.get(), "cmdSelectAllSubTopics");
    EXPECT_EQ(count(), 26);
    EXPECT_EQ(subTopics().listIndex(), 0);

    click(window.get(), "cmdSelectAllSub");
    EXPECT_EQ(count(), 31);
    EXPECT_EQ(topics().listIndex(), 0);
    // A number typed by hand lasts until the next change.
    number().setText(QStringLiteral("7"));
    topics().setListIndex(0);
    EXPECT_EQ(count(), 31);
}

TEST_F(FrmMain, WorksByKeyboard)
{
    library.addGenerated(QStringLiteral("A"), 2, 2, 3);
    open();
    topics().setFocus();
    QTest::keyClick(&topics(), Qt::Key_Down);
    EXPECT_EQ(subTopics().itemText(0), QStringLiteral("Subtopic 2.1"));
    QTest::keyClick(&topics(), Qt::Key_Space);
    EXPECT_EQ(count(), 6);
    subTopics().setFocus();
    QTest::keyClick(&subTopics(), Qt::Key_Down);
    QTest::keyClick(&topics(), Qt::Key_Space);
    EXPECT_EQ(count(), 12);

    QStringList order;
    QWidget* widget = &assessments();
    do {
        if (!widget->objectName().isEmpty() && (widget->focusPolicy() & Qt::TabFocus)) {
            order.append(widget->objectName());
        }
        widget = widget->nextInFocusChain();
    } while (widget != &assessments());
    EXPECT_EQ(order.join(u' ').toStdString(),
              "cboAssessment lstTopics cmdSelectAllTopics cmdClearAllTopics cmdSelectAllSub "
              "lstSubTopics cmdSelectAllSubTopics cmdClearAllSubTopics optSelectYes optSelectNo "
              "optTopicYes optTopicNo optKeyYes optKeyNo txtQuestions cmdCreate");

    control<QRadioButton>(window.get(), "optSelectNo")->setChecked(true);
    number().setText(QStringLiteral("x"));
    messages.expectInform(QStringLiteral("Error"),
                          QStringLiteral("Please enter a number for the number of questions."));
    QTest::keyClick(&number(), Qt::Key_Return);
    EXPECT_EQ(number().selectedText(), QStringLiteral("x"));
    EXPECT_EQ(QApplication::focusWidget(), &number());
}

TEST_F(FrmMain, BuildsTheDrawnQuestionsWithTheChosenOptions)
{
    library.addGenerated(QStringLiteral("A"), 1, 1, 5, true);
    open();
    control<QRadioButton>(window.get(), "optSelectNo")->setChecked(true);
    number().setText(QStringLiteral("3"));
    click(window.get(), "cmdCreate");
    QStringList& calls = presentations.calls;
    EXPECT_EQ(calls.filter(QStringLiteral("addPicture")).size(), 3);
    EXPECT_TRUE(calls.contains(QStringLiteral("setShapeText 1 Topic 1 - Subtopic 1.1")));
    EXPECT_TRUE(calls.contains(QStringLiteral("setShapeText 2 #3")));
    EXPECT_EQ(calls.filter(QStringLiteral("addBlankSlide")).size(), 4);
    for (int i = 1; i <= 3; ++i) {
        EXPECT_TRUE(calls.contains(QStringLiteral("setShapeText %1 %2) %3")
                                       .arg(i + 1)
                                       .arg(i)
                                       .arg(state.DrawPool(i).Answer)));
        EXPECT_TRUE(state.DrawPool(i).Selected);
    }
    EXPECT_EQ(calls.last(), QStringLiteral("finish"));

    control<QRadioButton>(window.get(), "optTopicNo")->setChecked(true);
    control<QRadioButton>(window.get(), "optKeyNo")->setChecked(true);
    click(window.get(), "cmdCreate");
    EXPECT_EQ(presentations.started, 2);
    EXPECT_EQ(calls.filter(QStringLiteral("addBlankSlide")).size(), 3);
    EXPECT_TRUE(calls.contains(QStringLiteral("setShapeText 1 #1")));
}

TEST_F(FrmMain, FailuresOfABuildAreToldAndTheWindowGoesOn)
{
    library.addGenerated(QStringLiteral("A"), 1, 1, 2, true);
    QFile::remove(library.picturePath(1));
    QFile::remove(library.picturePath(2));
    open();
    control<QRadioButton>(window.get(), "optSelectNo")->setChecked(true);

    presentations.startFailure = QStringLiteral("The office does not start.");
    messages.expectInform(QStringLiteral("Error"), QStringLiteral("The office does not start."));
    click(window.get(), "cmdCreate");
    presentations.startFailure.clear();

    presentations.next.failAt(QStringLiteral("addBlankSlide"));
    messages.expectInform(QStringLiteral("Error"), QStringLiteral("told to fail"));
    click(window.get(), "cmdCreate");

    presentations.next = {};
    presentations.next.failAt(QStringLiteral("addPicture"));
    messages.expectInform(
        QStringLiteral("File Missing"),
        QStringLiteral("The creation of the powerpoint has been aborted because one of the "
                       "questions selected is missing a picture file. Please go to Manage "
                       "Assessments and delete that questions."));
    click(window.get(), "cmdCreate");
    EXPECT_EQ(presentations.calls.last(), QStringLiteral("finish"));
    EXPECT_TRUE(window->isEnabled());
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST_F(FrmMain, SurvivesALibraryThatFailsUnderIt)
{
    library.addGenerated(QStringLiteral("A"), 1, 1, 2);
    library.addGenerated(QStringLiteral("B"), 1, 1, 2);
    open();
    library.sql(QStringLiteral("DROP TABLE Questions"));
    messages.expectInform(QStringLiteral("Database Error"),
                          QStringLiteral("There was an error loading the questions."));
    assessments().setListIndex(1);
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(topics().listCount(), 1);
    QFile::remove(library.databasePath());
    window->close();
}

} // namespace
} // namespace varnholt
