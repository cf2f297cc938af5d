#pragma once

#include "show/Show.h"

namespace varnholt {

struct Draw;
struct ProgramState;

/// The marked questions of a draw, in its order, to be shown in class. What a review has not come
/// to can take the place of one; what it left out cannot. The catalogue outlives the test.
[[nodiscard]] ShowTest ShowTestOf(const Draw& draw, const ProgramState& state,
                                  const QString& programFolder, bool topicLine);

} // namespace varnholt
