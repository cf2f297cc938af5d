#include "manage/new_info.h"

#include "store/connection.h"
#include "store/statements.h"

namespace varnholt {

namespace {

std::int32_t newestKey(Connection& connection, const QString& statement, const char* field)
{
    Recordset rows = connection.read(statement);
    const int key = rows.field(field);
    if (!rows.next()) {
        throw DatabaseError(QStringLiteral("The row just added cannot be found."));
    }
    return rows.integer(key);
}

} // namespace

void SaveNewInfo(ProgramState& state, Connection& connection, const QString& topic,
                 const QString& subtopic, std::optional<std::int32_t> chosenTopicId)
{
    const std::int32_t assessment = state.CurrentAssessmentNum;
    if (chosenTopicId) {
        state.NewTopicID = *chosenTopicId;
    } else {
        connection.execute(statements::InsertTopic(topic, assessment));
        state.NewTopicID =
            newestKey(connection, statements::SelectTopicsNewestFirst(assessment), "TopicID");
    }
    connection.execute(statements::InsertSubtopic(state.NewTopicID, subtopic, assessment));
    state.NewSubtopicNum =
        newestKey(connection, statements::SelectSubtopicsNewestFirst(assessment), "SubtopicNum");
    state.NewInfoSaved = true;
}

} // namespace varnholt
