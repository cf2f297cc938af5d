#pragma once

#include "content.h"
#include "math_layout.h"

#include <QImage>

namespace varnholt {

/// Size of a question's picture in pixels.
constexpr int PageWidth = 600;
constexpr int PageHeight = 350;
/// White border that nothing reaches into.
constexpr int PageMargin = 20;

/// Draws one question: its lines from top to bottom, a figure marked `right` beside them, the
/// whole centred. Throws std::runtime_error, naming the question, when it does not fit.
QImage drawQuestion(const Typesetter& typesetter, const SampleQuestion& question);

} // namespace varnholt
