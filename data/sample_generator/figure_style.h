#pragma once

#include <QPen>
#include <QPointF>

#include <cmath>

// What all figures have in common: colours, pens, and the one bit of vector arithmetic.
namespace varnholt::figure_style {

inline const QColor Black(0, 0, 0);
inline const QColor Grey(120, 120, 120);
inline const QColor GridGrey(205, 210, 216);
inline const QColor Blue(24, 72, 160);
inline const QColor Red(178, 34, 34);
inline const QColor Shade(214, 228, 244);
inline const QColor DarkShade(142, 176, 217);

inline QPen pen(double width, const QColor& colour = Black)
{
    return {colour, width, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin};
}

inline const QPen Outline = pen(1.8);
inline const QPen Thin = pen(1.2);

/// The vector of length 1 in this direction; null stays null.
inline QPointF unit(QPointF vector)
{
    const double length = std::hypot(vector.x(), vector.y());
    return length > 0 ? vector / length : QPointF();
}

} // namespace varnholt::figure_style
