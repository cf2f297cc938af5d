#include "library/Library.h"
#include "selection/draw_wishes.h"
#include "selection/frmMain.h"
#include "support/gui.h"
#include "support/test_services.h"
#include "toolkit/ComboBox.h"
#include "toolkit/ListBox.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QProgressDialog>
#include <QPushButton>
#include <QRadioButton>

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <tuple>

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

    bool obstacle() { return control<QLabel>(window.get(), "lblObstacle")->isVisible(); }
    QString lastId() { return library.value(u"SELECT LastID FROM History"_s); }
    /// The calls of the last build that start so.
    QStringList calls(const QString& what) { return presentations.calls.filter(what); }

    Library owner{library.folder(), clock};
    std::unique_ptr<frmMain> window;
};

TEST_F(FrmMain, OpensOnTheRememberedAssessmentOrTheFirstWithEverythingSelected)
{
    open();
    EXPECT_EQ(assessments().listCount() + topics().listCount() + count(), 0);
    EXPECT_TRUE(obstacle());
    messages.expectInform(u"No Questions"_s, u"There are no questions selected."_s);
    for (const char* button :
         {"cmdCreate", "cmdSelectAllTopics", "cmdClearAllTopics", "cmdSelectAllSub",
          "cmdSelectAllSubTopics", "cmdClearAllSubTopics"}) {
        press(button);
    }
    window->close();
    EXPECT_EQ(lastId(), u"0"_s);

    library.addGenerated(u"First"_s, 1, 2, 3);
    library.addGenerated(u"Second"_s, 3, 2, 4);
    for (const auto& [remembered, name, questions] : {std::tuple{0, u"First"_s, 6},
                                                      {-5, u"First"_s, 6},
                                                      {99, u"First"_s, 6},
                                                      {2, u"Second"_s, 24}}) {
        library.sql(u"UPDATE History SET LastID=%1"_s.arg(remembered));
        open();
        EXPECT_EQ(assessments().currentText(), name);
        EXPECT_EQ(count(), questions);
        EXPECT_FALSE(obstacle());
        for (const char* option : {"optSelectYes", "optTopicYes", "optKeyYes"}) {
            EXPECT_TRUE(control<QRadioButton>(window.get(), option)->isChecked()) << option;
        }
    }
    EXPECT_EQ(random.seeds, std::vector<std::uint64_t>{1'700'000'000'000}); // once in a run
    assessments().setListIndex(0);
    EXPECT_EQ(count(), 6);
    window->close();
    EXPECT_EQ(lastId(), u"1"_s);
}

TEST_F(FrmMain, AgreesWithAModelWhateverIsTicked)
{
    library.addGenerated(u"A"_s, 3, 2, 5);
    // Its subtopic has gone: it counts whenever its topic is ticked.
    library.addQuestion(1, 1, 999, u"orphan"_s, {});
    open();
    struct Topic
    {
        bool ticked = true;
        std::array<bool, 2> subTopics{true, true};
    };
    std::array<Topic, 3> model;
    int focused = 0;
    std::mt19937 numbers(1);
    const auto below = [&numbers](unsigned limit) { return static_cast<int>(numbers() % limit); };
    for (int action = 0; action < 300; ++action) {
        const int sub = below(2);
        const int kind = below(8);
        if (kind <= 1) {
            focused = below(3);
        }
        Topic& topic = model[focused];
        if (kind == 0) {
            topics().tick(focused, topic.ticked = !topic.ticked);
        } else if (kind == 1) {
            topics().setListIndex(focused);
        } else if (kind == 2) {
            press("cmdSelectAllTopics");
            focused = 0;
        } else if (kind == 3) {
            press("cmdClearAllTopics");
        } else if (kind == 4) {
            subTopics().tick(sub, topic.subTopics[sub] = !topic.subTopics[sub]);
        } else if (kind == 5 || kind == 6) {
            press(kind == 5 ? "cmdSelectAllSubTopics" : "cmdClearAllSubTopics");
            topic.subTopics.fill(kind == 5);
            EXPECT_TRUE(kind == 6 || subTopics().listIndex() == 0);
        } else {
            press("cmdSelectAllSub");
            focused = 0;
        }
        int expected = 0;
        for (int i = 0; i < 3; ++i) {
            Topic& row = model[i];
            row.ticked = kind == 2 || (kind != 3 && row.ticked);
            if (kind == 7) {
                row.subTopics.fill(true);
            }
            const int ticked = row.subTopics[0] + row.subTopics[1];
            expected += row.ticked ? 5 * ticked + (i == 0 ? 1 : 0) : 0;
            EXPECT_EQ(topics().selected(i), row.ticked);
            EXPECT_EQ(topics().itemText(i), u"Topic %1 (%2 of 2 topics)"_s.arg(i + 1).arg(ticked));
        }
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(subTopics().itemText(i), u"Subtopic %1.%2"_s.arg(focused + 1).arg(i + 1));
            EXPECT_EQ(subTopics().selected(i), model[focused].subTopics[i]);
        }
        EXPECT_EQ(topics().listIndex(), focused);
        ASSERT_EQ(count(), expected) << action << ' ' << kind;
    }
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
    for (int i = 0; i < 14; ++i) {
        order.append(window->focusWidget()->objectName());
        QTest::keyClick(window->focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(
        order.join(u' ').toStdString(),
        "lstTopics txtQuota cmdSelectAllTopics cmdClearAllTopics cmdSelectAllSub cmdEvenShare "
        "lstSubTopics cmdSelectAllSubTopics cmdClearAllSubTopics optSelectYes optTopicYes "
        "optKeyYes txtQuestions cmdCreate");

    // A number typed by hand lasts until the next tick, which offers it again while it can.
    const auto offered = [&] {
        return control<QWidget>(window.get(), "cmdAskAgain")->isVisible() ? u"offered"_s
               : control<QLabel>(window.get(), "lblAsked")->isVisible()
                   ? control<QLabel>(window.get(), "lblAsked")->text()
                   : QString();
    };
    number().selectAll();
    QTest::keyClicks(&number(), u"5"_s);
    EXPECT_EQ(offered(), QString());
    topics().setListIndex(1);
    EXPECT_EQ(count(), 6);
    EXPECT_EQ(offered(), u"offered"_s);
    press("cmdClearAllTopics");
    EXPECT_EQ(offered(), u"You asked for 5; fewer are selected now."_s);
    press("cmdSelectAllTopics");
    press("cmdAskAgain");
    EXPECT_EQ(number().text(), u"5"_s);
    EXPECT_EQ(offered(), QString());

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
    choose("optTopicNo");
    number().setText(u"3"_s);
    press("cmdCreate");
    EXPECT_EQ(calls(u"addPicture"_s).size(), 3);
    EXPECT_EQ(calls(u"setShapeText 1 #"_s).size(), 3);
    EXPECT_EQ(calls(u"appendBlankSlide"_s).size(), 4); // with the answer key

    const auto fails = [&](const QString& title, const QString& text) {
        messages.expectInform(title, text);
        press("cmdCreate");
        presentations.next = {};
    };
    presentations.startFailure = u"The office does not start."_s;
    fails(u"Error"_s, presentations.startFailure);
    presentations.startFailure.clear();
    presentations.next.failAt(u"appendBlankSlide"_s);
    fails(u"Error"_s, u"told to fail"_s);
    presentations.next.failAt(u"addPicture"_s, 2);
    messages.beforeAnswer = [] { EXPECT_EQ(QApplication::overrideCursor(), nullptr); };
    fails(u"File Missing"_s,
          u"The creation of the powerpoint has been aborted because one of the questions selected "
          "is missing a picture file. Please go to Manage Assessments and delete that questions."
          "\n\ntold to fail\n\nIt happened at question 2 of the presentation (Topic 1 - Subtopic "
          "1.1)."_s);
    // Who cancels knows it and is told nothing; nothing more is built.
    presentations.next.onCall = [](const QString& call) {
        if (call.startsWith(u"addPicture"_s)) {
            for (QWidget* top : QApplication::topLevelWidgets()) {
                if (auto* bar = qobject_cast<QProgressDialog*>(top)) {
                    bar->findChild<QPushButton*>()->click();
                }
            }
        }
    };
    press("cmdCreate");
    EXPECT_EQ(calls(u"addPicture"_s).size(), 1);
    EXPECT_EQ(calls(u"finish"_s).size(), 0);
    EXPECT_EQ(owner.pastTests().list().size(), 1U) << "only the first is complete";
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
    EXPECT_TRUE(obstacle());
}

TEST_F(FrmMain, SaysWhatIsNewForAClassAndFixedForTopics)
{
    library.addGenerated(u"A"_s, 2, 1, 3);
    owner.recordTest({u"test"_s, 1, {}, 1, {}, {{1, 1, u"A1"_s, {}, {}}}}, TestKind::Slides);
    SaveQuotas(library.folder(), 1, {{1, 2}, {2, 1}});
    SaveWishes(library.folder(), {{}, DrawRule::Fresh});
    open();
    const auto says = [this](const char* label) {
        return control<QLabel>(window.get(), label)->text();
    };
    EXPECT_EQ(says("lblFresh") + u'/' + says("lblQuotas"), u"5 of 6 new/6 asked, 3 fixed"_s);
    control<QComboBox>(window.get(), "cboClass")->setEditText(u"10Z"_s);
    topics().setSelected(1, false);
    EXPECT_EQ(says("lblFresh") + u'/' + says("lblQuotas"),
              u"3 of 3 new for 10Z/3 asked, 2 fixed"_s);
    // A class stays chosen under its new name, also by a window that was not there.
    owner.recordTest({u"test"_s, 1, u"10Z"_s, 1, {}, {{1, 1, u"A1"_s, {}, {}}}}, TestKind::Slides);
    EXPECT_EQ(says("lblFresh"), u"2 of 3 new for 10Z"_s);
    const std::int32_t key = owner.pastTests().classNamed(u"10Z"_s);
    for (const QString& name : {u"11Z"_s, u"12Z"_s}) {
        owner.rename({ItemKind::Class, key}, name);
        EXPECT_TRUE(says("lblFresh").endsWith(u" new for "_s + name));
        window.reset();
        owner.rename({ItemKind::Class, key}, u"9"_s + name);
        open();
        EXPECT_TRUE(says("lblFresh").endsWith(u" new for 9"_s + name));
    }
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
