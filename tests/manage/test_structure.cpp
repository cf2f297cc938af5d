// What the random actions do not come upon: the keyboard, hints, large keys, failures in the
// middle, and what undoing tells.
#include "manage_test.h"

#include <QFile>
#include <QMenu>
#include <QPlainTextEdit>

namespace varnholt::test {
namespace {

class Structure : public ManageTest
{
protected:
    Structure()
    {
        library.addAssessment(u"First"_s);
        library.addAssessment(u"Second"_s);
        library.addTopic(2, u"Waves"_s);
        library.addTopic(2, u"Empty"_s);
        library.addSubTopic(2, 1, u"Sound"_s);
        library.addSubTopic(2, 1, u"Light"_s);
        library.addQuestion(2, 1, 1, u"340"_s);
        library.addQuestion(2, 1, 1, u"341"_s);
        library.sql(u"UPDATE History SET LastID=2"_s);
        open();
    }

    QString remembered() { return library.value(u"SELECT LastID FROM History"_s); }
    QAction* entry(const char* more, int index)
    {
        QMenu* menu = control<QPushButton>(window.get(), more)->menu();
        Q_EMIT menu->aboutToShow();
        return menu->actions()[index];
    }
    QString available(const char* table)
    {
        return library.value(u"SELECT sum(Available) FROM "_s + QLatin1String(table));
    }
};

TEST_F(Structure, ReadsOnlyWhatChangedAndLeavesTheKeyboardWhereWorkGoesOn)
{
    EXPECT_EQ(focus(), u"lstTopics"_s);
    for (int i = 0; i < 7; ++i) {
        key(Qt::Key_Tab);
    }
    EXPECT_EQ(focus(), u"cmdDeleteAssessment"_s); // round by the assessment's controls
    browse(0, 1);
    state.QuestionList(1).Answer = u"kept"_s;
    remove(Subtopic, deleted[Subtopic]);
    EXPECT_EQ(state.QuestionList(1).Answer, u"kept"_s);
    EXPECT_EQ(focus(), u"lstSubtopics"_s);
    topics().setListIndex(1);
    state.SubTopicList(1).SubTopic = u"kept"_s;
    remove(Topic, deleted[Topic]);
    EXPECT_EQ(state.SubTopicList(1).SubTopic, u"kept"_s);
    key(Qt::Key_Down);
    EXPECT_EQ(topics().listIndex(), 0);

    subtopics().setListIndex(0);
    asks(deletes[Question]);
    says(deleted[Question]);
    QTest::keyClick(window.get(), Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_TRUE(QTest::qWaitFor([this] { return place() == u"1 of 1 --"_s; }));
    EXPECT_TRUE(QFile::exists(library.picturePath(1)));
    // Enter never deletes.
    for (const char* button : deleteButtons) {
        control<QPushButton>(window.get(), button)->setFocus();
        key(Qt::Key_Return);
        key(Qt::Key_Enter);
    }
    for (const char* expected : {"cboAssessment", "cmdAddAssessment"}) {
        remove(Assessment, deleted[Assessment]);
        EXPECT_EQ(focus(), QLatin1String(expected));
    }
    EXPECT_EQ(remembered(), u"0"_s);
    add(Assessment, u" <b>Bold</b>"_s, added(Assessment, u" <b>Bold</b>"_s));
    EXPECT_EQ(focus(), u"cmdNewTopic"_s);
}

TEST_F(Structure, UndoAndRedoTellAndShowWhatTheyDid)
{
    undo();
    EXPECT_EQ(text("lblUndo"), u"There is nothing to undo."_s);
    EXPECT_FALSE(enabled("cmdUndo") || shown("cmdRedo"));
    browse(0, 1);
    remove(Subtopic, deleted[Subtopic]);
    EXPECT_EQ(text("lblUndo"), u"“Light” deleted."_s);
    browse(0, 0);
    press("cmdRight");
    remove(Question, deleted[Question]);
    undo();
    EXPECT_EQ(text("lblUndo"), u"Undone: the question is back."_s);
    EXPECT_EQ(place(), u"2 of 2 <-"_s) << "it is on show";
    redo();
    EXPECT_EQ(text("lblUndo"), u"Question deleted."_s);
    EXPECT_FALSE(shown("cmdRedo"));
    undo();

    // From another assessment, by the button.
    assessments().setListIndex(0);
    press("cmdUndo");
    EXPECT_EQ(assessments().listIndex(), 1);
    EXPECT_EQ(subtopics().itemText(subtopics().listIndex()), u"Light"_s);

    // What has been changed since, and a library without a journal.
    redo();
    library.sql(u"UPDATE SubTopics SET SubTopic='Dark' WHERE SubtopicNum=2"_s);
    undo();
    EXPECT_EQ(text("lblUndo"), u"The last change cannot be undone, because this has been changed "
                               "since: “Dark”."_s);
    library.sql(u"UPDATE PlusInfo SET Version=99"_s);
    owner.refresh();
    topics().setListIndex(1);
    remove(Topic, deleted[Topic]);
    EXPECT_EQ(text("lblUndo"), u"The change is saved. It cannot be undone."_s);
    EXPECT_FALSE(enabled("cmdUndo"));
    const auto off = [this] { return text("lblUndo") == owner.features().reason; };
    undo();
    EXPECT_TRUE(off());
    EXPECT_EQ(control<QWidget>(window.get(), "cmdUndo")->toolTip(), owner.features().reason);
    remove(Assessment, deleted[Assessment]);
    EXPECT_FALSE(off());
    assessments().setFocus();
    key(Qt::Key_F2);
    EXPECT_TRUE(off());
}

TEST_F(Structure, NamesAreChangedByF2WithTheRulesOfNewOnes)
{
    const auto rename = [&](const std::function<void()>& work) {
        inDialog([&] { key(Qt::Key_F2); }, work);
    };
    browse(0, 1);
    topics().setFocus();
    rename([&] {
        EXPECT_EQ(field("txtName").selectedText(), u"Waves"_s);
        typed(Qt::Key_Backspace);
        EXPECT_EQ(hint(), u"A name is needed."_s);
        typed(u"O'k"_s);
        EXPECT_EQ(hint(), u"An apostrophe (') cannot be saved. Use ’ instead."_s);
        typed(Qt::Key_Return);
        EXPECT_TRUE(dialog->isVisible());
        field("txtName").setText(u"Empty"_s);
        EXPECT_TRUE(hint().endsWith(u"has this name already. Both may have it."_s));
        field("txtName").setText(u"Better"_s);
        EXPECT_EQ(hint(), QString());
        typed(Qt::Key_Return);
        EXPECT_FALSE(dialog->isVisible());
    });
    EXPECT_EQ(text("lblUndo"), u"The new name is “Better”."_s);
    EXPECT_EQ(focus(), u"lstTopics"_s);
    undo();
    // The same name is no change, and Esc leaves.
    rename([&] {
        EXPECT_EQ(hint(), QString());
        typed(Qt::Key_Return);
    });
    rename([&] { typed(Qt::Key_Escape); });
    EXPECT_TRUE(shown("cmdRedo"));
    subtopics().setListIndex(-1);
    EXPECT_FALSE(entry("cmdSubtopicMore", 0)->isEnabled());
    EXPECT_TRUE(entry("cmdTopicMore", 0)->isEnabled());
}

TEST_F(Structure, SeveralNamesAreAddedAsOneStep)
{
    topics().setListIndex(0);
    inDialog([this] { entry("cmdSubtopicMore", 1)->trigger(); },
             [this] {
                 auto* names = control<QPlainTextEdit>(dialog, "txtNames");
                 EXPECT_FALSE(control<QWidget>(dialog, "cmdAdd")->isEnabled());
                 names->setPlainText(u"One\n\n O'k \nit's\na'\nb'\tc"_s);
                 const QString no = u" An apostrophe (') cannot be saved. Use ’ instead.\n"_s;
                 EXPECT_EQ(hint(), u"Line 3:"_s + no + u"Line 4:"_s + no + u"Line 5:"_s + no +
                                       u"One more line cannot be saved either."_s);
                 messages.expectYesNo(dialog->windowTitle(), dropsNames, false);
                 typed(Qt::Key_Escape);
                 EXPECT_TRUE(dialog->isVisible());
                 names->setPlainText(u"One\n\n Two\t2 \n"_s);
                 click(dialog, "cmdAdd");
             });
    EXPECT_EQ(subtopics().itemText(3), u"Two 2"_s);
    EXPECT_EQ(text("lblUndo"), u"“One” and one more added."_s);
    undo();
    EXPECT_EQ(text("lblUndo"), u"Undone: “One” and one more are no longer there."_s);
}

TEST_F(Structure, KeysBeyond16BitsAreHintedAtAndFail)
{
    library.sql(
        u"INSERT INTO Topics(TopicID,Topic,AssessmentNum) VALUES(32767,'Last',2),(32768,'Big',2),"
        "(32769,'Bare',2); INSERT INTO SubTopics(SubtopicNum,TopicID,SubTopic,AssessmentNum) "
        "VALUES(32768,1,'Big',2),(32769,32768,'Big',2); INSERT INTO Questions(SOLIndex,TopicID,"
        "SubTopicNum,Answer,AssessmentNum) VALUES(70000,32768,32769,'x',2)"_s);
    testPicture({9, 9}).save(library.picturePath(70'000), "JPG");
    open();
    topics().setListIndex(2);
    EXPECT_FALSE(shown("lblTopicHint"));
    topics().setListIndex(3);
    EXPECT_EQ(text("lblTopicHint"),
              u"Topic number 32768 is above 32767 and cannot be deleted or take new subtopics."_s);
    add(Subtopic, u"S"_s, addingFails[Subtopic]);
    // Browsing and deleting questions take every key.
    subtopics().setListIndex(0);
    EXPECT_EQ(text("lblSubtopicHint"),
              u"Subtopic number 32769 is above 32767 and cannot be deleted."_s);
    remove(Question, deleted[Question]);
    remove(Subtopic, deletingFails[Subtopic]);
    topics().setListIndex(4);
    remove(Topic, deletingFails[Topic]);
    EXPECT_EQ(available("Topics") + available("SubTopics") + available("Questions"), u"542"_s);

    // The hints go with the rows they are about.
    browse(0, 2);
    add(Topic, u"T"_s, added(Topic, u"T"_s));
    EXPECT_FALSE(shown("lblSubtopicHint"));
    browse(3, 0);
    library.sql(u"UPDATE Assessments SET Available=0 WHERE AssessmentNum=1"_s);
    remove(Assessment, deleted[Assessment]);
    EXPECT_FALSE(shown("lblTopicHint") || shown("lblSubtopicHint"));

    // An assessment with such a key is added; only then its key proves too large.
    library.sql(u"INSERT INTO Assessments VALUES(32767,'Third',false)"_s);
    open();
    EXPECT_TRUE(shown("lblAssessmentHint"));
    add(Assessment, u"Fourth"_s, addingFails[Assessment]);
    EXPECT_EQ(assessments().listCount(), 0);
    EXPECT_EQ(available("Assessments") + remembered(), u"10"_s);
}

TEST_F(Structure, ReopensOnTheAssessmentLeftOrTheFirst)
{
    assessments().setListIndex(0);
    for (const int current : {1, 99}) {
        state.CurrentAssessmentNum = current;
        open();
        EXPECT_EQ(assessments().listIndex(), 0);
        EXPECT_EQ(state.CurrentAssessmentNum, 1);
    }
    state.CurrentAssessmentNum = 0;
    says({u"Error"_s, u"Cannot add a Topic until an Assessment has been created."_s});
    press("cmdNewTopic");
}

TEST_F(Structure, FailuresAfterTheStatementStopTheRest)
{
    browse(0, 0);
    // The question goes, but the list cannot be read again.
    library.sql(u"CREATE TRIGGER Bad AFTER UPDATE ON Questions BEGIN UPDATE Questions SET "
                "TopicID=99999999999 WHERE SOLIndex=2; END"_s);
    remove(Question, deletingFails[Question]);
    EXPECT_TRUE(shown("fraQuestions"));
    EXPECT_EQ(available("Questions"), u"1"_s);

    // Opening such an assessment tells and goes on.
    const Box unreadable{u"Database Error"_s, u"There was an error loading the questions."_s};
    says(unreadable);
    assessments().setListIndex(1);
    EXPECT_EQ(topics().listCount(), 2);
    // A subtopic whose questions were not read does not pass for empty.
    topics().setListIndex(0);
    says(unreadable);
    subtopics().setListIndex(0);
    EXPECT_FALSE(enabled("cmdDeleteSubtopic"));
    EXPECT_EQ(subtopics().listCount(), 0);
    library.sql(u"DROP TRIGGER Bad; UPDATE Questions SET TopicID=1 WHERE TopicID>99999"_s);
    browse(0, 0);
    EXPECT_TRUE(enabled("cmdDeleteSubtopic"));
}

} // namespace
} // namespace varnholt::test
