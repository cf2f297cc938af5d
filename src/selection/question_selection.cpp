#include "selection/question_selection.h"

namespace varnholt {

namespace {

std::uint64_t pairKey(std::int32_t topicId, std::int32_t subtopicNum)
{
    return std::uint64_t{static_cast<std::uint32_t>(topicId)} << 32 |
           static_cast<std::uint32_t>(subtopicNum);
}

template <typename Key>
void insertFirst(QHash<Key, bool>& map, Key key, bool value)
{
    if (!map.contains(key)) {
        map.insert(key, value);
    }
}

} // namespace

SelectionRule::SelectionRule(const std::vector<TopicChoice>& topicRows,
                             const List1<SubTopicRecord>& subTopicList)
{
    topics_.reserve(static_cast<qsizetype>(topicRows.size()));
    for (const TopicChoice& row : topicRows) {
        insertFirst(topics_, row.TopicID, row.selected);
    }
    subTopics_.reserve(subTopicList.upperBound());
    for (const SubTopicRecord& record : subTopicList) {
        insertFirst(subTopics_, pairKey(record.TopicID, record.SubtopicNum), record.Selected);
    }
}

bool SelectionRule::IsQuestionInSelection(std::int32_t topicId, std::int32_t subtopicNum) const
{
    return topics_.value(topicId, false) && subTopics_.value(pairKey(topicId, subtopicNum), true);
}

void SelectQuestions(List1<QuestionRecord>& questionList, const SelectionRule& rule)
{
    for (QuestionRecord& question : questionList) {
        question.Selected = rule.IsQuestionInSelection(question.TopicID, question.SubtopicNum);
    }
}

} // namespace varnholt
