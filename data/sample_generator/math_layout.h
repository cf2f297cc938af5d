#pragma once

#include "math_boxes.h"

#include <vector>

namespace varnholt {

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
