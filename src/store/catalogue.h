#pragma once

#include "store/modMain.h"

#include <QString>
#include <QStringList>

namespace varnholt {

class Connection;

/// What of the catalogue could not be read: a sentence for each list, in the order of reading, to
/// be shown under the title "Database Error". Empty when everything is there.
using LoadFailures = QStringList;

// The loaders replace one list of the catalogue of `state.CurrentAssessmentNum`. Rows keep the
// order in which the database returns them. A list that cannot be read whole keeps the rows read
// so far. `LoadQuestions` throws `DatabaseError`.

/// Also reads `LastAssessmentNum`.
[[nodiscard]] LoadFailures LoadAssessments(ProgramState& state, Connection& connection);
[[nodiscard]] LoadFailures LoadTopics(ProgramState& state, Connection& connection);
[[nodiscard]] LoadFailures LoadSubTopics(ProgramState& state, Connection& connection);
void LoadQuestions(ProgramState& state, Connection& connection);

/// Topics and then subtopics. Where the whole assessment is wanted `LoadQuestions` comes next.
[[nodiscard]] LoadFailures LoadStructure(ProgramState& state, Connection& connection);

/// "topic - subtopic" of a question, as printed on slides. A part without a record is left
/// out.
[[nodiscard]] QString GetTopicText(const ProgramState& state, const QuestionRecord& question);

} // namespace varnholt
