#pragma once

#include "library/PastTests.h"
#include "paper/paper_test.h"

namespace varnholt {

struct Draw;
struct ProgramState;

/// A test ready to be put on paper, and as it is recorded.
struct DrawnTest
{
    PaperTest paper;
    /// Has the same questions.
    NewTest record;
};

/// The marked questions of a draw, in its order, as a test for paper named after the current
/// assessment.
[[nodiscard]] PaperTest PaperTestOf(const Draw& draw, const ProgramState& state,
                                    const QString& programFolder);

} // namespace varnholt
