#include "selection/Selection.h"

#include <QCoreApplication>
#include <QHash>

#include <algorithm>

namespace varnholt {

namespace {

std::uint64_t pairKey(std::int32_t topicId, std::int32_t subtopicNum)
{
    return std::uint64_t{static_cast<std::uint32_t>(topicId)} << 32 |
           static_cast<std::uint32_t>(subtopicNum);
}

} // namespace

void Selection::setTopics(const std::vector<TopicChoice>& rows)
{
    topics_.clear();
    QSet<std::int32_t> known;
    known.reserve(static_cast<qsizetype>(rows.size()));
    for (const TopicChoice& row : rows) {
        if (!known.contains(row.TopicID)) {
            known.insert(row.TopicID);
            if (row.selected) {
                topics_.insert(row.TopicID);
            }
        }
    }
}

bool Selection::topicSelected(std::int32_t topicId) const
{
    return topics_.contains(topicId);
}

void Selection::SetSubTopicSelected(std::int32_t topicId, std::int32_t subtopicNum, bool selected)
{
    if (selected) {
        clearedSubTopics_.remove(pairKey(topicId, subtopicNum));
    } else {
        clearedSubTopics_.insert(pairKey(topicId, subtopicNum));
    }
}

bool Selection::subTopicSelected(std::int32_t topicId, std::int32_t subtopicNum) const
{
    return !clearedSubTopics_.contains(pairKey(topicId, subtopicNum));
}

bool Selection::IsQuestionInSelection(std::int32_t topicId, std::int32_t subtopicNum) const
{
    return topicSelected(topicId) && subTopicSelected(topicId, subtopicNum);
}

std::int32_t CountSelected(const List1<QuestionRecord>& questionList, const Selection& selection)
{
    return static_cast<std::int32_t>(std::count_if(
        questionList.begin(), questionList.end(), [&](const QuestionRecord& question) {
            return selection.IsQuestionInSelection(question.TopicID, question.SubtopicNum);
        }));
}

SelectionCounts CountSelection(const ProgramState& state, const Selection& selection)
{
    struct Count
    {
        std::int32_t all = 0;
        std::int32_t selected = 0;
    };
    QHash<std::int32_t, Count> counts;
    counts.reserve(state.TopicList.upperBound());
    for (const SubTopicRecord& record : state.SubTopicList) {
        Count& count = counts[record.TopicID];
        ++count.all;
        count.selected += selection.subTopicSelected(record.TopicID, record.SubtopicNum) ? 1 : 0;
    }

    SelectionCounts result;
    result.SelectedQuestionCount = CountSelected(state.QuestionList, selection);
    result.topicTexts.reserve(state.TopicList.upperBound());
    const QString text = QCoreApplication::translate("Selection", "%1 (%2 of %3 topics)");
    for (const TopicRecord& topic : state.TopicList) {
        const Count count = counts.value(topic.TopicID);
        result.topicTexts.append(
            text.arg(topic.Topic, QString::number(count.selected), QString::number(count.all)));
    }
    return result;
}

} // namespace varnholt
