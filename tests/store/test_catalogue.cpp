#include "store/catalogue.h"
#include "store/statements.h"
#include "support/fakes.h"
#include "support/test_library.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace varnholt {
namespace {

using test::ScriptedMessageBoxes;
using test::TestLibrary;

struct RecordingCaptions : SelectionCaptions
{
    QString count;
    QStringList rows;

    void setQuestionCount(const QString& caption) override { count = caption; }
    void setTopicRows(const QStringList& texts) override { rows = texts; }
};

class Catalogue : public testing::Test
{
protected:
    void open() { connection.open(library.databasePath()); }

    void load(std::int32_t assessment)
    {
        state.CurrentAssessmentNum = assessment;
        LoadCurrentAssessment(state, connection, messages);
    }

    TestLibrary library;
    Connection connection;
    ProgramState state;
    ScriptedMessageBoxes messages;
};

TEST_F(Catalogue, LoadsAvailableRowsOfTheAssessmentWithDefaults)
{
    const auto other = library.addGenerated(QStringLiteral("Other"), 2, 2, 2);
    const auto mine = library.addAssessment(QStringLiteral("Mine & <b>\"quoted\"</b> 😀"));
    const auto algebra = library.addTopic(mine, QStringLiteral("Algebra"));
    const auto gone = library.addTopic(mine, QStringLiteral("Gone"));
    const auto linear = library.addSubTopic(mine, algebra, QStringLiteral("Linear\nequations"));
    const auto orphan = library.addQuestion(mine, gone, 999, QString(10'000, u'ä'), {});
    const auto deleted = library.addQuestion(mine, algebra, linear, QStringLiteral("x"), {});
    const auto kept = library.addQuestion(mine, algebra, linear, QStringLiteral("B"), {});
    library.sql(QStringLiteral("UPDATE Topics SET Available=false WHERE TopicID=%1;"
                               "UPDATE Questions SET Available=false WHERE SOLIndex=%2;"
                               "UPDATE History SET LastID=77;"
                               "UPDATE Assessments SET Available=0 WHERE AssessmentNum=%3")
                    .arg(gone)
                    .arg(deleted)
                    .arg(other));
    open();
    LoadAssessments(state, connection, messages);
    load(mine);

    ASSERT_EQ(state.AssessmentList.upperBound(), 1);
    EXPECT_EQ(state.AssessmentList(1).AssessmentNum, mine);
    EXPECT_EQ(state.AssessmentList(1).AssessmentName, QStringLiteral("Mine & <b>\"quoted\"</b> 😀"));
    EXPECT_EQ(state.LastAssessmentNum, 77);
    ASSERT_EQ(state.TopicList.upperBound(), 1);
    EXPECT_EQ(state.TopicList(1).TopicID, algebra);
    EXPECT_EQ(state.TopicList(1).SelectedSubTopicText, QStringLiteral("0"));
    EXPECT_EQ(state.TopicList(1).SubTopicCount, 0);
    ASSERT_EQ(state.SubTopicList.upperBound(), 1);
    EXPECT_EQ(state.SubTopicList(1).SubTopic, QStringLiteral("Linear\nequations"));
    EXPECT_TRUE(state.SubTopicList(1).Selected);
    ASSERT_EQ(state.QuestionList.upperBound(), 2);
    EXPECT_EQ(state.QuestionList(1).SOLIndex, orphan);
    EXPECT_EQ(state.QuestionList(1).PictureIndex, orphan);
    EXPECT_EQ(state.QuestionList(1).Answer, QString(10'000, u'ä'));
    EXPECT_EQ(state.QuestionList(2).SOLIndex, kept);
    EXPECT_TRUE(state.QuestionList(2).Selected);
    EXPECT_THROW((void)state.QuestionList(3), std::out_of_range);
    EXPECT_THROW((void)state.QuestionList(0), std::out_of_range);

    EXPECT_EQ(GetTopicText(state, state.QuestionList(1)), QString());
    EXPECT_EQ(GetTopicText(state, state.QuestionList(2)),
              QStringLiteral("Algebra - Linear\nequations"));
    QuestionRecord refiled = state.QuestionList(2);
    refiled.SubtopicNum = 999;
    EXPECT_EQ(GetTopicText(state, refiled), QStringLiteral("Algebra"));
    state.TopicList.clear();
    EXPECT_EQ(GetTopicText(state, state.QuestionList(2)), QStringLiteral(" - Linear\nequations"));
}

TEST_F(Catalogue, CountsAndCaptionsFollowTheFlags)
{
    const auto generated = library.addGenerated(QStringLiteral("Generated"), 2, 3, 4);
    open();
    load(generated);
    RecordingCaptions captions;
    SetSubTopicSelected(state.SubTopicList, 1, 2, false);
    SetSubTopicSelected(state.SubTopicList, 2, 2, false); // topic 2 has no subtopic 2
    state.QuestionList(1).Selected = false;
    UpdateSelectionCounts(state, captions);
    EXPECT_EQ(captions.count, QStringLiteral("23"));
    EXPECT_EQ(state.SelectedQuestionCount, 23);
    EXPECT_EQ(captions.rows, (QStringList{QStringLiteral("Topic 1 (2 of 3 topics)"),
                                          QStringLiteral("Topic 2 (3 of 3 topics)")}));
    EXPECT_TRUE(state.TopicEventsEnabled);
}

TEST_F(Catalogue, RemembersTheCurrentAssessment)
{
    open();
    state.CurrentAssessmentNum = 5;
    SaveLastAssessment(state, connection);
    EXPECT_EQ(library.value(QStringLiteral("SELECT LastID FROM History")), QStringLiteral("5"));
}

TEST_F(Catalogue, FailedLoadsAreReportedAndQuestionsThrow)
{
    open();
    library.sql(QStringLiteral("DROP TABLE Assessments; DROP TABLE Topics; DROP TABLE SubTopics;"
                               "DROP TABLE Questions"));
    messages.expectInform(QStringLiteral("Database Error"),
                          QStringLiteral("There was an error loading the assessments."));
    LoadAssessments(state, connection, messages);
    messages.expectInform(QStringLiteral("Database Error"),
                          QStringLiteral("There was an error loading the topics."));
    messages.expectInform(QStringLiteral("Database Error"),
                          QStringLiteral("There was an error loading the subtopics."));
    EXPECT_THROW(LoadCurrentAssessment(state, connection, messages), DatabaseError);
}

TEST_F(Catalogue, KeysComeFromTheDatabaseAndAreNeverUsedTwice)
{
    open();
    connection.execute(statements::InsertAssessment(QStringLiteral("A")));
    connection.execute(statements::InsertTopic(QStringLiteral("T"), 1));
    connection.execute(statements::InsertSubtopic(1, QStringLiteral("S"), 1));
    connection.execute(statements::InsertQuestion(1, QStringLiteral("42 \"x\" ; -- & %"), 1, 1));
    connection.execute(statements::InsertQuestion(1, QStringLiteral("43"), 1, 1));
    connection.execute(statements::UpdateQuestion(1, 7, 8, QStringLiteral("44")));
    connection.execute(statements::DeleteQuestion(2));
    EXPECT_EQ(library.value(QStringLiteral("SELECT * FROM Questions")),
              QStringLiteral("1|7|8|44|1|1\n2|1|1|43|1|0"));
    library.sql(QStringLiteral("DELETE FROM Questions WHERE SOLIndex=2"));
    connection.execute(statements::InsertQuestion(1, QStringLiteral("45"), 1, 1));
    Recordset newest = connection.read(statements::SelectQuestionsNewestFirst(1));
    ASSERT_TRUE(newest.next());
    EXPECT_EQ(newest.integer(newest.field("solindex")), 3);
    Recordset maximum = connection.read(statements::SelectMaxSOLIndex());
    ASSERT_TRUE(maximum.next());
    EXPECT_EQ(maximum.integer(maximum.field("maxvalue")), 3);

    connection.execute(statements::DeleteSubtopic(1));
    connection.execute(statements::DeleteTopic(1));
    connection.execute(statements::DeleteAssessment(1));
    EXPECT_EQ(library.value(QStringLiteral("SELECT Available FROM SubTopics UNION ALL SELECT "
                                           "Available FROM Topics UNION ALL SELECT Available "
                                           "FROM Assessments")),
              QStringLiteral("0\n0\n0"));
}

TEST_F(Catalogue, TextWithAQuoteIsAFailedStatement)
{
    const QString evil = QStringLiteral("x',1,true); DELETE FROM Topics; --");
    EXPECT_THROW(statements::InsertAssessment(QStringLiteral("O'Brien")), DatabaseError);
    EXPECT_THROW(statements::InsertTopic(evil, 1), DatabaseError);
    EXPECT_THROW(statements::InsertSubtopic(1, evil, 1), DatabaseError);
    EXPECT_THROW(statements::InsertQuestion(1, evil, 1, 1), DatabaseError);
    EXPECT_THROW(statements::UpdateQuestion(1, 1, 1, evil), DatabaseError);
    EXPECT_THROW(statements::SelectAssessmentsNamed(evil), DatabaseError);
    // A NUL would cut the statement off in mid-text.
    EXPECT_THROW(statements::InsertAssessment(QString(QChar(0))), DatabaseError);
}

} // namespace
} // namespace varnholt
