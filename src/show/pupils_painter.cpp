#include "show/pupils_painter.h"

#include "show/show_text.h"

#include <QCoreApplication>
#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>

namespace varnholt {

namespace {

struct Words
{
    Q_DECLARE_TR_FUNCTIONS(PupilsView)
};

// Parts of the window's height.
constexpr qreal lineAbove = 0.07;
constexpr qreal answerBelow = 0.085;
constexpr qreal margin = 0.012;

const QColor ink(Qt::black);
const QColor lastSecondsColour(0xc6, 0x10, 0x10);
const QColor noteColour(0xff, 0xf4, 0xc2);

QFont sized(QFont font, qreal pixels, bool bold = false)
{
    font.setPixelSize(std::max(1, qRound(pixels)));
    font.setBold(bold);
    return font;
}

/// In the last seconds on a plate of another colour, so that it is not told by colour alone.
/// Returns where it begins.
qreal paintClock(QPainter& painter, const QRectF& line, const ClockFace& face)
{
    constexpr int perMinute = 60;
    constexpr int decimal = 10;
    const QString text = QStringLiteral("%1:%2")
                             .arg(face.seconds / perMinute)
                             .arg(face.seconds % perMinute, 2, decimal, QLatin1Char('0'));
    painter.setFont(sized(painter.font(), line.height() * 0.72, true));
    const qreal width = QFontMetricsF(painter.font()).horizontalAdvance(text) + line.height() * 0.8;
    const QRectF plate(line.right() - width, line.top(), width, line.height());
    painter.setPen(ink);
    if (face.isLast()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(lastSecondsColour);
        const qreal corner = face.isOver() ? 0 : plate.height() / 2;
        painter.drawRoundedRect(plate, corner, corner);
        painter.setPen(Qt::white);
    }
    painter.drawText(plate, Qt::AlignCenter, text);
    return plate.left();
}

void paintLineAbove(QPainter& painter, const QSizeF& size, const PupilsView& view)
{
    const qreal gap = size.height() * margin;
    QRectF line(gap, gap, size.width() - 2 * gap, size.height() * lineAbove - gap);
    if (view.clock) {
        line.setRight(paintClock(painter, line, *view.clock) - gap);
    }
    painter.setPen(ink);
    painter.setFont(sized(painter.font(), line.height() * 0.72, true));
    const QString number = QStringLiteral("#%1").arg(view.number);
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter, number);
    line.setLeft(line.left() + QFontMetricsF(painter.font()).horizontalAdvance(number) + 3 * gap);
    painter.setFont(sized(painter.font(), line.height() * 0.6));
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter,
                     QFontMetricsF(painter.font())
                         .elidedText(view.topic, Qt::ElideMiddle, std::max(line.width(), 1.0)));
}

void paintPicture(QPainter& painter, const QSizeF& size, const PupilsView& view,
                  const ShowPicture& picture)
{
    if (picture.whole.isNull()) {
        return;
    }
    const QRectF target = PupilsPictureRect(size, picture.whole.size(), view.zoom);
    const qreal ratio = painter.device()->devicePixelRatioF();
    painter.save();
    painter.setClipRect(PupilsPictureRoom(size));
    if (view.zoom.isNull() && !picture.fitted.isNull()) {
        QImage fitted = picture.fitted;
        fitted.setDevicePixelRatio(ratio);
        // Whole device pixels, or the picture would be smeared over two.
        painter.drawImage((target.topLeft() * ratio).toPoint().toPointF() / ratio, fitted);
    } else {
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(target, picture.whole);
    }
    painter.restore();
}

/// At the foot, and as far up as the picture leaves room.
void paintAnswer(QPainter& painter, const QSizeF& size, const PupilsView& view,
                 const ShowPicture& picture)
{
    if (view.answer.isEmpty()) {
        return;
    }
    const qreal gap = size.height() * margin;
    const qreal least = size.height() * answerBelow;
    const qreal above = view.zoom.isNull() && !picture.whole.isNull()
                            ? PupilsPictureRect(size, picture.whole.size(), {}).bottom()
                            : size.height() - least;
    const QRectF room = QRectF(QPointF(0, above), QPointF(size.width(), size.height()))
                            .adjusted(gap, gap / 2, -gap, -gap / 2);
    painter.setPen(ink);
    painter.setFont(sized(painter.font(), 1, true));
    DrawFittedText(painter, room, Qt::AlignHCenter | Qt::AlignVCenter, view.answer,
                   {std::min(room.height(), least * 1.4) * 0.7, least * 0.28});
}

/// On a plate at the foot of the picture's room, over whatever is there.
void paintNote(QPainter& painter, const QSizeF& size, const QString& note)
{
    const QRectF room = PupilsPictureRoom(size);
    const qreal margins = size.height() * margin;
    painter.setFont(sized(painter.font(), size.height() * 0.035));
    const QRectF words = QFontMetricsF(painter.font())
                             .boundingRect(room.adjusted(2 * margins, 0, -2 * margins, 0),
                                           Qt::AlignHCenter | Qt::TextWordWrap, note);
    QRectF plate = words.adjusted(-margins, -margins, margins, margins);
    plate.moveBottom(room.bottom());
    painter.setPen(ink);
    painter.setBrush(noteColour);
    painter.drawRect(plate);
    painter.drawText(plate, Qt::AlignCenter | Qt::TextWordWrap, note);
}

void paintAnswers(QPainter& painter, const QSizeF& size, const PupilsView& view)
{
    constexpr int columns = 2;
    constexpr int rows = Show::answersPerPage / columns;
    const qreal gap = size.height() * margin * 2;
    const qreal title = size.height() * lineAbove;
    painter.setPen(ink);
    painter.setFont(sized(painter.font(), title * 0.72, true));
    painter.drawText(QRectF(gap, gap, size.width() - 2 * gap, title),
                     Qt::AlignLeft | Qt::AlignVCenter, Words::tr("Answers"));
    const int used = view.answers.size() > rows ? columns : 1;
    const QSizeF cell((size.width() - gap) / used - gap, (size.height() - title - 3 * gap) / rows);
    int index = 0;
    for (const PupilsView::Answer& answer : view.answers) {
        const int column = index / rows;
        const QRectF row(gap + (cell.width() + gap) * column,
                         title + 2 * gap + cell.height() * (index % rows), cell.width(),
                         cell.height());
        ++index;
        const QString number = QStringLiteral("%1)").arg(answer.number);
        painter.setFont(sized(painter.font(), cell.height() * 0.55, true));
        painter.drawText(row, Qt::AlignLeft | Qt::AlignVCenter, number);
        const qreal indent =
            QFontMetricsF(painter.font()).horizontalAdvance(QStringLiteral("000) "));
        painter.setFont(sized(painter.font(), 1));
        DrawFittedText(painter, row.adjusted(indent, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter,
                       answer.text, {cell.height() * 0.55, cell.height() * 0.3});
    }
}

} // namespace

QRectF PupilsPictureRoom(const QSizeF& size)
{
    const qreal gap = size.height() * margin;
    return QRectF(0, 0, size.width(), size.height())
        .adjusted(gap, size.height() * lineAbove + gap, -gap, -size.height() * answerBelow);
}

QRectF PupilsPictureRect(const QSizeF& size, QSize picture, const QRectF& zoom)
{
    const QRectF room = PupilsPictureRoom(size);
    const QRectF seen = zoom.isNull() ? QRectF(0, 0, 1, 1) : zoom;
    const qreal scale = std::min(room.width() / (seen.width() * picture.width()),
                                 room.height() / (seen.height() * picture.height()));
    const QSizeF all = QSizeF(picture) * scale;
    // What is beside the part is seen, too, where there is room; the picture's edge stays at the
    // room's where it is larger, and else all of it stands in the middle.
    const auto start = [](qreal from, qreal length, qreal whole, qreal middle) {
        return whole <= length
                   ? from + (length - whole) / 2
                   : std::clamp(from + length / 2 - middle * whole, from + length - whole, from);
    };
    return {{start(room.left(), room.width(), all.width(), seen.center().x()),
             start(room.top(), room.height(), all.height(), seen.center().y())},
            all};
}

void PaintPupilsView(QPainter& painter, const QSizeF& size, const PupilsView& view,
                     const ShowPicture& picture)
{
    const bool black = view.cover == PupilsView::Cover::Black;
    painter.fillRect(QRectF({}, size), black ? Qt::black : Qt::white);
    painter.setRenderHint(QPainter::Antialiasing);
    if (view.cover == PupilsView::Cover::None) {
        if (view.number == 0) {
            paintAnswers(painter, size, view);
        } else {
            paintLineAbove(painter, size, view);
            paintPicture(painter, size, view, picture);
            paintAnswer(painter, size, view, picture);
        }
    }
    if (!view.note.isEmpty()) {
        paintNote(painter, size, view.note);
    }
}

} // namespace varnholt
