#include "show/FittedLabel.h"

#include "show/show_text.h"

#include <QPainter>

#include <algorithm>

namespace varnholt {

FittedLabel::FittedLabel(const char* objectName, qreal largestLines)
    : largestLines_(largestLines)
{
    setObjectName(QLatin1String(objectName));
    setTextFormat(Qt::PlainText);
}

QSize FittedLabel::minimumSizeHint() const
{
    return {fontMetrics().averageCharWidth() * 12, fontMetrics().height() * 2};
}

void FittedLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    const qreal ordinary = fontMetrics().height() * 0.8;
    const qreal largest = std::max(height() / largestLines_ * 0.7, ordinary);
    DrawFittedText(painter, contentsRect(), alignment(), text(), {largest, ordinary});
}

} // namespace varnholt
