#pragma once

#include "store/modMain.h"

#include <QString>

#include <optional>

namespace varnholt {

class Connection;

/// A topic that the user has chosen already.
struct NamedTopic
{
    std::int32_t TopicID = 0;
    QString Topic;
};

/// Adds a subtopic to the current assessment, under `chosenTopicId` or, without one, under a
/// new topic named `topic`. Leaves the keys in `NewTopicID` and `NewSubtopicNum` and sets
/// `NewInfoSaved`. Throws `DatabaseError`; a topic added until then stays.
void SaveNewInfo(ProgramState& state, Connection& connection, const QString& topic,
                 const QString& subtopic, std::optional<std::int32_t> chosenTopicId);

} // namespace varnholt
