#pragma once

#include "paper/paper_test.h"

namespace varnholt {

struct Draw;
struct ProgramState;

/// The marked questions of a draw, in its order, as a test for paper named after the current
/// assessment.
[[nodiscard]] PaperTest PaperTestOf(const Draw& draw, const ProgramState& state,
                                    const QString& programFolder);

} // namespace varnholt
