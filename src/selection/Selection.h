#pragma once

#include "store/modMain.h"

#include <QSet>
#include <QStringList>

#include <vector>

namespace varnholt {

/// One row of the topic list: the topic and whether the row is ticked.
struct TopicChoice
{
    std::int32_t TopicID = 0;
    bool selected = false;
};

/// What is ticked of an assessment's topics and subtopics: a value of its own, in which a reload
/// of the catalogue changes nothing. At first no topic and every subtopic is ticked.
class Selection
{
public:
    /// Replaces the ticks of all topics; of several rows of a topic the first decides.
    void setTopics(const std::vector<TopicChoice>& rows);
    [[nodiscard]] bool topicSelected(std::int32_t topicId) const;

    void SetSubTopicSelected(std::int32_t topicId, std::int32_t subtopicNum, bool selected);
    void selectAllSubTopics() { clearedSubTopics_.clear(); }
    [[nodiscard]] bool subTopicSelected(std::int32_t topicId, std::int32_t subtopicNum) const;

    /// Whether a question filed there is covered. A subtopic without a record (a deleted one) can
    /// have no tick of its own and counts as ticked.
    [[nodiscard]] bool IsQuestionInSelection(std::int32_t topicId, std::int32_t subtopicNum) const;

private:
    QSet<std::int32_t> topics_;
    QSet<std::uint64_t> clearedSubTopics_;
};

/// The covered questions.
[[nodiscard]] std::int32_t CountSelected(const List1<QuestionRecord>& questionList,
                                         const Selection& selection);

/// What the captions of the selection window say.
struct SelectionCounts
{
    std::int32_t SelectedQuestionCount = 0;
    /// For each topic of `TopicList`, in its order: "Algebra (2 of 3 topics)".
    QStringList topicTexts;
};

[[nodiscard]] SelectionCounts CountSelection(const ProgramState& state, const Selection& selection);

} // namespace varnholt
