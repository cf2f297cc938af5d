#pragma once

#include "library/Journal.h"

#include <QString>

namespace varnholt {

class Library;

/// What a step of the journal did, or what its undoing took back, in one sentence.
[[nodiscard]] QString DoneSentence(const StepInfo& step);
[[nodiscard]] QString UndoneSentence(const StepInfo& step);

/// What stands in the way of a step's undoing, or of its being done again.
[[nodiscard]] QString InTheWaySentence(const UndoOutcome& outcome, bool undo);

/// Undoes the newest step if it is about a class, a test or a use of a question, and tells what
/// came of it in a sentence. Throws as `Library::undo`.
[[nodiscard]] QString UndoMemoryStep(Library& library);

} // namespace varnholt
