#pragma once

#include "store/modMain.h"

#include <QString>

#include <cstdint>
#include <vector>

namespace varnholt {

/// One entry of a drop-down list: its text and its key.
struct FilingChoice
{
    QString text;
    std::int32_t key = 0;
};

/// The topics that a question can be filed under: those with at least one subtopic.
[[nodiscard]] std::vector<FilingChoice> TopicChoices(const ProgramState& state);
[[nodiscard]] std::vector<FilingChoice> SubtopicChoices(const ProgramState& state,
                                                        std::int32_t topicId);

/// Position of the last choice with this key; 0 when there is none.
[[nodiscard]] int PositionOf(const std::vector<FilingChoice>& choices, std::int32_t key);

} // namespace varnholt
