// What the random actions do not come upon: the keyboard, hints, large keys, failures in the
// middle, changes made elsewhere, and what undoing tells.
#include "manage_test.h"

#include <QFile>

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
        library.sql(u"UPDATE History SET LastID=2"_s);
        open();
    }

    /// Rows and available rows of each table, and the remembered assessment.
    QString counts()
    {
        return library.value(
            u"SELECT (SELECT count(*)||','||sum(Available) FROM Assessments)||' '||(SELECT "
            "count(*)||','||sum(Available) FROM Topics)||' '||(SELECT count(*)||','||"
            "sum(Available) FROM SubTopics)||' '||(SELECT count(*)||','||sum(Available) FROM "
            "Questions)||' '||(SELECT LastID FROM History)"_s);
    }
    void undo() { QTest::keyClick(window.get(), Qt::Key_Z, Qt::ControlModifier); }
    void redo()
    {
        QTest::keyClick(window.get(), Qt::Key_Z, Qt::ControlModifier | Qt::ShiftModifier);
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
    EXPECT_TRUE(QTest::qWaitFor([this] { return !shown("fraQuestions"); }));
    EXPECT_TRUE(QFile::exists(library.picturePath(1)));
    asksName(Subtopic, u"New"_s);
    saysAdded(Subtopic, u"New"_s);
    press("cmdNewSubtopic");
    QTest::keyClick(&subtopics(), Qt::Key_Down);
    EXPECT_EQ(subtopics().itemText(subtopics().listIndex()), u"New"_s);

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
    EXPECT_EQ(counts(), u"2,0 2,1 3,2 1,0 0"_s);
    asksName(Assessment, u" <b>Bold</b>"_s);
    saysAdded(Assessment, u" <b>Bold</b>"_s);
    press("cmdAddAssessment");
    EXPECT_EQ(focus(), u"cmdNewTopic"_s);
}

TEST_F(Structure, ChangesMadeElsewhereAreShownAndThePlaceIsKept)
{
    library.addQuestion(2, 1, 1, u"341"_s);
    open();
    browse(0, 0);
    press("cmdRight");
    owner.rename({ItemKind::Topic, 1}, u"Oscillations"_s);
    owner.rename({ItemKind::Assessment, 2}, u"Physics"_s);
    owner.addTopics(2, {u"Heat"_s, u"Cold"_s});
    EXPECT_TRUE(QTest::qWaitFor([this] { return topics().listCount() == 4; }));
    EXPECT_EQ(topics().itemText(0), u"Oscillations"_s);
    EXPECT_EQ(assessments().itemText(1), u"Physics"_s);
    EXPECT_EQ(place(), u"2 of 2 <-"_s);
    owner.editQuestion(1, 1, 1, u"343"_s);
    owner.deleteQuestion(2);
    EXPECT_TRUE(QTest::qWaitFor([this] { return place() == u"1 of 1 --"_s; }));
    EXPECT_EQ(text("lblAnswer"), u"Answer: 343"_s);
    owner.deleteAssessment(2);
    EXPECT_TRUE(QTest::qWaitFor([this] { return assessments().listCount() == 1; }));
    EXPECT_EQ(enabledButtons(), u"AddAssessment DeleteAssessment AddNewQuestion NewTopic"_s);
    EXPECT_EQ(topics().listCount(), 0);
}

TEST_F(Structure, UndoAndRedoTellAndShowWhatTheyDid)
{
    library.addQuestion(2, 1, 1, u"341"_s);
    open();
    undo();
    EXPECT_EQ(text("lblUndo"), u"There is nothing to undo."_s);
    EXPECT_FALSE(enabled("cmdUndo") || shown("cmdRedo"));
    browse(0, 1);
    remove(Subtopic, deleted[Subtopic]);
    EXPECT_EQ(text("lblUndo"), u"“Light” deleted."_s);
    browse(0, 0);
    press("cmdRight");
    remove(Question, deleted[Question]);
    EXPECT_EQ(text("lblUndo"), u"Question deleted."_s);
    EXPECT_EQ(place(), u"1 of 1 --"_s);
    undo();
    EXPECT_EQ(text("lblUndo"), u"Undone: the question is back."_s);
    EXPECT_EQ(place(), u"2 of 2 <-"_s) << "it is on show";
    redo();
    EXPECT_EQ(text("lblUndo"), u"Question deleted."_s);
    EXPECT_EQ(place(), u"1 of 1 --"_s);
    EXPECT_FALSE(shown("cmdRedo"));
    undo();
    EXPECT_TRUE(shown("cmdRedo"));

    // From another assessment, by the button; the remembered one follows.
    assessments().setListIndex(0);
    press("cmdUndo");
    EXPECT_EQ(assessments().listIndex(), 1);
    EXPECT_EQ(subtopics().itemText(subtopics().listIndex()), u"Light"_s);
    asksName(Assessment, u"Third"_s);
    saysAdded(Assessment, u"Third"_s);
    press("cmdAddAssessment");
    undo();
    EXPECT_EQ(assessments().listCount(), 2);
    redo();
    EXPECT_EQ(assessments().listIndex(), 2);
    EXPECT_EQ(counts(), u"3,3 2,2 2,2 2,2 3"_s);

    // What has been changed since, and a library without a journal.
    library.sql(u"UPDATE Assessments SET AssessmentName='Fourth' WHERE AssessmentNum=3"_s);
    undo();
    EXPECT_EQ(text("lblUndo"), u"The last change cannot be undone, because this has been changed "
                               "since: “Fourth”."_s);
    library.sql(u"UPDATE PlusInfo SET Version=99"_s);
    owner.refresh();
    remove(Assessment, deleted[Assessment]);
    EXPECT_EQ(text("lblUndo"), u"The change is saved. It cannot be undone."_s);
    EXPECT_FALSE(enabled("cmdUndo"));
    const auto off = [this] { return text("lblUndo") == owner.features().reason; };
    undo();
    EXPECT_TRUE(off());
    EXPECT_EQ(control<QWidget>(window.get(), "cmdUndo")->toolTip(), owner.features().reason);
    asks(deletes[Assessment]);
    says(deleted[Assessment]);
    press("cmdDeleteAssessment");
    EXPECT_FALSE(off());
    assessments().setFocus();
    key(Qt::Key_F2);
    EXPECT_TRUE(off());
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
    asksName(Subtopic, u"S"_s);
    says(addingFails[Subtopic]);
    press("cmdNewSubtopic");
    // Browsing and deleting questions take every key.
    subtopics().setListIndex(0);
    EXPECT_EQ(text("lblSubtopicHint"),
              u"Subtopic number 32769 is above 32767 and cannot be deleted."_s);
    EXPECT_EQ(place(), u"1 of 1 --"_s);
    remove(Question, deleted[Question]);
    remove(Subtopic, deletingFails[Subtopic]);
    topics().setListIndex(4);
    remove(Topic, deletingFails[Topic]);
    EXPECT_EQ(counts(), u"2,2 5,5 4,4 2,1 2"_s);

    // The hints go with the rows they are about.
    browse(0, 2);
    asksName(Topic, u"T"_s);
    saysAdded(Topic, u"T"_s);
    press("cmdNewTopic");
    EXPECT_FALSE(shown("lblSubtopicHint"));
    browse(3, 0);
    library.sql(u"UPDATE Assessments SET Available=0 WHERE AssessmentNum=1"_s);
    remove(Assessment, deleted[Assessment]);
    EXPECT_FALSE(shown("lblTopicHint") || shown("lblSubtopicHint"));

    // An assessment with such a key is added; only then its key proves too large.
    library.sql(u"INSERT INTO Assessments VALUES(32767,'Third',false)"_s);
    open();
    EXPECT_TRUE(shown("lblAssessmentHint"));
    asksName(Assessment, u"Fourth"_s);
    says(addingFails[Assessment]);
    press("cmdAddAssessment");
    EXPECT_EQ(assessments().listCount(), 0);
    EXPECT_EQ(counts(), u"4,1 6,6 4,4 2,1 0"_s);
}

TEST_F(Structure, ReopensOnTheAssessmentLeftOrTheFirst)
{
    assessments().setListIndex(0);
    open();
    EXPECT_EQ(assessments().listIndex(), 0);
    EXPECT_EQ(state.CurrentAssessmentNum, 1);
    state.CurrentAssessmentNum = 99;
    open();
    EXPECT_EQ(assessments().listIndex(), 0);
    EXPECT_EQ(state.CurrentAssessmentNum, 1);
    state.CurrentAssessmentNum = 0;
    says({u"Error"_s, u"Cannot add a Topic until an Assessment has been created."_s});
    press("cmdNewTopic");
}

TEST_F(Structure, FailuresAfterTheStatementStopTheRest)
{
    library.addQuestion(2, 1, 1, u"341"_s);
    browse(0, 0);
    // The question goes, but the list cannot be read again.
    library.sql(u"CREATE TRIGGER Bad AFTER UPDATE ON Questions BEGIN UPDATE Questions SET "
                "TopicID=99999999999 WHERE SOLIndex=2; END"_s);
    remove(Question, deletingFails[Question]);
    EXPECT_TRUE(shown("fraQuestions"));
    EXPECT_EQ(counts(), u"2,2 2,2 2,2 2,1 2"_s);

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
