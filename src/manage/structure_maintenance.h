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

/// "Topic number 40000 is above 32767 and cannot be deleted." for the subject "Topic" and the
/// consequence "cannot be deleted"; empty for a key within 16 bits.
[[nodiscard]] QString LargeKeyHint(const QString& subject, std::int32_t key,
                                   const QString& consequence);

} // namespace varnholt
