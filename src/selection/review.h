#pragma once

#include "store/modMain.h"

#include <QString>

namespace varnholt {

/// The review of a drawn pool, question by question from position 1. It only keeps count and
/// marks the records of the pool, which must outlive it and come with every flag cleared.
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

    Review(List1<QuestionRecord>& drawPool, std::int32_t requestedQuestionCount);

    /// The pool position on show; one past the end when all have been judged.
    [[nodiscard]] int position() const { return ReviewPosition_; }
    /// The question on show.
    [[nodiscard]] const QuestionRecord& question() const { return DrawPool_(ReviewPosition_); }

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

    List1<QuestionRecord>& DrawPool_;
    std::int32_t RequestedQuestionCount_;
    std::int32_t ReviewPosition_ = 1;
    std::int32_t AcceptedCount_ = 0;
};

} // namespace varnholt
