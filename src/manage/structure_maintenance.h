#pragma once

#include "store/modMain.h"

#include <QString>

namespace varnholt {

class Connection;
class MessageBoxes;

// The changes of a library's structure. Each sends its statement and reloads exactly the lists
// it has changed. Deleting marks a row as not available and touches nothing below it; whether
// it may be deleted is the caller's question.
//
// Everything here throws `DatabaseError` when a statement fails (nothing has changed then,
// unless the failure is in the reload) and `OverflowError`, before anything is sent, for a
// topic or subtopic key beyond 16 bits.

/// Adds the assessment only; the name is taken as it is.
void AddAssessment(Connection& connection, const QString& name);
/// Key of the last available assessment in the order of the database: the one just added.
/// Throws `OverflowError` when it does not fit into 16 bits.
[[nodiscard]] std::int32_t LastListedAssessment(Connection& connection);
/// The highest key that an assessment has ever had, deleted ones included: the next one comes
/// after it. 0 without any, and when it cannot be read.
[[nodiscard]] std::int32_t HighestAssessmentNum(Connection& connection);
/// Makes an assessment current (0 for none) and remembers it in the library.
void RememberAssessment(ProgramState& state, Connection& connection, std::int32_t assessmentNum);

/// Deletes the current assessment only.
void DeleteAssessment(const ProgramState& state, Connection& connection);

/// Adds to the current assessment and reloads topics, subtopics and questions.
void AddTopic(ProgramState& state, Connection& connection, MessageBoxes& messages,
              const QString& name);
/// Reloads the topics.
void DeleteTopic(ProgramState& state, Connection& connection, MessageBoxes& messages,
                 std::int32_t topicId);

/// Reloads the subtopics.
void AddSubtopic(ProgramState& state, Connection& connection, MessageBoxes& messages,
                 std::int32_t topicId, const QString& name);
/// Reloads the subtopics.
void DeleteSubtopic(ProgramState& state, Connection& connection, MessageBoxes& messages,
                    std::int32_t subtopicNum);

/// Deletes the question that the browser shows and reloads the questions. Throws
/// `std::out_of_range` when it shows none. The picture file stays.
void DeleteShownQuestion(ProgramState& state, Connection& connection);

/// "Topic number 40000 is above 32767 and cannot be deleted." for the subject "Topic" and the
/// consequence "cannot be deleted"; empty for a key within 16 bits.
[[nodiscard]] QString LargeKeyHint(const QString& subject, std::int32_t key,
                                   const QString& consequence);

} // namespace varnholt
