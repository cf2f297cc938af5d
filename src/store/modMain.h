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
};

struct SubTopicRecord
{
    std::int32_t TopicID = 0;
    std::int32_t SubtopicNum = 0;
    QString SubTopic;
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
};

/// A question in a draw pool.
struct DrawnQuestion : QuestionRecord
{
    /// Goes into the presentation.
    bool Selected = false;
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
};

} // namespace varnholt
