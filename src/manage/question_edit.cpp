#include "manage/question_edit.h"

#include "store/connection.h"
#include "store/statements.h"

namespace varnholt {

void SaveQuestion(Connection& connection, std::int32_t solIndex, std::int32_t topicId,
                  std::int32_t subtopicNum, const QString& answer)
{
    connection.execute(statements::UpdateQuestion(toInt16(solIndex), toInt16(topicId),
                                                  toInt16(subtopicNum), answer.trimmed()));
}

} // namespace varnholt
