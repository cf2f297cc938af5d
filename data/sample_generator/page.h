#pragma once

#include "content.h"
#include "math_layout.h"

#include <QImage>

namespace varnholt {

/// Size of a question's picture in pixels: at 144 dots an inch the slide's whole width under the
/// topic line, 954 x 468 points, and sharp on a screen of 1920 x 1080.
constexpr int PictureWidth = 1908;
constexpr int PictureHeight = 936;
/// The page is laid out in units of its own, so many pixels each.
constexpr double UnitPixels = 8.0 / 3;
constexpr double PageWidth = PictureWidth / UnitPixels;
constexpr double PageHeight = PictureHeight / UnitPixels;
/// White border that nothing reaches into.
constexpr double PageMargin = 20;

/// Draws one question: its lines from top to bottom, a figure marked `right` beside them, the
/// whole centred. Throws std::runtime_error, naming the question, when it does not fit.
QImage drawQuestion(const Typesetter& typesetter, const SampleQuestion& question);

} // namespace varnholt
