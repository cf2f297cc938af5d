#pragma once

#include <QPainterPath>
#include <QString>

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

enum class Face
{
    Upright,
    Italic,
    Bold
};

// The parts that formulas are made of. `size` is the font size of the surrounding formula.
// Text is set in Liberation Serif, signs that it lacks in DejaVu Serif; a character that
// neither has throws std::runtime_error.
Box textBox(const QString& text, Face face, double size);
Box space(double width);
Box fraction(const Box& numerator, const Box& denominator, double size);
/// `index` is empty for a square root.
Box root(const Box& radicand, const Box& index, double size);
/// In round brackets as tall as `inner`.
Box bracketed(const Box& inner, double size);
Box columnVector(const Box& upper, const Box& lower, double size);
Box arrowAbove(const Box& inner, double size);
Box dotAbove(const Box& inner, double size);

} // namespace varnholt
