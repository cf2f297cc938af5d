#pragma once

#include "pictures/picture_info.h"
#include "store/modMain.h"

#include <QString>

#include <optional>

namespace varnholt {

// The browser shows the questions of one subtopic one at a time: `BrowseQuestions`,
// `QuestionCount` and `QuestionPosition` of the state.

/// Copies into `BrowseQuestions`, in catalogue order, the questions of the topic (none without
/// one) that are filed under the subtopic, or under one that is not in the catalogue, and counts
/// them. `QuestionPosition` becomes 0 when there are none and stays otherwise.
void CollectBrowseQuestions(ProgramState& state, std::optional<std::int32_t> topicId,
                            std::optional<std::int32_t> subtopicNum);

/// `QuestionCount` becomes the number of questions to browse.
void UpdateCount2(ProgramState& state);

/// One question back or on; at an end the position stays.
void StepLeft(ProgramState& state);
void StepRight(ProgramState& state);

/// The 1-based position of the question with this key, 0 when it is not there.
[[nodiscard]] std::int32_t PositionOf(const List1<QuestionRecord>& questions,
                                      std::int32_t solIndex);

/// "3 of 12".
[[nodiscard]] QString PositionText(const ProgramState& state);

/// What stands beside the picture of a question whose own cannot be shown: the reason where the
/// message does not give it, and, where the picture is `borrowed`, that it belongs to the
/// question before.
[[nodiscard]] QString PictureHint(PictureFault fault, bool borrowed);

/// Which of the stepping buttons work.
struct PictureButtons
{
    bool left = false;
    bool right = false;

    bool operator==(const PictureButtons&) const = default;
};

[[nodiscard]] PictureButtons EnabledPictureButtons(std::int32_t questionPosition,
                                                   std::int32_t questionCount);

} // namespace varnholt
