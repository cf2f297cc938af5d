#pragma once

#include "authoring/CanvasHistory.h"

#include <QPoint>

#include <cstdint>

namespace varnholt {

// The canvas's arithmetic. Beyond 32 bits it throws `OverflowError`.

[[nodiscard]] std::int32_t sum(std::int32_t a, std::int32_t b);
[[nodiscard]] std::int32_t difference(std::int32_t a, std::int32_t b);
/// To a whole number, halves to even.
[[nodiscard]] std::int32_t rounded(double value);

/// Makes the selection's first corner the upper left one.
void orderCorners(CanvasState& state);
/// Gives the selection a corner and a size.
void place(CanvasState& state, QPoint corner, std::int32_t w, std::int32_t h);

} // namespace varnholt
