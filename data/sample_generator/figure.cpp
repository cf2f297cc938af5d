#include "figure.h"

#include "figure_style.h"

#include <QLineF>
#include <QPainter>
#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <stdexcept>

namespace varnholt {

namespace {

using namespace Qt::StringLiterals;

using namespace figure_style;

/// The pen that words such as "dashed", "thick" or "blue" ask for.
QPen styled(const QStringList& words)
{
    QPen result = Outline;
    for (const QString& word : words) {
        if (word == u"dashed")
            result.setDashPattern({4, 3});
        else if (word == u"thick")
            result.setWidthF(2.8);
        else if (word == u"thin")
            result.setWidthF(1.2);
        else if (word == u"blue")
            result.setColor(Blue);
        else if (word == u"red")
            result.setColor(Red);
        else if (word == u"grey")
            result.setColor(Grey);
    }
    return result;
}

QColor shadeIn(const QStringList& words)
{
    return words.contains(u"dark"_qs)    ? DarkShade
           : words.contains(u"fill"_qs)  ? Shade
           : words.contains(u"white"_qs) ? QColor(Qt::white)
                                         : QColor();
}

QPointF compass(const QString& word)
{
    QPointF direction;
    for (const QChar letter : word) {
        switch (letter.unicode()) {
        case u'n':
            direction += {0, -1};
            break;
        case u's':
            direction += {0, 1};
            break;
        case u'e':
            direction += {1, 0};
            break;
        case u'w':
            direction += {-1, 0};
            break;
        case u'c':
            break;
        default:
            throw std::runtime_error(u"\"%1\" is no direction"_qs.arg(word).toStdString());
        }
    }
    return unit(direction);
}

/// Distance of a point from a rectangle, 0 inside.
double distanceTo(const QRectF& rectangle, QPointF point)
{
    const double x = std::max({rectangle.left() - point.x(), 0.0, point.x() - rectangle.right()});
    const double y = std::max({rectangle.top() - point.y(), 0.0, point.y() - rectangle.bottom()});
    return std::hypot(x, y);
}

std::array<QPointF, 4> cornersOf(const QRectF& rectangle)
{
    return {rectangle.topLeft(), rectangle.topRight(), rectangle.bottomLeft(),
            rectangle.bottomRight()};
}

/// How far a point lies to the left of a line, seen along it on the screen.
double distanceLeft(const QLineF& line, QPointF point)
{
    const QPointF along = unit(line.p2() - line.p1());
    const QPointF offset = point - line.p1();
    return along.y() * offset.x() - along.x() * offset.y();
}

} // namespace

Figure::Figure(const Typesetter& typesetter, double textSize)
    : m_typesetter(typesetter)
    , m_textSize(textSize)
{
    m_commands[u"scale"_qs] = [this](const Words& words) {
        m_scaleX = number(words.at(1));
        m_scaleY = words.size() > 2 ? number(words.at(2)) : m_scaleX;
    };
    m_commands[u"point"_qs] = [this](const Words& words) {
        m_points[words.at(1)] = position(words.at(2));
        if (words.size() > 3)
            label(u"$%1$"_qs.arg(words.at(1)), pixel(words.at(1)), compass(words.at(3)), 6);
    };
    registerDrawing();
    registerLabels();
    registerGraphs();
    registerCircuit();
}

void Figure::run(const QString& command)
{
    const Words words = command.simplified().split(u' ');
    const auto found = m_commands.constFind(words.front());
    if (found == m_commands.cend())
        throw std::runtime_error(u"unknown figure command \"%1\""_qs.arg(command).toStdString());
    static const QMap<QString, int> fewest{{u"point"_qs, 3}, {u"line"_qs, 3}, {u"angle"_qs, 4},
                                           {u"side"_qs, 4},  {u"text"_qs, 4}, {u"axes"_qs, 7}};
    if (words.size() < fewest.value(words.front(), 2))
        throw std::runtime_error(u"\"%1\" is too short"_qs.arg(command).toStdString());
    (*found)(words);
}

void Figure::draw(QPainter& painter, QPointF corner) const
{
    painter.save();
    painter.translate(corner - m_bounds.topLeft());
    for (const auto* items : {&m_items, &m_topItems})
        for (const Item& item : *items) {
            painter.setPen(item.pen);
            painter.setBrush(item.brush);
            painter.drawPath(item.path);
        }
    painter.restore();
}

double Figure::number(const QString& word) const
{
    const auto value = m_expression.evaluate(word);
    if (!value)
        throw std::runtime_error(u"\"%1\" is no number"_qs.arg(word).toStdString());
    return *value;
}

QPointF Figure::position(const QString& word) const
{
    static const QRegularExpression polar(u"^([^+]+)\\+([\\d.]+)@(-?[\\d.]+)$"_qs);
    if (m_points.contains(word))
        return m_points.value(word);
    if (const auto match = polar.match(word); match.hasMatch()) {
        const double radians = match.captured(3).toDouble() * std::numbers::pi / 180;
        return position(match.captured(1)) +
               match.captured(2).toDouble() * QPointF(std::cos(radians), std::sin(radians));
    }
    if (word.count(u',') != 1)
        throw std::runtime_error(u"\"%1\" is no position"_qs.arg(word).toStdString());
    return {number(word.section(u',', 0, 0)), number(word.section(u',', 1))};
}

void Figure::stroke(const QPainterPath& path, const QPen& pen, const QBrush& brush)
{
    m_items.push_back({path, pen, brush});
    const double half = pen.style() == Qt::NoPen ? 0 : pen.widthF() / 2;
    m_bounds |= path.boundingRect().adjusted(-half, -half, half, half);
}

void Figure::fill(const QPainterPath& path, const QColor& colour)
{
    stroke(path, Qt::NoPen, colour);
}

void Figure::lineTo(QPointF from, QPointF to, const QPen& pen)
{
    QPainterPath path(from);
    path.lineTo(to);
    stroke(path, pen);
}

void Figure::arrowHead(QPointF tip, QPointF from, const QColor& colour)
{
    const QPointF along = unit(tip - from);
    const QPointF across(-along.y(), along.x());
    QPainterPath path(tip);
    path.lineTo(tip - 11 * along + 4.5 * across);
    path.lineTo(tip - 8.5 * along);
    path.lineTo(tip - 11 * along - 4.5 * across);
    path.closeSubpath();
    fill(path, colour);
}

void Figure::label(const QString& text, QPointF at, QPointF direction,
                   const std::function<bool(const QRectF&)>& clear)
{
    const Box box = m_typesetter.line(text, m_textSize);
    QRectF ink = box.ink.boundingRect();
    if (-ink.top() > 0.6 * m_textSize) // Capitals and "d" are taken as equally high.
        ink.setTop(-0.69 * m_textSize);
    QRectF place(at - QPointF(ink.width() / 2, ink.height() / 2), ink.size());
    constexpr double Step = 0.5;
    constexpr int Farthest = 300;
    for (int step = 0; step < Farthest && !clear(place); ++step)
        place.translate(direction * Step);
    const QPainterPath path = box.ink.translated(place.center() - ink.center());
    m_bounds |= path.boundingRect();
    auto& items = m_haloed ? m_topItems : m_items;
    if (m_haloed)
        items.push_back({path, pen(3.5, Qt::white), Qt::NoBrush});
    items.push_back({path, Qt::NoPen, Black});
}

void Figure::label(const QString& text, QPointF at, QPointF direction, double distance)
{
    label(text, at, direction, [&](const QRectF& place) {
        return direction.isNull() || distanceTo(place, at) >= distance;
    });
}

void Figure::registerDrawing()
{
    m_commands[u"line"_qs] = [this](const Words& words) {
        QPainterPath path(pixel(words.at(1)));
        QPointF last = pixel(words.at(1));
        QPointF before = last;
        for (qsizetype index = 2; index < words.size() && (words.at(index).contains(u',') ||
                                                           words.at(index).contains(u'@') ||
                                                           m_points.contains(words.at(index)));
             ++index) {
            before = std::exchange(last, pixel(words.at(index)));
            path.lineTo(last);
        }
        const QPen chosen = styled(words);
        if (words.contains(u"arrow"_qs)) {
            path.setElementPositionAt(path.elementCount() - 1, (last - 6 * unit(last - before)).x(),
                                      (last - 6 * unit(last - before)).y());
            stroke(path, chosen);
            arrowHead(last, before, chosen.color());
        } else {
            stroke(path, chosen);
        }
    };
    m_commands[u"poly"_qs] = [this](const Words& words) {
        QPolygonF polygon;
        for (const QString& word : words.mid(1))
            if (word.contains(u',') || m_points.contains(word))
                polygon << pixel(word);
        QPainterPath path;
        path.addPolygon(polygon);
        path.closeSubpath();
        const QColor shade = shadeIn(words);
        stroke(path, styled(words), shade.isValid() ? QBrush(shade) : QBrush());
    };
    m_commands[u"circle"_qs] = [this](const Words& words) {
        QPainterPath path;
        path.addEllipse(pixel(words.at(1)), number(words.at(2)) * m_scaleX,
                        number(words.at(2)) * m_scaleY);
        const QColor shade = shadeIn(words);
        stroke(path, styled(words), shade.isValid() ? QBrush(shade) : QBrush());
    };
    const auto arc = [this](const Words& words, bool sector) {
        const QPointF centre = pixel(words.at(1));
        const double radius = number(words.at(2)) * m_scaleX;
        const QRectF box(centre - QPointF(radius, radius), centre + QPointF(radius, radius));
        const double from = number(words.at(3));
        const double sweep = number(words.at(4)) - from;
        QPainterPath path;
        if (sector)
            path.moveTo(centre);
        else
            path.arcMoveTo(box, from);
        path.arcTo(box, from, sweep);
        if (sector)
            path.closeSubpath();
        const QColor shade = shadeIn(words);
        stroke(path, styled(words), shade.isValid() ? QBrush(shade) : QBrush());
    };
    m_commands[u"arc"_qs] = [arc](const Words& words) { arc(words, false); };
    m_commands[u"sector"_qs] = [arc](const Words& words) { arc(words, true); };
    m_commands[u"dot"_qs] = [this](const Words& words) {
        QPainterPath path;
        path.addEllipse(pixel(words.at(1)), 3.2, 3.2);
        fill(path, Black);
    };
    m_commands[u"cross"_qs] = [this](const Words& words) {
        const QPointF at = pixel(words.at(1));
        lineTo(at + QPointF(-4.5, -4.5), at + QPointF(4.5, 4.5), pen(1.6, Blue));
        lineTo(at + QPointF(-4.5, 4.5), at + QPointF(4.5, -4.5), pen(1.6, Blue));
    };
    const auto ring = [this](const Words& words, const QColor& inside) {
        QPainterPath path;
        path.addEllipse(pixel(words.at(1)), 5.5, 5.5);
        stroke(path, pen(2, Blue), inside);
    };
    m_commands[u"open"_qs] = [ring](const Words& words) { ring(words, Qt::white); };
    m_commands[u"closed"_qs] = [ring](const Words& words) { ring(words, Blue); };
}

void Figure::registerLabels()
{
    m_commands[u"text"_qs] = [this](const Words& words) {
        label(rest(words, 3), pixel(words.at(1)), compass(words.at(2)), 8);
    };
    m_commands[u"side"_qs] = [this](const Words& words) {
        const QPointF from = pixel(words.at(1));
        const QPointF to = pixel(words.at(2));
        const QPointF along = unit(to - from);
        const QLineF line(from, to);
        label(rest(words, 3), line.center(), {-along.y(), along.x()}, [&line](const QRectF& place) {
            return std::ranges::all_of(cornersOf(place), [&line](QPointF corner) {
                return distanceLeft(line, corner) < -6;
            });
        });
    };
    m_commands[u"angle"_qs] = [this](const Words& words) { angle(words); };
    m_commands[u"right"_qs] = [this](const Words& words) {
        const QPointF corner = pixel(words.at(2));
        const QPointF one = 11 * unit(pixel(words.at(1)) - corner);
        const QPointF two = 11 * unit(pixel(words.at(3)) - corner);
        QPainterPath path(corner + one);
        path.lineTo(corner + one + two);
        path.lineTo(corner + two);
        stroke(path, Thin);
    };
    const auto marks = [this](const Words& words, bool arrows) {
        const QPointF from = pixel(words.at(1));
        const QPointF to = pixel(words.at(2));
        const int count = words.size() > 3 ? words.at(3).toInt() : 1;
        const QPointF along = unit(to - from);
        const QPointF across(-along.y(), along.x());
        for (int mark = 0; mark < count; ++mark) {
            const QPointF at = (from + to) / 2 + (5.0 * mark - 2.5 * (count - 1)) * along;
            if (arrows) {
                QPainterPath path(at - 5 * along + 5 * across);
                path.lineTo(at + 3 * along);
                path.lineTo(at - 5 * along - 5 * across);
                stroke(path, Outline);
            } else {
                lineTo(at + 5.5 * across, at - 5.5 * across, pen(1.5));
            }
        }
    };
    m_commands[u"equal"_qs] = [marks](const Words& words) { marks(words, false); };
    m_commands[u"parallel"_qs] = [marks](const Words& words) { marks(words, true); };
    m_commands[u"arrow"_qs] = [this](const Words& words) {
        const QPointF from = pixel(words.at(1));
        const QPointF to = pixel(words.at(2));
        lineTo(from, to - 6 * unit(to - from), pen(2.4, Blue));
        arrowHead(to, from, Blue);
        if (words.size() > 3)
            label(rest(words, 3), to, unit(to - from), 5);
    };
    m_commands[u"dimension"_qs] = [this](const Words& words) { dimension(words); };
}

void Figure::angle(const Words& words)
{
    const QPointF corner = pixel(words.at(2));
    const QPointF one = pixel(words.at(1)) - corner;
    const QPointF two = pixel(words.at(3)) - corner;
    const auto degrees = [](QPointF vector) { return QLineF(QPointF(), vector).angle(); };
    double sweep = degrees(two) - degrees(one);
    while (sweep < 0)
        sweep += 360;
    const QString text = rest(words, 4);
    // A narrow angle gets a wider arc, so that its label finds room inside.
    const double radius = sweep < 35 ? 38 : sweep < 60 ? 28 : 21;
    const QRectF box(corner - QPointF(radius, radius), corner + QPointF(radius, radius));
    QPainterPath path;
    path.arcMoveTo(box, degrees(one));
    path.arcTo(box, degrees(one), sweep);
    stroke(path, Thin);
    if (!text.isEmpty()) {
        const double middle = (degrees(one) + sweep / 2) * std::numbers::pi / 180;
        const QLineF sides[] = {{corner, corner + one}, {corner, corner + two}};
        // The label stands beyond the arc and, in a narrow angle, where the sides let it pass.
        const auto clear = [&](const QRectF& place) {
            if (distanceTo(place, corner) < radius + 4)
                return false;
            return sweep >= 180 || std::ranges::all_of(cornersOf(place), [&sides](QPointF at) {
                       return distanceLeft(sides[0], at) > 4 && distanceLeft(sides[1], at) < -4;
                   });
        };
        label(text, corner, {std::cos(middle), -std::sin(middle)}, clear);
    }
}

void Figure::dimension(const Words& words)
{
    const QPointF from = pixel(words.at(1));
    const QPointF to = pixel(words.at(2));
    lineTo(from + 6 * unit(to - from), to + 6 * unit(from - to), Thin);
    arrowHead(from, to, Black);
    arrowHead(to, from, Black);
    const QString text = rest(words, 3);
    QPainterPath ground;
    const QRectF ink =
        m_typesetter.line(text, m_textSize).ink.boundingRect().adjusted(-5, -2, 5, 2);
    ground.addRect(ink.translated((from + to) / 2 - ink.center()));
    fill(ground, Qt::white);
    label(text, (from + to) / 2, {}, 0);
}

} // namespace varnholt
