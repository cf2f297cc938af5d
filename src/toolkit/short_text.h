#pragma once

#include <QString>

namespace varnholt {

/// More characters cannot be seen in a row of a list, and laying them out would cost time at every
/// paint; nor is more read of a tool tip.
inline constexpr qsizetype longestShown = 500;
inline constexpr qsizetype longestToolTip = 2000;

/// The text with a blank for every line break, tab and other control character; CR LF counts as
/// one line break.
[[nodiscard]] QString OneLine(QString text);

/// The text on one line and, where it is longer than `longest` characters, with dots in place of
/// its middle: what a name says is at its beginning, and what was added to it at its end.
[[nodiscard]] QString ShortLine(const QString& text, qsizetype longest);

/// The text as a label or a message can show it that is as wide as it likes but no wider: shorter
/// in the middle beyond `longest` characters, and with places to break a line in words that have
/// none. Texts of ordinary words up to that length stay as they are.
[[nodiscard]] QString Wrappable(const QString& text, qsizetype longest);

} // namespace varnholt
