#include "manage/structure_maintenance.h"

#include "store/catalogue.h"
#include "store/connection.h"
#include "store/statements.h"

#include <limits>

namespace varnholt {

void AddAssessment(Connection& connection, const QString& name)
{
    connection.execute(statements::InsertAssessment(name));
}

std::int32_t LastListedAssessment(Connection& connection)
{
    Recordset rows = connection.read(statements::SelectAssessments());
    const int number = rows.field("AssessmentNum");
    std::int32_t last = 0;
    while (rows.next()) {
        last = rows.integer(number);
    }
    return toInt16(last);
}

std::int32_t HighestAssessmentNum(Connection& connection)
{
    try {
        Recordset rows = connection.read(statements::SelectMaxAssessmentNum());
        return rows.next() ? rows.integer(rows.field("NewAssessmentNum")) : 0;
    } catch (const DatabaseError&) {
        return 0;
    }
}

void RememberAssessment(ProgramState& state, Connection& connection, std::int32_t assessmentNum)
{
    state.CurrentAssessmentNum = assessmentNum;
    SaveLastAssessment(state, connection);
}

void DeleteAssessment(const ProgramState& state, Connection& connection)
{
    connection.execute(statements::DeleteAssessment(state.CurrentAssessmentNum));
}

void AddTopic(ProgramState& state, Connection& connection, MessageBoxes& messages,
              const QString& name)
{
    connection.execute(statements::InsertTopic(name, state.CurrentAssessmentNum));
    LoadCurrentAssessment(state, connection, messages);
}

void DeleteTopic(ProgramState& state, Connection& connection, MessageBoxes& messages,
                 std::int32_t topicId)
{
    connection.execute(statements::DeleteTopic(toInt16(topicId)));
    LoadTopics(state, connection, messages);
}

void AddSubtopic(ProgramState& state, Connection& connection, MessageBoxes& messages,
                 std::int32_t topicId, const QString& name)
{
    connection.execute(
        statements::InsertSubtopic(toInt16(topicId), name, state.CurrentAssessmentNum));
    LoadSubTopics(state, connection, messages);
}

void DeleteSubtopic(ProgramState& state, Connection& connection, MessageBoxes& messages,
                    std::int32_t subtopicNum)
{
    connection.execute(statements::DeleteSubtopic(toInt16(subtopicNum)));
    LoadSubTopics(state, connection, messages);
}

void DeleteShownQuestion(ProgramState& state, Connection& connection)
{
    connection.execute(
        statements::DeleteQuestion(state.BrowseQuestions(state.QuestionPosition).SOLIndex));
    LoadQuestions(state, connection);
}

QString LargeKeyHint(const QString& subject, std::int32_t key, const QString& consequence)
{
    constexpr int largest = std::numeric_limits<std::int16_t>::max();
    return key <= largest ? QString()
                          : QStringLiteral("%1 number %2 is above %3 and %4.")
                                .arg(subject)
                                .arg(key)
                                .arg(largest)
                                .arg(consequence);
}

} // namespace varnholt
