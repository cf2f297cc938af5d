#pragma once

#include "store/modMain.h"

#include <QString>

namespace varnholt {

class Connection;
class MessageBoxes;

// The loaders replace one list of the catalogue of `state.CurrentAssessmentNum`. Rows keep
// the order in which the database returns them; every selection flag starts set. The first
// three report a failure with a message box titled "Database Error", keep the rows read so
// far and return false. `LoadQuestions` throws `DatabaseError`.

/// Also reads `LastAssessmentNum`.
void LoadAssessments(ProgramState& state, Connection& connection, MessageBoxes& messages);
bool LoadTopics(ProgramState& state, Connection& connection, MessageBoxes& messages);
bool LoadSubTopics(ProgramState& state, Connection& connection, MessageBoxes& messages);
void LoadQuestions(ProgramState& state, Connection& connection);

/// The three loaders of an assessment in their order: topics, subtopics, questions. False when
/// one of them has reported a failure.
bool LoadCurrentAssessment(ProgramState& state, Connection& connection, MessageBoxes& messages);

/// Sets `Selected` of every record with this topic and subtopic.
void SetSubTopicSelected(List1<SubTopicRecord>& subTopicList, std::int32_t topicId,
                         std::int32_t subtopicNum, bool selected);

/// What shows the counts: the selection window.
class SelectionCaptions
{
public:
    virtual ~SelectionCaptions() = default;

    virtual void setQuestionCount(const QString& caption) = 0;
    /// New texts for all rows of the topic list, which holds the topics in `TopicList`
    /// order. The focused row stays.
    virtual void setTopicRows(const QStringList& texts) = 0;
};

/// Recounts the selected questions and each topic's subtopics, and rewrites the captions.
void UpdateSelectionCounts(ProgramState& state, SelectionCaptions& captions);

/// "topic - subtopic" of a question, as printed on slides. A part without a record is left
/// out.
[[nodiscard]] QString GetTopicText(const ProgramState& state, const QuestionRecord& question);

/// Remembers `CurrentAssessmentNum` in the library. Throws `DatabaseError`.
void SaveLastAssessment(const ProgramState& state, Connection& connection);

} // namespace varnholt
