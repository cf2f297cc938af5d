#pragma once

#include "library/Journal.h"

#include <QString>

namespace varnholt {

/// What a step of the journal did, or what its undoing took back, in one sentence.
[[nodiscard]] QString DoneSentence(const StepInfo& step);
[[nodiscard]] QString UndoneSentence(const StepInfo& step);

/// Which rows stand in the way of a step's undoing, or of its being done again.
[[nodiscard]] QString ChangedSinceSentence(const std::vector<NamedItem>& inTheWay, bool undo);

} // namespace varnholt
