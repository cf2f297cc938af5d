#pragma once

#include "library/PastTests.h"
#include "presentation/slide_builder.h"

#include <optional>
#include <vector>

class QWidget;

namespace varnholt {

class Library;
class TestRecord;
struct Services;

/// Makes the slides of a past test, or of a draw that was kept for later, out of what the library
/// remembers of it: the same slides also when its questions have been edited, filed elsewhere or
/// deleted since. Offers answers that have been corrected. The new slides are a test of their own;
/// of a draw that was kept they make a test. As `RunBuild`; throws `DatabaseError` when the library
/// cannot be read.
BuildOutcome MakeTestAgain(QWidget* window, Services& services, Library& library,
                           const PastTest& test);

/// Shows a past test, or a draw that was kept, in class, out of what the library remembers of it;
/// other questions of its assessment can take the place of one. As `RunShow`. Throws
/// `DatabaseError`.
void ShowTestAgain(QWidget* window, Services& services, Library& library, const PastTest& test);

/// Puts a past test, or a draw that was kept, on paper, out of what the library remembers of it. As
/// `RunPaper`. Throws `DatabaseError`.
void PrintTestAgain(QWidget* window, Services& services, Library& library, const PastTest& test);

/// The number of the version that comes next of a test or of the test that it is a version of: 1
/// (B) to 5 (F). None when there is no other order left.
[[nodiscard]] std::optional<int> NextVersion(const std::vector<PastTest>& tests,
                                             const PastTest& test);
/// Makes the slides of the next version of a test. `tests` are all that are listed.
BuildOutcome MakeNewVersion(QWidget* window, Services& services, Library& library,
                            const std::vector<PastTest>& tests, const PastTest& test);

/// A build has ended: its test is complete when it is, and when the test could not be remembered
/// she is told.
void FinishTest(Services& services, TestRecord& record, const BuildOutcome& outcome);

} // namespace varnholt
