#pragma once

#include <QSizeF>
#include <QString>
#include <QStringView>

#include <initializer_list>
#include <vector>

namespace varnholt {

/// The slides of every back end, in points.
inline constexpr double slideWidth = 960;
inline constexpr double slideHeight = 540;

/// A text box keeps so much of its width and of its height free.
inline constexpr double boxMargins = 16;
/// From one line to the next, as a part of the text's size.
inline constexpr double lineOfSize = 1.2;

// How texts fill boxes is guessed, on the generous side: the fonts are those of a presentation
// program on another machine.

/// The width of a line in points.
[[nodiscard]] double GuessedWidth(QStringView line, double size);

/// The lines into which a text is broken in a text box of that width: between words, and where a
/// word is too long within it. Line feeds are breaks, too; never empty.
[[nodiscard]] std::vector<QStringView> GuessedLines(QStringView text, double size, double boxWidth);

/// What a text box must be high to hold so many lines.
[[nodiscard]] constexpr double BoxHeight(std::size_t lines, double size)
{
    return static_cast<double>(lines) * size * lineOfSize + boxMargins;
}

/// The first of the sizes at which a text fits a box, and the last where it fits at none.
[[nodiscard]] double FittingSize(QStringView text, std::initializer_list<double> sizes,
                                 const QSizeF& box);

} // namespace varnholt
