#include "manage/question_browser.h"

#include "selection/Selection.h"

#include <QCoreApplication>

namespace varnholt {

void CollectBrowseQuestions(ProgramState& state, std::optional<std::int32_t> topicId,
                            std::optional<std::int32_t> subtopicNum)
{
    Selection browsed;
    if (topicId) {
        browsed.setTopics({{*topicId, true}});
    }
    for (const SubTopicRecord& record : state.SubTopicList) {
        browsed.SetSubTopicSelected(record.TopicID, record.SubtopicNum,
                                    record.TopicID == topicId && record.SubtopicNum == subtopicNum);
    }
    state.BrowseQuestions.clear();
    for (const QuestionRecord& question : state.QuestionList) {
        if (browsed.IsQuestionInSelection(question.TopicID, question.SubtopicNum)) {
            state.BrowseQuestions.append(question);
        }
    }
    UpdateCount2(state);
    if (state.QuestionCount == 0) {
        state.QuestionPosition = 0;
    }
}

void UpdateCount2(ProgramState& state)
{
    state.QuestionCount = state.BrowseQuestions.upperBound();
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

std::int32_t PositionOf(const List1<QuestionRecord>& questions, std::int32_t solIndex)
{
    for (std::int32_t position = 1; position <= questions.upperBound(); ++position) {
        if (questions(position).SOLIndex == solIndex) {
            return position;
        }
    }
    return 0;
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

QString PictureHint(PictureFault fault, bool borrowed)
{
    const auto tr = [](const char* text) {
        return QCoreApplication::translate("varnholt::frmManage", text);
    };
    switch (fault) {
    case PictureFault::None:
        return {};
    case PictureFault::Missing:
        return borrowed ? tr("The picture above belongs to another question: this "
                             "one's picture file is missing.")
                        : QString();
    case PictureFault::Unreadable:
        return borrowed ? tr("The picture above belongs to another question: this "
                             "one's picture file is there, but cannot be read.")
                        : tr("The picture file is there, but cannot be read.");
    case PictureFault::Damaged:
        return borrowed ? tr("The picture above belongs to another question: this one's "
                             "picture file is damaged or is not a picture.")
                        : tr("The picture file is damaged or is not a picture.");
    case PictureFault::TooLarge:
        return borrowed ? tr("The picture above belongs to another question: this "
                             "one's picture is too large to be shown.")
                        : tr("The picture is too large to be shown.");
    }
    return {};
}

} // namespace varnholt
