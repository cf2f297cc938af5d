#pragma once

#include "store/modMain.h"

#include <QString>

#include <optional>

namespace varnholt {

class MessageBoxes;
class RandomGenerator;

/// Reads what a user types as a number: in the user's own notation or with a decimal point,
/// blanks around it allowed. No value when the text is not a finite number.
[[nodiscard]] std::optional<double> ParseNumber(const QString& text);

/// Checks the number asked for against the selection, fills `DrawPool` with the selected
/// questions in random order and sets `RequestedQuestionCount`. False when the user was told
/// that something is wrong; nothing has been drawn then.
[[nodiscard]] bool DrawQuestions(ProgramState& state, const QString& numberText,
                                 RandomGenerator& random, MessageBoxes& messages);

/// Puts the pool in a uniformly random order by rejection sampling (about n ln n numbers of
/// the generator for n records) and clears every `Selected` flag.
void ShuffleDrawPool(List1<QuestionRecord>& pool, RandomGenerator& random);

/// Marks pool positions 1 to `count` for the presentation.
void MarkFirst(List1<QuestionRecord>& pool, std::int32_t count);

} // namespace varnholt
