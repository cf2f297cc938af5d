#pragma once

#include "selection/Selection.h"

#include <QString>

#include <optional>
#include <variant>

namespace varnholt {

class RandomGenerator;

/// A draw: a value that holds all a build, a review or a record of it needs.
struct Draw
{
    /// The selected questions in the order drawn.
    List1<DrawnQuestion> DrawPool;
    /// How many of them are wanted.
    std::int32_t RequestedQuestionCount = 0;
    /// Positions up to here were judged in a review: what is not marked there was left out.
    std::int32_t judged = 0;
    /// A generator seeded with it shuffles the same questions into the same order again.
    std::uint64_t seed = 0;
};

/// Why there is no draw.
enum class DrawObstacle
{
    NoQuestions,
    NotANumber,
    /// Less than one, or more than are selected.
    NumberOutOfRange
};

/// Reads what a user types as a number: in the user's own notation or with a decimal point,
/// blanks around it allowed. No value when the text is not a finite number.
[[nodiscard]] std::optional<double> ParseNumber(const QString& text);

/// Checks the number asked for against the selection and puts the selected questions in random
/// order. None is marked for the presentation yet, so that the order may still be changed.
[[nodiscard]] std::variant<Draw, DrawObstacle>
DrawQuestions(const List1<QuestionRecord>& questionList, const Selection& selection,
              const QString& numberText, RandomGenerator& random);

/// Puts the pool in a uniformly random order by rejection sampling (about n ln n numbers of
/// the generator for n records) and clears every `Selected` flag.
void ShuffleDrawPool(List1<DrawnQuestion>& pool, RandomGenerator& random);

/// Marks pool positions 1 to `count` for the presentation.
void MarkFirst(List1<DrawnQuestion>& pool, std::int32_t count);

} // namespace varnholt
