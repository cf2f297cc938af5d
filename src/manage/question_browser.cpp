#include "manage/question_browser.h"

#include <QSet>

#include <algorithm>

namespace varnholt {

void QuestionBrowser::show(const ProgramState& catalogue, std::optional<std::int32_t> topicId,
                           std::optional<std::int32_t> subtopicNum, std::int32_t wanted,
                           std::int32_t orAt)
{
    QSet<std::int32_t> others;
    for (const SubTopicRecord& record : catalogue.SubTopicList) {
        if (record.TopicID == topicId && record.SubtopicNum != subtopicNum) {
            others.insert(record.SubtopicNum);
        }
    }
    const auto IsQuestionSelected = [&](const QuestionRecord& question) {
        return question.TopicID == topicId && !others.contains(question.SubtopicNum);
    };
    BrowseQuestions.clear();
    QuestionPosition = 0;
    for (const QuestionRecord& question : catalogue.QuestionList) {
        if (IsQuestionSelected(question)) {
            BrowseQuestions.append(question);
            if (question.SOLIndex == wanted) {
                QuestionPosition = BrowseQuestions.upperBound();
            }
        }
    }
    UpdateCount2();
    if (QuestionPosition == 0) {
        QuestionPosition = std::min(orAt, QuestionCount);
    }
}

void QuestionBrowser::UpdateCount2()
{
    QuestionCount = BrowseQuestions.upperBound();
}

void QuestionBrowser::stepLeft()
{
    if (QuestionPosition > 1) {
        --QuestionPosition;
    }
}

void QuestionBrowser::stepRight()
{
    if (QuestionPosition < QuestionCount) {
        ++QuestionPosition;
    }
}

QString QuestionBrowser::positionText() const
{
    return tr("%1 of %2").arg(QuestionPosition).arg(QuestionCount);
}

PictureButtons EnabledPictureButtons(std::int32_t questionPosition, std::int32_t questionCount)
{
    return {questionPosition > 1, questionPosition > 0 && questionPosition != questionCount};
}

QString PictureHint(PictureFault fault, bool borrowed)
{
    switch (fault) {
    case PictureFault::None:
        return {};
    case PictureFault::Missing:
        return borrowed ? QuestionBrowser::tr("The picture above belongs to another question: this "
                                              "one's picture file is missing.")
                        : QString();
    case PictureFault::Unreadable:
        return borrowed ? QuestionBrowser::tr("The picture above belongs to another question: this "
                                              "one's picture file is there, but cannot be read.")
                        : QuestionBrowser::tr("The picture file is there, but cannot be read.");
    case PictureFault::Damaged:
        return borrowed ? QuestionBrowser::tr(
                              "The picture above belongs to another question: this one's "
                              "picture file is damaged or is not a picture.")
                        : QuestionBrowser::tr("The picture file is damaged or is not a picture.");
    case PictureFault::TooLarge:
        return borrowed ? QuestionBrowser::tr("The picture above belongs to another question: this "
                                              "one's picture is too large to be shown.")
                        : QuestionBrowser::tr("The picture is too large to be shown.");
    }
    return {};
}

} // namespace varnholt
