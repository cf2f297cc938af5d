#include "store/statements.h"

#include "store/errors.h"

#include <QCoreApplication>

namespace varnholt::statements {

namespace {

QString number(std::int32_t value)
{
    return QString::number(value);
}

QString quoted(const QString& text)
{
    if (!canHold(text)) {
        throw DatabaseError(
            QCoreApplication::translate(
                "Statements", "The text %1 holds an apostrophe ('), which cannot be saved.")
                .arg(text));
    }
    return u'\'' + text + u'\'';
}

/// A statement that ends in a condition on one number.
QString where(const char* statement, std::int32_t value)
{
    return QLatin1String(statement) + number(value);
}

} // namespace

bool canHold(const QString& text)
{
    return !text.contains(u'\'') && !text.contains(QChar(0));
}

QString SelectAssessments()
{
    return QStringLiteral("Select * from Assessments Where Available = true");
}

QString SelectHistory()
{
    return QStringLiteral("Select * from History");
}

QString SelectTopics(std::int32_t assessmentNum)
{
    return where("Select * from Topics Where Available = true and AssessmentNum = ", assessmentNum);
}

QString SelectSubTopics(std::int32_t assessmentNum)
{
    return where("Select * from SubTopics where Available = true and AssessmentNum = ",
                 assessmentNum);
}

QString SelectQuestions(std::int32_t assessmentNum)
{
    return where("Select * from Questions where Available = true and AssessmentNum = ",
                 assessmentNum);
}

QString SelectTopicsNewestFirst(std::int32_t assessmentNum)
{
    return SelectTopics(assessmentNum) + QStringLiteral(" order by TopicID desc");
}

QString SelectSubtopicsNewestFirst(std::int32_t assessmentNum)
{
    return SelectSubTopics(assessmentNum) + QStringLiteral(" order by SubtopicNum desc");
}

QString SelectQuestionsNewestFirst(std::int32_t assessmentNum)
{
    return SelectQuestions(assessmentNum) + QStringLiteral(" order by SOLIndex desc");
}

QString SelectQuestionWithKey(std::int32_t solIndex)
{
    return where("Select * from Questions where SOLIndex = ", solIndex);
}

QString SelectAssessmentsNamed(const QString& name)
{
    return QStringLiteral("Select * from Assessments where AssessmentName = ") + quoted(name) +
           QStringLiteral(" and Available = true");
}

QString SelectMaxAssessmentNum()
{
    return QStringLiteral("Select Max(AssessmentNum) as NewAssessmentNum from Assessments");
}

QString SelectMaxTopicID()
{
    return QStringLiteral("Select Max(TopicID) as MaxValue from Topics");
}

QString SelectMaxSubTopicNum()
{
    return QStringLiteral("Select Max(SubTopicNum) as MaxValue from SubTopics");
}

QString SelectMaxSOLIndex()
{
    return QStringLiteral("Select Max(SOLIndex) as MaxValue from Questions");
}

QString UpdateHistory(std::int32_t assessmentNum)
{
    return where("Update History Set LastId = ", assessmentNum);
}

QString InsertAssessment(const QString& name)
{
    return QStringLiteral("Insert into Assessments (AssessmentName, Available) Values(") +
           quoted(name) + QStringLiteral(",true)");
}

QString InsertTopic(const QString& name, std::int32_t assessmentNum)
{
    return QStringLiteral("Insert into Topics (Topic, AssessmentNum,Available) Values(") +
           quoted(name) + u',' + number(assessmentNum) + QStringLiteral(",true)");
}

QString InsertSubtopic(std::int32_t topicId, const QString& name, std::int32_t assessmentNum)
{
    return QStringLiteral(
               "Insert into Subtopics (TopicID,Subtopic, AssessmentNum,Available) Values(") +
           number(topicId) + u',' + quoted(name) + u',' + number(assessmentNum) +
           QStringLiteral(",true)");
}

QString InsertQuestion(std::int32_t topicId, const QString& answer, std::int32_t assessmentNum,
                       std::int32_t subtopicNum)
{
    return QStringLiteral("Insert into Questions (TopicID, Answer, AssessmentNum, Available, "
                          "SubTopicNum) Values (") +
           number(topicId) + u',' + quoted(answer) + u',' + number(assessmentNum) +
           QStringLiteral(",true,") + number(subtopicNum) + u')';
}

QString UpdateQuestion(std::int32_t solIndex, std::int32_t topicId, std::int32_t subtopicNum,
                       const QString& answer)
{
    return QStringLiteral("Update Questions Set TopicID = ") + number(topicId) +
           QStringLiteral(", SubTopicNum = ") + number(subtopicNum) +
           QStringLiteral(", Answer = ") + quoted(answer) + QStringLiteral(" where SOLIndex = ") +
           number(solIndex);
}

QString DeleteAssessment(std::int32_t assessmentNum)
{
    return where("Update Assessments set Available = false where AssessmentNum = ", assessmentNum);
}

QString DeleteTopic(std::int32_t topicId)
{
    return where("Update Topics Set Available = false where TopicID = ", topicId);
}

QString DeleteSubtopic(std::int32_t subtopicNum)
{
    return where("Update Subtopics Set Available = false where SubtopicNum = ", subtopicNum);
}

QString DeleteQuestion(std::int32_t solIndex)
{
    return where("Update Questions Set Available = false where SOLIndex = ", solIndex);
}

} // namespace varnholt::statements
