#pragma once

#include "store/modMain.h"

namespace varnholt {

/// Of the questions from `first` to `last` the one that is nearest to one that goes: the first of
/// the same subtopic, else of the same topic, else the first. `last` when there are none.
template <typename Iterator>
[[nodiscard]] Iterator NearestQuestion(Iterator first, Iterator last, const QuestionRecord& gone)
{
    Iterator nearest = first;
    bool sameTopic = false;
    for (Iterator i = first; i != last; ++i) {
        const QuestionRecord& question = *i;
        if (question.TopicID != gone.TopicID) {
            continue;
        }
        if (question.SubtopicNum == gone.SubtopicNum) {
            return i;
        }
        if (!sameTopic) {
            sameTopic = true;
            nearest = i;
        }
    }
    return nearest;
}

} // namespace varnholt
