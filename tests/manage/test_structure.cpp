#include "manage_test.h"

#include <QFile>

namespace varnholt::test {
namespace {

// What every handler asks, says and does is checked over random actions; here stands what
// those do not reach.
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

    const QString unchanged = u"2,2 2,2 2,2 1,1 2"_s;
};

TEST_F(Structure, ReloadsWhatChangedAndLeavesTheKeyboardWhereWorkGoesOn)
{
    EXPECT_EQ(focus(), u"lstTopics"_s);
    browse(0, 1);
    // A reload sets the flags of a list again: those of the others must stay.
    state.QuestionList(1).Selected = false;
    asksDelete(Subtopic);
    saysDeleted(Subtopic);
    press("cmdDeleteSubtopic");
    EXPECT_FALSE(state.QuestionList(1).Selected);
    EXPECT_EQ(focus(), u"lstSubtopics"_s);

    topics().setListIndex(1);
    state.SubTopicList(1).Selected = false;
    asksDelete(Topic);
    saysDeleted(Topic);
    press("cmdDeleteTopic");
    EXPECT_FALSE(state.SubTopicList(1).Selected);
    QTest::keyClick(window->focusWidget(), Qt::Key_Down);
    EXPECT_EQ(topics().listIndex(), 0);

    subtopics().setListIndex(0);
    asksDelete(Question);
    saysDeleted(Question);
    QTest::keyClick(window.get(), Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !shown("fraQuestions"); }));
    EXPECT_TRUE(QFile::exists(library.picturePath(1)));
    EXPECT_EQ(subtopics().listIndex(), -1);
    QTest::keyClick(window->focusWidget(), Qt::Key_Down);
    EXPECT_EQ(text("lblQuestions"), u"Questions: 0"_s);

    asksName(Topic, u" Heat "_s);
    saysAdded(Topic, u"Heat"_s);
    press("cmdNewTopic");
    QTest::keyClick(window->focusWidget(), Qt::Key_Down);
    EXPECT_EQ(topics().itemText(topics().listIndex()), u"Heat"_s);

    asksName(Assessment, u" <b>Bold</b>"_s);
    saysAdded(Assessment, u" <b>Bold</b>"_s);
    press("cmdAddAssessment");
    EXPECT_EQ(focus(), u"cmdNewTopic"_s);
    for (const char* expected : {"cboAssessment", "cboAssessment", "cmdAddAssessment"}) {
        asksDelete(Assessment);
        saysDeleted(Assessment);
        press("cmdDeleteAssessment");
        EXPECT_EQ(focus(), QLatin1String(expected));
    }
    EXPECT_EQ(counts(), u"3,0 3,2 2,1 1,0 0"_s);
}

TEST_F(Structure, KeysBeyond16BitsAreHintedAtAndFail)
{
    library.sql(
        u"INSERT INTO Topics(TopicID,Topic,AssessmentNum) VALUES(32767,'Last',2),(32768,'Big',2);"
        "INSERT INTO SubTopics(SubtopicNum,TopicID,SubTopic,AssessmentNum) VALUES(32768,1,'Big',2),"
        "(32769,32768,'Big',2); INSERT INTO Questions(SOLIndex,TopicID,SubTopicNum,Answer,"
        "AssessmentNum) VALUES(70000,32768,32769,'x',2)"_s);
    testPicture({9, 9}).save(library.picturePath(70'000), "JPG");
    open();
    topics().setListIndex(2);
    EXPECT_FALSE(shown("lblTopicHint"));
    topics().setListIndex(3);
    EXPECT_EQ(text("lblTopicHint"),
              u"Topic number 32768 is above 32767 and cannot be deleted or take new subtopics."_s);
    asksName(Subtopic, u"S"_s);
    saysAddError(Subtopic);
    press("cmdNewSubtopic");
    // Browsing and deleting questions take every key.
    subtopics().setListIndex(0);
    EXPECT_TRUE(shown("lblSubtopicHint"));
    EXPECT_EQ(text("lblQuestionCount"), u"1 of 1"_s);
    asksDelete(Question);
    saysDeleted(Question);
    press("cmdDeleteQuestion");
    subtopics().setListIndex(0);
    asksDelete(Subtopic);
    saysDeleteError(Subtopic);
    press("cmdDeleteSubtopic");
    library.sql(u"UPDATE SubTopics SET Available=0 WHERE SubtopicNum=32769"_s);
    open();
    topics().setListIndex(3);
    asksDelete(Topic);
    saysDeleteError(Topic);
    press("cmdDeleteTopic");
    EXPECT_EQ(counts(), u"2,2 4,4 4,3 2,1 2"_s);

    // An assessment with such a key is added; only then its key proves too large.
    library.sql(u"INSERT INTO Assessments VALUES(32767,'Third',true)"_s);
    open();
    EXPECT_TRUE(shown("lblAssessmentHint"));
    asksName(Assessment, u"Fourth"_s);
    saysAddError(Assessment);
    press("cmdAddAssessment");
    EXPECT_EQ(assessments().listCount(), 0);
    EXPECT_EQ(counts(), u"4,4 4,4 4,3 2,1 2"_s);
}

TEST_F(Structure, FailuresAfterTheStatementStopTheRest)
{
    library.addQuestion(2, 1, 1, u"341"_s);
    browse(0, 0);
    // The question goes, but the list cannot be read again.
    library.sql(u"CREATE TRIGGER Bad AFTER UPDATE ON Questions BEGIN UPDATE Questions SET "
                "TopicID=99999999999 WHERE SOLIndex=2; END"_s);
    asksDelete(Question);
    saysDeleteError(Question);
    press("cmdDeleteQuestion");
    EXPECT_TRUE(shown("fraQuestions"));
    EXPECT_EQ(counts(), u"2,2 2,2 2,2 2,1 2"_s);

    // Opening such an assessment tells and goes on.
    says(u"Database Error"_s, u"There was an error loading the questions."_s);
    assessments().setListIndex(1);
    EXPECT_EQ(topics().listCount(), 2);
    asksName(Topic, u"Heat"_s);
    saysAddError(Topic);
    press("cmdNewTopic");
    EXPECT_EQ(topics().listCount(), 2);
    EXPECT_EQ(counts(), u"2,2 3,3 2,2 2,1 2"_s);
}

TEST_F(Structure, NoTopicsWithoutAnAssessmentAndNoDeletionByEnter)
{
    browse(0, 0);
    for (const char* button :
         {"cmdDeleteAssessment", "cmdDeleteTopic", "cmdDeleteSubtopic", "cmdDeleteQuestion"}) {
        control<QPushButton>(window.get(), button)->setFocus();
        QTest::keyClick(window->focusWidget(), Qt::Key_Return);
        QTest::keyClick(window->focusWidget(), Qt::Key_Enter);
    }
    state.CurrentAssessmentNum = 0;
    says(u"Error"_s, u"Cannot add a Topic until an Assessment has been created."_s);
    press("cmdNewTopic");
    says(u"Error"_s, u"Cannot add a Subtopic until an Assessment has been created."_s);
    press("cmdNewSubtopic");
    EXPECT_EQ(counts(), unchanged);
}

} // namespace
} // namespace varnholt::test
