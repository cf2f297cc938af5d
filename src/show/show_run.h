#pragma once

#include "library/PastTests.h"
#include "show/Show.h"

class QWidget;

namespace varnholt {

class Library;
struct Services;

/// Shows a test in class over a window, as the library's user wishes it to be shown, and has the
/// library remember it; returns when the show has ended. `record` has the same questions. With a
/// draw that was kept its key. False, after it was told, when there is no question to be shown.
bool RunShow(QWidget* window, Services& services, Library& library, ShowTest test, NewTest record,
             std::int32_t keptTestId = 0);

} // namespace varnholt
