#include "manage/question_browser.h"

#include "selection/question_selection.h"
#include "store/catalogue.h"

#include <algorithm>

namespace varnholt {

void ChooseSubtopic(List1<SubTopicRecord>& subTopicList, std::int32_t topicId,
                    std::int32_t subtopicNum)
{
    for (SubTopicRecord& record : subTopicList) {
        record.Selected = false;
    }
    SetSubTopicSelected(subTopicList, topicId, subtopicNum, true);
}

void CollectBrowseQuestions(ProgramState& state, std::optional<std::int32_t> selectedTopicId)
{
    std::vector<TopicChoice> choices;
    if (selectedTopicId) {
        choices.push_back({*selectedTopicId, true});
    }
    SelectQuestions(state.QuestionList, SelectionRule(choices, state.SubTopicList));
    UpdateCount2(state);

    state.BrowseQuestions.clear();
    if (state.QuestionCount == 0) {
        state.QuestionPosition = 0;
        return;
    }
    state.BrowseQuestions.reserve(static_cast<std::size_t>(state.QuestionCount));
    for (const QuestionRecord& question : state.QuestionList) {
        if (question.Selected) {
            state.BrowseQuestions.append(question);
        }
    }
}

void UpdateCount2(ProgramState& state)
{
    state.QuestionCount = static_cast<std::int32_t>(
        std::count_if(state.QuestionList.begin(), state.QuestionList.end(),
                      [](const QuestionRecord& question) { return question.Selected; }));
}

void StepLeft(ProgramState& state)
{
    if (state.QuestionPosition > 1) {
        --state.QuestionPosition;
    }
}

void StepRight(ProgramState& state)
{
    if (state.QuestionPosition < state.QuestionCount) {
        ++state.QuestionPosition;
    }
}

QString PositionText(const ProgramState& state)
{
    return QString::number(state.QuestionPosition) + QStringLiteral(" of ") +
           QString::number(state.QuestionCount);
}

PictureButtons EnabledPictureButtons(std::int32_t questionPosition, std::int32_t questionCount)
{
    return {questionPosition > 1, questionPosition > 0 && questionPosition != questionCount};
}

} // namespace varnholt
