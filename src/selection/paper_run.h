#pragma once

#include "selection/paper_draw.h"

class QWidget;

namespace varnholt {

class Library;
struct Services;

/// Puts a test on paper as the teacher wishes it, over a window. Once it was saved or printed the
/// library remembers it: a use of its questions with the class that stands on the paper, once for
/// each such class. With a draw that was kept its key: it becomes the test.
void RunPaper(QWidget* window, Services& services, Library& library, DrawnTest test,
              std::int32_t keptTestId = 0);

} // namespace varnholt
