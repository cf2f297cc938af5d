#pragma once

#include "store/modMain.h"

#include <QString>

namespace varnholt {

class Connection;
class Library;

/// The highest key that an assessment has ever had, deleted ones included: the next one comes
/// after it. 0 without any, and when it cannot be read.
[[nodiscard]] std::int32_t HighestAssessmentNum(Connection& connection);

/// Makes an assessment current (0 for none) and remembers it in the library. Throws
/// `DatabaseError`.
void RememberAssessment(ProgramState& state, Library& library, std::int32_t assessmentNum);

/// What to say of a row whose key is beyond 16 bits: the sentence with its %1 replaced by the key
/// and its %2 by the largest possible one. Empty for any other key.
[[nodiscard]] QString LargeKeyHint(const QString& sentence, std::int32_t key);

} // namespace varnholt
