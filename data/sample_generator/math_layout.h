#pragma once

#include <QPainterPath>
#include <QString>

#include <vector>

namespace varnholt {

/// A typeset piece. `ink` is filled with the text colour; its origin is the left end of the
/// baseline, y grows downwards, units are pixels of the finished picture.
struct Box
{
    double width = 0;
    double ascent = 0;  ///< Above the baseline.
    double descent = 0; ///< Below the baseline.
    QPainterPath ink;

    double height() const { return ascent + descent; }
    /// Puts `other` into this box with its origin at (x, y) and grows to hold it.
    void add(const Box& other, double x, double y = 0);
    /// Appends `other` on the same baseline.
    void append(const Box& other) { add(other, width); }
};

/// Sets text and formulas with fonts named outright, as outlines, so that the result does not
/// depend on a machine's font settings.
///
/// Text is upright; `$...$` holds a formula, `*...*` is bold, `~` is a blank that is not broken.
/// A formula knows letters (italic), numbers, operators, `^`, `_`, braces, `\frac{}{}`,
/// `\sqrt{}`, `\sqrt[3]{}`, `\vec{}` (arrow above), `\bold{}`, `\text{}`, `\dot{}`, `\col{}{}`
/// (column vector), `\left( \right)`, `\sin` and the like, `\,` and `\quad`.
class Typesetter
{
public:
    /// Throws std::runtime_error naming the font and its package when one is not installed.
    Typesetter();

    /// A formula. `display` sets fractions at full size.
    Box formula(const QString& source, double size, bool display = false) const;
    /// Text with formulas on one line.
    Box line(const QString& source, double size) const;
    /// Text with formulas broken into lines no wider than `width`.
    Box paragraph(const QString& source, double size, double width) const;

private:
    std::vector<Box> words(const QString& source, double size) const;
};

} // namespace varnholt
