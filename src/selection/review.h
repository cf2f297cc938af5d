#pragma once

#include "selection/question_draw.h"

#include <QString>

namespace varnholt {

/// The review of a draw, question by question from position 1. It only keeps count and marks the
/// records of the pool.
class Review
{
public:
    /// What comes after a judgement.
    enum class Next
    {
        Show,
        Build,
        /// Nothing was included, so there is nothing to build.
        Close
    };

    explicit Review(Draw draw);

    /// The draw as it has been judged so far.
    [[nodiscard]] const Draw& draw() const { return draw_; }
    /// The pool position on show; one past the end when all have been judged.
    [[nodiscard]] int position() const { return ReviewPosition_; }
    /// The question on show.
    [[nodiscard]] const QuestionRecord& question() const { return draw_.DrawPool(ReviewPosition_); }

    /// Questions included so far.
    [[nodiscard]] int acceptedCount() const { return AcceptedCount_; }

    /// Judges the question on show and moves on: until the number asked for has been
    /// included or the pool is at its end.
    Next include();
    Next exclude();
    /// Leaves out the question on show and all after it.
    void excludeRest();
    /// Takes the last judgement back: its question is on show again.
    void reopenLast();

    /// The two counters, for example "Questions Selected: 2" and "Questions Left to View: 8".
    /// The question on show counts as left.
    [[nodiscard]] QString selectedText() const;
    [[nodiscard]] QString leftText() const;

private:
    Next moveOn();

    Draw draw_;
    std::int32_t ReviewPosition_ = 1;
    std::int32_t AcceptedCount_ = 0;
};

} // namespace varnholt
