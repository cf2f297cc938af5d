#pragma once

class QKeyEvent;

namespace varnholt {

/// The key of an event; for a letter of another script than Latin the key that has this place on a
/// keyboard with Latin letters, and for a digit of another script the digit. For windows in which
/// letters alone are keys.
[[nodiscard]] int LatinKey(const QKeyEvent& event);

} // namespace varnholt
