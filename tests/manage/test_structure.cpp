#include "manage_test.h"

#include <QFile>

namespace varnholt {
namespace {

using test::control;

const QString error = QStringLiteral("Error");

class Structure : public test::ManageTest
{
protected:
    Structure()
    {
        first = library.addAssessment(QStringLiteral("First"));
        second = library.addAssessment(QStringLiteral("Second"));
        waves = library.addTopic(second, QStringLiteral("Waves"));
        empty = library.addTopic(second, QStringLiteral("Empty"));
        sound = library.addSubTopic(second, waves, QStringLiteral("Sound"));
        light = library.addSubTopic(second, waves, QStringLiteral("Light"));
        question = library.addQuestion(second, waves, sound, QStringLiteral("340"));
        library.sql(QStringLiteral("UPDATE History SET LastID=%1").arg(second));
    }

    QString counts()
    {
        return library.value(
            QStringLiteral("SELECT (SELECT count(*)||','||sum(Available) FROM Assessments)||' '||"
                           "(SELECT count(*)||','||sum(Available) FROM Topics)||' '||"
                           "(SELECT count(*)||','||sum(Available) FROM SubTopics)||' '||"
                           "(SELECT count(*)||','||sum(Available) FROM Questions)||' '||"
                           "(SELECT LastID FROM History)"));
    }

    /// Chooses the topic and subtopic with the question.
    void browse()
    {
        topics().setListIndex(0);
        subtopics().setListIndex(0);
    }

    void expectDelete(const QString& what, bool answer = true)
    {
        messages.expectYesNo(
            QStringLiteral("Delete %1?").arg(what),
            QStringLiteral("Are you sure that you want to delete this %1?").arg(what.toLower()),
            answer);
    }
    void expectDeleteAssessment(bool answer = true)
    {
        messages.expectYesNo(
            QStringLiteral("Delete Assessment?"),
            QStringLiteral("Are you sure that you want to delete this assessment library.  "
                           "Selecting Yes will completely remove this assessment from the system."),
            answer);
    }
    void expectName(const char* title, const char* kind, const QString& answer)
    {
        messages.expectInput(
            QLatin1String(title),
            QStringLiteral("Please enter the name of the new %1.").arg(QLatin1String(kind)),
            answer);
    }

    std::int32_t first = 0, second = 0, waves = 0, empty = 0, sound = 0, light = 0, question = 0;
    const QString unchanged = QStringLiteral("2,2 2,2 2,2 1,1 2");
};

TEST_F(Structure, AddsAnAssessmentUntrimmedAndOpensIt)
{
    open();
    EXPECT_EQ(focus(), QStringLiteral("lstTopics"));
    browse();
    expectName("New Assessment Name", "assessment", QStringLiteral("  <b>Bold</b> "));
    messages.expectInform(QStringLiteral("New Assessment Added"),
                          QStringLiteral("  <b>Bold</b>  successfully added."));
    messages.beforeAnswer = [this, asked = 0]() mutable {
        if (++asked == 2) {
            EXPECT_EQ(assessments().currentText(), QStringLiteral("  <b>Bold</b> "));
        }
    };
    press("cmdAddAssessment");
    EXPECT_EQ(state.CurrentAssessmentNum, 3);
    EXPECT_EQ(topics().listCount() + subtopics().listCount(), 0);
    EXPECT_EQ(enabledButtons(), QStringLiteral("ADQt"));
    EXPECT_EQ(focus(), QStringLiteral("cmdNewTopic"));
    EXPECT_EQ(counts(), QStringLiteral("3,3 2,2 2,2 1,1 3"));
    // Only blanks are a name too.
    expectName("New Assessment Name", "assessment", QStringLiteral(" "));
    messages.expectInform(QStringLiteral("New Assessment Added"),
                          QStringLiteral("  successfully added."));
    press("cmdAddAssessment");
    EXPECT_EQ(library.value(QStringLiteral("SELECT '['||AssessmentName||']' FROM Assessments "
                                           "WHERE AssessmentNum > 2")),
              QStringLiteral("[  <b>Bold</b> ]\n[ ]"));
}

TEST_F(Structure, DeletesAssessmentsDownToNone)
{
    open();
    browse();
    expectDeleteAssessment(false);
    press("cmdDeleteAssessment");
    EXPECT_EQ(counts(), unchanged);
    EXPECT_TRUE(shown("fraQuestions"));

    expectDeleteAssessment();
    messages.expectInform(QStringLiteral("Assessment Deleted"),
                          QStringLiteral("The assessment was successfully deleted."));
    press("cmdDeleteAssessment");
    EXPECT_EQ(state.CurrentAssessmentNum, first);
    EXPECT_EQ(assessments().currentText(), QStringLiteral("First"));
    EXPECT_EQ(enabledButtons(), QStringLiteral("ADQt"));
    EXPECT_FALSE(shown("fraQuestions"));
    // What is below it stays available.
    EXPECT_EQ(counts(), QStringLiteral("2,1 2,2 2,2 1,1 0"));

    expectDeleteAssessment();
    messages.expectInform(QStringLiteral("Assessment Deleted"),
                          QStringLiteral("The assessment was successfully deleted."));
    press("cmdDeleteAssessment");
    EXPECT_EQ(state.CurrentAssessmentNum, 0);
    EXPECT_EQ(assessments().listCount(), 0);
    EXPECT_EQ(enabledButtons(), QStringLiteral("A"));
    EXPECT_EQ(focus(), QStringLiteral("cmdAddAssessment"));
    window->close();
    EXPECT_EQ(counts(), QStringLiteral("2,0 2,2 2,2 1,1 0"));
}

TEST_F(Structure, AddsTopicsAndSubtopicsTrimmed)
{
    open();
    browse();
    expectName("New Topic Name", "topic", QStringLiteral("  Heat "));
    messages.expectInform(QStringLiteral("New Topic Added"),
                          QStringLiteral("Heat successfully added."));
    press("cmdNewTopic");
    EXPECT_EQ(rows(topics()), (QStringList{QStringLiteral("Waves"), QStringLiteral("Empty"),
                                           QStringLiteral("Heat")}));
    EXPECT_EQ(topics().listIndex(), -1);
    EXPECT_EQ(subtopics().listCount(), 0);
    EXPECT_EQ(text("lblQuestions"), QString());
    EXPECT_FALSE(shown("fraQuestions"));
    EXPECT_EQ(enabledButtons(), QStringLiteral("ADQt"));

    // The keyboard goes on at the new topic.
    EXPECT_EQ(focus(), QStringLiteral("lstTopics"));
    QTest::keyClick(&topics(), Qt::Key_Down);
    EXPECT_EQ(topics().listIndex(), 2);
    EXPECT_EQ(enabledButtons(), QStringLiteral("ADQtTs"));
    expectName("New Topic Name", "subtopic", QStringLiteral(" Fire "));
    messages.expectInform(QStringLiteral("New Topic Added"),
                          QStringLiteral("Fire successfully added."));
    press("cmdNewSubtopic");
    EXPECT_EQ(rows(subtopics()), QStringList{QStringLiteral("Fire")});
    EXPECT_EQ(topics().listIndex(), 2);
    EXPECT_EQ(enabledButtons(), QStringLiteral("ADQtTs"));
    EXPECT_EQ(library.value(QStringLiteral("SELECT * FROM SubTopics WHERE SubtopicNum=3; "
                                           "SELECT * FROM Topics WHERE TopicID=3")),
              QStringLiteral("3|3|Fire|2|1\n3|Heat|2|1"));
}

TEST_F(Structure, CancelledAndEmptyNamesDoNothing)
{
    open();
    topics().setListIndex(0);
    for (const char* name : {"", "   "}) {
        if (!*name) {
            expectName("New Assessment Name", "assessment", QLatin1String(name));
            press("cmdAddAssessment");
        }
        expectName("New Topic Name", "topic", QLatin1String(name));
        press("cmdNewTopic");
        expectName("New Topic Name", "subtopic", QLatin1String(name));
        press("cmdNewSubtopic");
    }
    EXPECT_EQ(counts(), unchanged);
    EXPECT_EQ(topics().listIndex(), 0);
}

TEST_F(Structure, DeletesATopicOnlyWithoutSubtopics)
{
    open();
    topics().setListIndex(0);
    messages.expectInform(QStringLiteral("Delete Error"),
                          QStringLiteral("Cannot delete a topic that has subtopics.  You must "
                                         "delete delete all subtopics first."));
    press("cmdDeleteTopic");
    topics().setListIndex(1);
    expectDelete(QStringLiteral("Topic"), false);
    press("cmdDeleteTopic");
    EXPECT_EQ(counts(), unchanged);

    state.SubTopicList(1).Selected = false;
    expectDelete(QStringLiteral("Topic"));
    messages.expectInform(QStringLiteral("Topic Deleted"),
                          QStringLiteral("The topic was deleted successfully."));
    press("cmdDeleteTopic");
    EXPECT_EQ(rows(topics()), QStringList{QStringLiteral("Waves")});
    EXPECT_EQ(enabledButtons(), QStringLiteral("ADQt"));
    EXPECT_EQ(counts(), QStringLiteral("2,2 2,1 2,2 1,1 2"));
    // The topics alone were reloaded: a reload sets the flags of a list again.
    EXPECT_FALSE(state.SubTopicList(1).Selected);
    EXPECT_EQ(focus(), QStringLiteral("lstTopics"));
    QTest::keyClick(&topics(), Qt::Key_Down);
    EXPECT_EQ(topics().listIndex(), 0);
}

TEST_F(Structure, DeletesASubtopicOnlyWithoutQuestions)
{
    open();
    browse();
    messages.expectInform(
        QStringLiteral("Delete Error"),
        QStringLiteral("You cannot delete a subtopic that has questions associated with it.  The "
                       "questions for this subtopic need to be changed to another subtopic or "
                       "deleted."));
    press("cmdDeleteSubtopic");
    subtopics().setListIndex(1);
    EXPECT_EQ(text("lblQuestions"), QStringLiteral("Questions: 0"));
    expectDelete(QStringLiteral("Subtopic"), false);
    press("cmdDeleteSubtopic");
    EXPECT_EQ(counts(), unchanged);

    state.QuestionList(1).Selected = false;
    expectDelete(QStringLiteral("Subtopic"));
    messages.expectInform(QStringLiteral("Subtopic Deleted"),
                          QStringLiteral("The Subtopic was deleted successfully."));
    press("cmdDeleteSubtopic");
    EXPECT_EQ(rows(subtopics()), QStringList{QStringLiteral("Sound")});
    EXPECT_EQ(topics().listIndex(), 0);
    EXPECT_EQ(text("lblQuestions"), QString());
    EXPECT_EQ(enabledButtons(), QStringLiteral("ADQtTs"));
    EXPECT_FALSE(state.QuestionList(1).Selected);
    EXPECT_EQ(counts(), QStringLiteral("2,2 2,2 2,1 1,1 2"));
}

TEST_F(Structure, DeletesTheShownQuestionAndKeepsItsPicture)
{
    const auto other = library.addQuestion(second, waves, sound, QStringLiteral("341"));
    open();
    browse();
    press("cmdRight");
    expectDelete(QStringLiteral("Question"), false);
    press("cmdDeleteQuestion");
    EXPECT_EQ(text("lblQuestionCount"), QStringLiteral("2 of 2"));
    expectDelete(QStringLiteral("Question"));
    messages.expectInform(QStringLiteral("Question Deleted"),
                          QStringLiteral("Question deleted successfully."));
    QTest::keyClick(window.get(), Qt::Key_Delete, Qt::ControlModifier);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !shown("fraQuestions"); }));
    EXPECT_EQ(library.value(QStringLiteral("SELECT SOLIndex FROM Questions WHERE Available=0")),
              QString::number(other));
    EXPECT_TRUE(QFile::exists(library.picturePath(other)));
    EXPECT_FALSE(shown("fraQuestions"));
    EXPECT_EQ(topics().listIndex(), 0);
    EXPECT_EQ(subtopics().listIndex(), -1);
    EXPECT_EQ(state.QuestionList.upperBound(), 1);
    // The keyboard goes on at the subtopic that the question was in.
    EXPECT_EQ(focus(), QStringLiteral("lstSubtopics"));
    QTest::keyClick(&subtopics(), Qt::Key_Down);
    EXPECT_EQ(text("lblQuestionCount"), QStringLiteral("1 of 1"));
}

TEST_F(Structure, EveryHandlerReportsAFailedStatementInItsOwnWords)
{
    struct Case
    {
        const char* button;
        const char* table;
        std::function<void()> script;
        const char* message;
    };
    const QString name = QStringLiteral("Name");
    const std::vector<Case> cases{
        {"cmdAddAssessment", "Assessments",
         [&] { expectName("New Assessment Name", "assessment", name); },
         "There was an error adding this assessment."},
        {"cmdDeleteAssessment", "Assessments", [&] { expectDeleteAssessment(); },
         "There was an error deleting this assessment."},
        {"cmdNewTopic", "Topics", [&] { expectName("New Topic Name", "topic", name); },
         "There was an error adding this topic."},
        {"cmdNewSubtopic", "SubTopics", [&] { expectName("New Topic Name", "subtopic", name); },
         "There was an error adding this topic."},
        {"cmdDeleteTopic", "Topics", [&] { expectDelete(QStringLiteral("Topic")); },
         "There was an error deleting this topic."},
        {"cmdDeleteSubtopic", "SubTopics", [&] { expectDelete(QStringLiteral("Subtopic")); },
         "There was an error deleting this subtopic."},
        {"cmdDeleteQuestion", "Questions", [&] { expectDelete(QStringLiteral("Question")); },
         "There was an error in deleting the question."},
    };
    enum class Cause
    {
        BrokenTable,
        ReadOnly,
        Removed
    };
    open();
    for (const Cause cause : {Cause::BrokenTable, Cause::ReadOnly, Cause::Removed}) {
        for (const Case& c : cases) {
            SCOPED_TRACE(c.button);
            const bool onTopic = QLatin1String(c.button) == QLatin1String("cmdDeleteTopic");
            const bool onEmpty = QLatin1String(c.button) == QLatin1String("cmdDeleteSubtopic");
            topics().setListIndex(onTopic ? 1 : 0);
            if (!onTopic) {
                subtopics().setListIndex(onEmpty ? 1 : 0);
            }
            const QString before = enabledButtons() + text("lblQuestionCount");
            if (cause == Cause::BrokenTable) {
                breakTable(QLatin1String(c.table));
            } else if (cause == Cause::ReadOnly) {
                connection.execute(QStringLiteral("PRAGMA query_only = true"));
            } else if (QFile::exists(library.databasePath())) {
                QFile::rename(library.databasePath(), library.databasePath() + u'x');
            }
            c.script();
            messages.expectInform(error, QLatin1String(c.message));
            press(c.button);
            messages.verify();
            // The window stands as it was.
            EXPECT_EQ(enabledButtons() + text("lblQuestionCount"), before);
            EXPECT_EQ(assessments().currentText(), QStringLiteral("Second"));
            if (cause == Cause::BrokenTable) {
                library.sql(QStringLiteral("DROP TRIGGER Break%1INSERT; DROP TRIGGER "
                                           "Break%1UPDATE")
                                .arg(QLatin1String(c.table)));
            } else if (cause == Cause::ReadOnly) {
                connection.execute(QStringLiteral("PRAGMA query_only = false"));
            }
        }
    }
    window->close(); // cannot remember the assessment any more, and says nothing
    QFile::rename(library.databasePath() + u'x', library.databasePath());
    EXPECT_EQ(counts(), unchanged);
}

TEST_F(Structure, ApostrophesFailAndAddNothing)
{
    open();
    topics().setListIndex(0);
    for (const char* evil : {"O'Brien", "x',true); Delete from Topics; --"}) {
        expectName("New Assessment Name", "assessment", QLatin1String(evil));
        messages.expectInform(error, QStringLiteral("There was an error adding this assessment."));
        press("cmdAddAssessment");
        expectName("New Topic Name", "topic", QLatin1String(evil));
        messages.expectInform(error, QStringLiteral("There was an error adding this topic."));
        press("cmdNewTopic");
        expectName("New Topic Name", "subtopic", QLatin1String(evil));
        messages.expectInform(error, QStringLiteral("There was an error adding this topic."));
        press("cmdNewSubtopic");
    }
    EXPECT_EQ(counts(), unchanged);
}

TEST_F(Structure, KeysBeyond16BitsAreHintedAtAndFail)
{
    library.sql(QStringLiteral("INSERT INTO Topics(TopicID,Topic,AssessmentNum) VALUES"
                               "(32767,'Last',2),(32768,'Big',2);"
                               "INSERT INTO SubTopics(SubtopicNum,TopicID,SubTopic,AssessmentNum) "
                               "VALUES(32768,1,'Big',2),(32769,32768,'Big',2);"
                               "INSERT INTO Questions(SOLIndex,TopicID,SubTopicNum,Answer,"
                               "AssessmentNum) VALUES(70000,32768,32769,'x',2)"));
    test::testPicture({9, 9}).save(library.picturePath(70'000), "JPG");
    open();
    topics().setListIndex(2);
    EXPECT_FALSE(shown("lblTopicHint"));
    topics().setListIndex(3);
    EXPECT_TRUE(shown("lblTopicHint"));
    EXPECT_TRUE(enabled("cmdNewSubtopic"));
    expectName("New Topic Name", "subtopic", QStringLiteral("S"));
    messages.expectInform(error, QStringLiteral("There was an error adding this topic."));
    press("cmdNewSubtopic");
    // Browsing and deleting questions take every key.
    subtopics().setListIndex(0);
    EXPECT_EQ(text("lblQuestionCount"), QStringLiteral("1 of 1"));
    expectDelete(QStringLiteral("Question"));
    messages.expectInform(QStringLiteral("Question Deleted"),
                          QStringLiteral("Question deleted successfully."));
    press("cmdDeleteQuestion");
    library.sql(QStringLiteral("UPDATE SubTopics SET Available=0 WHERE SubtopicNum=32769"));

    topics().setListIndex(0);
    EXPECT_FALSE(shown("lblTopicHint"));
    subtopics().setListIndex(2);
    EXPECT_TRUE(shown("lblSubtopicHint"));
    expectDelete(QStringLiteral("Subtopic"));
    messages.expectInform(error, QStringLiteral("There was an error deleting this subtopic."));
    press("cmdDeleteSubtopic");
    open();
    topics().setListIndex(3);
    expectDelete(QStringLiteral("Topic"));
    messages.expectInform(error, QStringLiteral("There was an error deleting this topic."));
    press("cmdDeleteTopic");
    EXPECT_EQ(counts(), QStringLiteral("2,2 4,4 4,3 2,1 2"));

    // An assessment with such a key is added; only then its key proves too large.
    library.sql(QStringLiteral("INSERT INTO Assessments VALUES(32767,'Third',true)"));
    open();
    EXPECT_TRUE(shown("lblAssessmentHint"));
    expectName("New Assessment Name", "assessment", QStringLiteral("Fourth"));
    messages.expectInform(error, QStringLiteral("There was an error adding this assessment."));
    press("cmdAddAssessment");
    EXPECT_EQ(assessments().listCount(), 0);
    EXPECT_EQ(counts(), QStringLiteral("4,4 4,4 4,3 2,1 2"));
}

TEST_F(Structure, FailuresAfterTheStatementStopTheRest)
{
    open();
    browse();
    // The question goes, but the list cannot be read again.
    library.sql(QStringLiteral("CREATE TRIGGER Bad AFTER UPDATE ON Questions BEGIN UPDATE "
                               "Questions SET TopicID=99999999999 WHERE SOLIndex=2; END"));
    library.addQuestion(second, waves, sound, QStringLiteral("341"));
    expectDelete(QStringLiteral("Question"));
    messages.expectInform(error, QStringLiteral("There was an error in deleting the question."));
    press("cmdDeleteQuestion");
    EXPECT_TRUE(shown("fraQuestions"));
    EXPECT_EQ(counts(), QStringLiteral("2,2 2,2 2,2 2,1 2"));

    // Opening such an assessment tells and goes on.
    messages.expectInform(QStringLiteral("Database Error"),
                          QStringLiteral("There was an error loading the questions."));
    assessments().setListIndex(1);
    EXPECT_EQ(topics().listCount(), 2);
    expectName("New Topic Name", "topic", QStringLiteral("Heat"));
    messages.expectInform(error, QStringLiteral("There was an error adding this topic."));
    press("cmdNewTopic");
    EXPECT_EQ(topics().listCount(), 2);
    EXPECT_EQ(counts(), QStringLiteral("2,2 3,3 2,2 2,1 2"));
}

TEST_F(Structure, WithoutAnAssessmentTopicsAreRefused)
{
    open();
    topics().setListIndex(0);
    state.CurrentAssessmentNum = 0;
    messages.expectInform(error, QStringLiteral("Cannot add a Topic until an Assessment has been "
                                                "created."));
    press("cmdNewTopic");
    messages.expectInform(error, QStringLiteral("Cannot add a Subtopic until an Assessment has "
                                                "been created."));
    press("cmdNewSubtopic");
    EXPECT_EQ(counts(), unchanged);
}

TEST_F(Structure, EnterDeletesNothing)
{
    open();
    browse();
    for (const char* button :
         {"cmdDeleteAssessment", "cmdDeleteTopic", "cmdDeleteSubtopic", "cmdDeleteQuestion"}) {
        control<QPushButton>(window.get(), button)->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Enter);
    }
    EXPECT_EQ(counts(), unchanged);
}

} // namespace
} // namespace varnholt
