#include "paper/paper_painter.h"

#include <QFont>
#include <QImage>
#include <QPainter>

namespace varnholt {

namespace {

/// Fonts come in whole pixels: they are asked for in tenths of a point.
constexpr int fontUnits = 10;
constexpr double lineWidth = 0.75;

QRectF rectangle(const PaperLayout::Rectangle& r)
{
    return {r.left, r.top, r.width, r.height};
}

} // namespace

void PaintPaperPage(QPainter& painter, const PaperLayout::Page& page, const QString& fontFamily,
                    const PaperImages& imageOf)
{
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    for (const PaperLayout::Picture& picture : page.pictures) {
        const QImage image = imageOf(picture.question);
        const QRectF place = rectangle(picture.place);
        const QSize dots = painter.deviceTransform().mapRect(place).size().toSize();
        if (image.isNull()) {
            painter.fillRect(place, QColor(0xee, 0xee, 0xee));
        } else if (dots.width() < image.width() && !dots.isEmpty()) {
            // The painter skips pixels when it shrinks by much, and thin strokes with them.
            painter.drawImage(place,
                              image.scaled(dots, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
        } else {
            painter.drawImage(place, image);
        }
    }
    painter.setPen(QPen(Qt::black, lineWidth));
    painter.setBrush(Qt::NoBrush);
    for (const PaperLayout::Rectangle& outline : page.outlines) {
        if (outline.height > 0) {
            painter.drawRect(rectangle(outline));
        } else {
            painter.drawLine(rectangle(outline).topLeft(), rectangle(outline).topRight());
        }
    }
    for (const PaperLayout::Text& text : page.texts) {
        if (text.hidden) {
            continue;
        }
        QFont font(fontFamily);
        font.setPixelSize(qRound(text.size * fontUnits));
        font.setBold(text.bold);
        font.setHintingPreference(QFont::PreferNoHinting);
        painter.save();
        painter.setFont(font);
        painter.translate(text.left, text.baseline);
        painter.scale(1.0 / fontUnits, 1.0 / fontUnits);
        painter.drawText(QPointF(), text.text);
        painter.restore();
    }
}

} // namespace varnholt
