#pragma once

#include "store/modMain.h"

#include <QString>

namespace varnholt {

class Connection;

/// Files a question under a topic and subtopic and gives it an answer, blanks around it
/// removed. Throws `DatabaseError`, and `OverflowError` for a key beyond 16 bits; nothing has
/// changed then.
void SaveQuestion(Connection& connection, std::int32_t solIndex, std::int32_t topicId,
                  std::int32_t subtopicNum, const QString& answer);

} // namespace varnholt
