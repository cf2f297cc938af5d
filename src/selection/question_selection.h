#pragma once

#include "store/modMain.h"

#include <QHash>

#include <vector>

namespace varnholt {

/// One row of the topic list: the topic and whether the row is ticked.
struct TopicChoice
{
    std::int32_t TopicID = 0;
    bool selected = false;
};

/// Tells for any question whether the ticked topics and subtopics cover it. A snapshot:
/// changes of the lists after construction do not show.
class SelectionRule
{
public:
    SelectionRule(const std::vector<TopicChoice>& topicRows,
                  const List1<SubTopicRecord>& subTopicList);

    /// The first row of the topic decides; where it is ticked, the first record of the
    /// subtopic. A subtopic without a record counts as selected.
    [[nodiscard]] bool IsQuestionInSelection(std::int32_t topicId, std::int32_t subtopicNum) const;

private:
    QHash<std::int32_t, bool> topics_;
    QHash<std::uint64_t, bool> subTopics_;
};

/// Sets the `Selected` flag of every question by the rule.
void SelectQuestions(List1<QuestionRecord>& questionList, const SelectionRule& rule);

} // namespace varnholt
