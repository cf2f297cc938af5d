#pragma once

#include "store/list1.h"

#include <QString>

#include <cstdint>

namespace varnholt {

struct AssessmentRecord
{
    std::int32_t AssessmentNum = 0;
    QString AssessmentName;
};

struct TopicRecord
{
    std::int32_t TopicID = 0;
    QString Topic;
    /// Decimal number of this topic's selected subtopics.
    QString SelectedSubTopicText = QStringLiteral("0");
    /// Number of this topic's subtopics; 0 until the first count.
    std::int32_t SubTopicCount = 0;
};

struct SubTopicRecord
{
    std::int32_t TopicID = 0;
    std::int32_t SubtopicNum = 0;
    QString SubTopic;
    bool Selected = true;
};

struct QuestionRecord
{
    /// The key, used in statements.
    std::int32_t SOLIndex = 0;
    /// The number the picture's file name is built from.
    std::int32_t PictureIndex = 0;
    std::int32_t TopicID = 0;
    std::int32_t SubtopicNum = 0;
    QString Answer;
    /// In `QuestionList`: inside the user's selection. In `DrawPool`: goes on a slide.
    bool Selected = true;
};

/// Everything the windows share. `RunProgram` creates one and hands it to each window by
/// reference; a routine that needs one list takes that list.
struct ProgramState
{
    // The catalogue of the current assessment, replaced wholesale by the loaders.
    List1<AssessmentRecord> AssessmentList;
    List1<TopicRecord> TopicList;
    List1<SubTopicRecord> SubTopicList;
    List1<QuestionRecord> QuestionList;
    /// False after a load of `QuestionList` that failed: the list is not whole.
    bool QuestionsLoaded = true;

    /// `AssessmentNum` of the assessment being worked on; 0 or less means none.
    std::int32_t CurrentAssessmentNum = 0;
    /// `History.LastID` as last read.
    std::int32_t LastAssessmentNum = 0;
    /// Number of `QuestionList` records with `Selected` set.
    std::int32_t SelectedQuestionCount = 0;
    /// False while the topic list's rows are being rewritten.
    bool TopicEventsEnabled = true;
    bool RandomSeeded = false;

    // The draw.
    List1<QuestionRecord> DrawPool;
    std::int32_t RequestedQuestionCount = 0;

    // The question browser of the library manager.
    List1<QuestionRecord> BrowseQuestions;
    std::int32_t QuestionCount = 0;
    /// 1-based position in `BrowseQuestions`; 0 when no question is shown.
    std::int32_t QuestionPosition = 0;
};

} // namespace varnholt
