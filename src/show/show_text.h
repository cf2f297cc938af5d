#pragma once

#include <QRectF>
#include <QString>
#include <QtCore/qnamespace.h>

class QPainter;

namespace varnholt {

/// Sizes in the painter's units.
struct TextSizes
{
    qreal largest = 0;
    qreal smallest = 0;
};

/// Draws a text into a rectangle, broken where it has to be: as large as it fits between two
/// sizes, and cut where even the smallest does not. In the painter's font and colour.
void DrawFittedText(QPainter& painter, const QRectF& room, Qt::Alignment alignment,
                    const QString& text, TextSizes sizes);

} // namespace varnholt
