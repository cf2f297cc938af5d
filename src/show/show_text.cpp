#include "show/show_text.h"

#include <QFont>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>

namespace varnholt {

namespace {

struct LaidOut
{
    qreal height = 0;
    /// How many characters stand in the lines that fit.
    qsizetype fitting = 0;
};

LaidOut layOut(QTextLayout& layout, const QRectF& room, Qt::Alignment alignment)
{
    QTextOption option(alignment & Qt::AlignHorizontal_Mask);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    LaidOut result;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(room.width());
        line.setPosition({0, result.height});
        result.height += line.height();
        if (result.height <= room.height()) {
            result.fitting = line.textStart() + line.textLength();
        }
    }
    layout.endLayout();
    return result;
}

} // namespace

void DrawFittedText(QPainter& painter, const QRectF& room, Qt::Alignment alignment,
                    const QString& text, TextSizes sizes)
{
    constexpr qreal step = 0.9;
    QFont font = painter.font();
    QTextLayout layout(QString(text).replace(u'\n', QChar::LineSeparator));
    LaidOut laidOut;
    for (qreal size = sizes.largest;; size *= step) {
        const bool last = size * step < sizes.smallest;
        font.setPixelSize(std::max(1, qRound(size)));
        layout.setFont(font);
        laidOut = layOut(layout, room, alignment);
        if (laidOut.height <= room.height()) {
            break;
        }
        if (last) {
            layout.setText(layout.text().left(std::max<qsizetype>(laidOut.fitting - 1, 0)) +
                           QChar(0x2026));
            laidOut = layOut(layout, room, alignment);
            break;
        }
    }
    qreal top = room.top();
    if (alignment & Qt::AlignVCenter) {
        top += std::max(0.0, (room.height() - laidOut.height) / 2);
    }
    layout.draw(&painter, {room.left(), top});
}

} // namespace varnholt
