#include "store/catalogue.h"
#include "store/statements.h"
#include "support/test_services.h"

#include <gtest/gtest.h>

namespace varnholt::test {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace statements;

class Catalogue : public testing::Test, protected TestWorld
{
protected:
    void load(std::int32_t assessment)
    {
        connection.open(library.databasePath());
        EXPECT_EQ(LoadAssessments(state, connection), LoadFailures());
        state.CurrentAssessmentNum = assessment;
        LoadCurrentAssessment(state, connection);
    }
};

TEST_F(Catalogue, LoadsAvailableRowsOfTheAssessmentWithDefaults)
{
    const QString name = u"Mine & <b>\"quoted\"</b> 😀"_s;
    const QString answer(10'000, u'ä');
    library.addGenerated(u"Other"_s, 1, 1, 1);
    library.addAssessment(name);
    library.addTopic(2, u"Algebra"_s);
    library.addTopic(2, u"Gone"_s);
    library.addSubTopic(2, 2, u"Linear\nequations"_s);
    library.addSubTopic(2, 2, u"Gone, too"_s);
    library.addQuestion(2, 3, 9, answer, {});
    library.addQuestion(2, 2, 2, u"deleted"_s, {});
    library.addQuestion(2, 2, 3, u"B"_s, {});
    library.addQuestion(2, 2, 2, u"C"_s, {});
    library.sql(u"UPDATE Topics SET Available=false WHERE TopicID=3;"
                "UPDATE SubTopics SET Available=false WHERE SubtopicNum=3;"
                "UPDATE Questions SET Available=false WHERE SOLIndex=3;"
                "UPDATE Assessments SET Available=0 WHERE AssessmentNum=1;"
                "UPDATE History SET LastID=77"_s);
    load(2);
    ASSERT_EQ(state.AssessmentList.upperBound(), 1);
    EXPECT_EQ(state.AssessmentList(1).AssessmentName, name);
    ASSERT_EQ(state.TopicList.upperBound(), 1);
    ASSERT_EQ(state.SubTopicList.upperBound(), 1);
    ASSERT_EQ(state.QuestionList.upperBound(), 3);
    const QuestionRecord& question = state.QuestionList(1);
    EXPECT_EQ(question.SOLIndex, 2);
    EXPECT_EQ(question.PictureIndex, 2);
    EXPECT_EQ(question.Answer, answer);
    EXPECT_EQ(state.QuestionList(2).Answer + state.QuestionList(3).Answer, u"BC"_s);
    EXPECT_EQ(state.LastAssessmentNum, 77);
    EXPECT_THROW((void)state.QuestionList(4), std::out_of_range);
    EXPECT_THROW((void)state.QuestionList(0), std::out_of_range);

    EXPECT_EQ(GetTopicText(state, state.QuestionList(1)), QString());
    EXPECT_EQ(GetTopicText(state, state.QuestionList(2)), u"Algebra"_s);
    EXPECT_EQ(GetTopicText(state, state.QuestionList(3)), u"Algebra - Linear\nequations"_s);
    EXPECT_EQ(GetTopicText(state, {9, 9, 7, 2, {}}), QString()); // of another topic
    state.TopicList.clear();
    EXPECT_EQ(GetTopicText(state, state.QuestionList(3)), u" - Linear\nequations"_s);
}

TEST_F(Catalogue, FailedLoadsAreToldAndQuestionsThrow)
{
    connection.open(library.databasePath());
    for (const QString& table : {u"Assessments"_s, u"Topics"_s, u"SubTopics"_s, u"Questions"_s}) {
        library.sql(u"DROP TABLE "_s + table);
    }
    EXPECT_EQ(LoadAssessments(state, connection) + LoadStructure(state, connection),
              LoadFailures({u"There was an error loading the assessments."_s,
                            u"There was an error loading the topics."_s,
                            u"There was an error loading the subtopics."_s}));
    EXPECT_THROW(LoadQuestions(state, connection), DatabaseError);
    EXPECT_FALSE(state.QuestionsLoaded);
}

TEST_F(Catalogue, AnswersAreStoredAsTheyAreAndKeysAreNeverUsedTwice)
{
    connection.open(library.databasePath());
    connection.execute(InsertQuestion(1, u"42 \"x\" ; -- & %"_s, 1, 3));
    connection.execute(InsertQuestion(1, u"43"_s, 1, 1));
    EXPECT_EQ(library.value(u"SELECT * FROM Questions WHERE SOLIndex=1"_s),
              u"1|1|3|42 \"x\" ; -- & %|1|1"_s);
    library.sql(u"DELETE FROM Questions WHERE SOLIndex=2"_s);
    connection.execute(InsertQuestion(1, u"45"_s, 1, 1));
    for (const auto& [statement, field] : {std::pair{SelectQuestionsNewestFirst(1), "solindex"},
                                           {SelectMaxSOLIndex(), "maxvalue"}}) {
        Recordset rows = connection.read(statement);
        ASSERT_TRUE(rows.next());
        EXPECT_EQ(rows.integer(rows.field(field)), 3);
    }
}

TEST_F(Catalogue, TextWithAQuoteIsAFailedStatement)
{
    // A NUL would cut the statement off in mid-text.
    for (const QString& evil : {u"x',1,true); DELETE FROM Topics; --"_s, QString(QChar(0))}) {
        EXPECT_THROW(InsertAssessment(evil), DatabaseError);
        EXPECT_THROW(InsertTopic(evil, 1), DatabaseError);
        EXPECT_THROW(InsertSubtopic(1, evil, 1), DatabaseError);
        EXPECT_THROW(InsertQuestion(1, evil, 1, 1), DatabaseError);
        EXPECT_THROW(UpdateQuestion(1, 1, 1, evil), DatabaseError);
        EXPECT_THROW(SelectAssessmentsNamed(evil), DatabaseError);
    }
}

} // namespace
} // namespace varnholt::test
