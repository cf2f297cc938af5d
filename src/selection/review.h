#pragma once

#include "selection/draw_order.h"
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

    /// With an order by topics' numbers the rest is arranged anew after each question that was left
    /// out, swapped or taken back.
    explicit Review(Draw draw, QuotaOrder order = {});

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
    /// Leaves out the question on show for the nearest one that is still to come: of its subtopic,
    /// else of its topic, else any. Only while `canSwap`.
    void swap();
    [[nodiscard]] bool canSwap() const { return ReviewPosition_ < draw_.DrawPool.upperBound(); }
    /// Leaves out the question on show and all after it.
    void excludeRest();
    /// Takes the last judgement back: its question is on show again. Only while `canReopen`.
    void reopenLast();
    [[nodiscard]] bool canReopen() const { return ReviewPosition_ > 1; }
    /// Changes the order of the questions included so far: `positions` are all of theirs.
    void reorder(const std::vector<int>& positions);
    /// Puts the nearest question that is still to come in the place of one that was included, which
    /// is the last one to come then; false when none is.
    bool swapIncluded(int position);

    /// The topics that can no longer have their numbers.
    [[nodiscard]] std::vector<ShortTopic> shortTopics() const
    {
        return order_.shortTopics(draw_.DrawPool, ReviewPosition_);
    }

    /// The two counters, for example "Questions Selected: 2" and "Questions Left to View: 8".
    /// The question on show counts as left.
    [[nodiscard]] QString selectedText() const;
    [[nodiscard]] QString leftText() const;

private:
    Next moveOn();
    void setPosition(std::int32_t position);
    /// Arranges what comes after the question on show, as if that one were included.
    void arrangeBehind();

    Draw draw_;
    QuotaOrder order_;
    std::int32_t ReviewPosition_ = 1;
    std::int32_t AcceptedCount_ = 0;
};

} // namespace varnholt
