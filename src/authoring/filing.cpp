#include "authoring/filing.h"

#include <unordered_set>

namespace varnholt {

std::vector<FilingChoice> TopicChoices(const ProgramState& state)
{
    std::unordered_set<std::int32_t> withSubtopics;
    for (const SubTopicRecord& record : state.SubTopicList) {
        withSubtopics.insert(record.TopicID);
    }
    std::vector<FilingChoice> choices;
    for (const TopicRecord& record : state.TopicList) {
        if (withSubtopics.contains(record.TopicID)) {
            choices.push_back({record.Topic, record.TopicID});
        }
    }
    return choices;
}

std::vector<FilingChoice> SubtopicChoices(const ProgramState& state, std::int32_t topicId)
{
    std::vector<FilingChoice> choices;
    for (const SubTopicRecord& record : state.SubTopicList) {
        if (record.TopicID == topicId) {
            choices.push_back({record.SubTopic, record.SubtopicNum});
        }
    }
    return choices;
}

int PositionOf(const std::vector<FilingChoice>& choices, std::int32_t key)
{
    std::size_t position = 0;
    for (std::size_t i = 0; i < choices.size(); ++i) {
        if (choices[i].key == key) {
            position = i;
        }
    }
    return static_cast<int>(position);
}

} // namespace varnholt
