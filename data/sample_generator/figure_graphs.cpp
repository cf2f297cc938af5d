// The commands of figures that draw graphs, charts and circuits.
#include "figure.h"

#include "figure_style.h"

#include <QTransform>

#include <cmath>
#include <numbers>
#include <stdexcept>

namespace varnholt {

namespace {

using namespace Qt::StringLiterals;
using namespace figure_style;

QString plainNumber(double value)
{
    return QString::number(std::abs(value) < 1e-9 ? 0 : value, 'g', 6);
}

} // namespace

void Figure::registerGraphs()
{
    m_commands[u"axes"_qs] = [this](const Words& words) { axes(words); };
    m_commands[u"numberline"_qs] = [this](const Words& words) { numberLine(words); };
    m_commands[u"plot"_qs] = [this](const Words& words) { plot(words); };
    m_commands[u"bar"_qs] = [this](const Words& words) {
        QPainterPath path;
        path.addRect(
            QRectF(map({number(words.at(1)), number(words.at(3))}), map({number(words.at(2)), 0})));
        stroke(path, pen(1.4), DarkShade);
    };
}

void Figure::axes(const Words& words)
{
    const double left = number(words.at(1));
    const double right = number(words.at(2));
    const double stepX = number(words.at(3));
    const double bottom = number(words.at(4));
    const double top = number(words.at(5));
    const double stepY = number(words.at(6));
    const bool chart = words.contains(u"bars"_qs); // No numbers along x, no vertical grid lines.
    const auto countOf = [](double low, double high, double step) {
        return static_cast<int>(std::lround((high - low) / step));
    };
    if (words.contains(u"grid"_qs) || chart) {
        for (int index = 0; !chart && index <= countOf(left, right, stepX); ++index)
            lineTo(map({left + index * stepX, bottom}), map({left + index * stepX, top}),
                   pen(1, GridGrey));
        for (int index = 0; index <= countOf(bottom, top, stepY); ++index)
            lineTo(map({left, bottom + index * stepY}), map({right, bottom + index * stepY}),
                   pen(1, GridGrey));
    }
    const double originX = left > 0 ? left : 0;
    const double originY = bottom > 0 ? bottom : 0;
    const QPointF xEnd = map({right, originY}) + QPointF(14, 0);
    const QPointF yEnd = map({originX, top}) - QPointF(0, 14);
    lineTo(map({left, originY}), xEnd - QPointF(chart ? 0 : 6, 0), pen(1.6));
    lineTo(map({originX, bottom}), yEnd + QPointF(0, 6), pen(1.6));
    if (!chart)
        arrowHead(xEnd, map({left, originY}), Black);
    arrowHead(yEnd, map({originX, bottom}), Black);
    m_points[u"xend"_qs] = {xEnd.x() / m_scaleX, -xEnd.y() / m_scaleY};
    m_points[u"yend"_qs] = {yEnd.x() / m_scaleX, -yEnd.y() / m_scaleY};

    const bool cornerShared = left < 0 || bottom < 0; // Then one O is written beside the corner.
    const int every = words.contains(u"even"_qs) ? 2 : 1;
    const auto numbers = [&](double low, double high, double step, auto&& place) {
        for (int index = 0; index <= countOf(low, high, step); ++index) {
            const double value = low + index * step;
            if ((cornerShared && std::abs(value) < 1e-9) || std::lround(value / step) % every != 0)
                continue;
            place(value);
        }
    };
    const double size = std::exchange(m_textSize, 0.8 * m_textSize);
    m_haloed = true;
    if (!words.contains(u"bare"_qs)) {
        if (!chart)
            numbers(left, right, stepX, [&](double x) {
                const QPointF at = map({x, originY});
                lineTo(at, at + QPointF(0, 4), Thin);
                label(u"$%1$"_qs.arg(plainNumber(x)), at, {0, 1}, 7);
            });
        numbers(bottom, top, stepY, [&](double y) {
            const QPointF at = map({originX, y});
            lineTo(at, at - QPointF(4, 0), Thin);
            label(u"$%1$"_qs.arg(plainNumber(y)), at, {-1, 0}, 8);
        });
    }
    if (cornerShared)
        label(u"$O$"_qs, map({0, 0}), unit({-1, 1}), 6);
    m_haloed = false;
    m_textSize = size;
}

void Figure::numberLine(const Words& words)
{
    const double left = number(words.at(1));
    const double right = number(words.at(2));
    const double step = number(words.at(3));
    const QPointF start = map({left, 0}) - QPointF(20, 0);
    const QPointF end = map({right, 0}) + QPointF(20, 0);
    lineTo(start, end - QPointF(6, 0), pen(1.6));
    arrowHead(end, start, Black);
    for (double x = left; x <= right + step / 2; x += step) {
        lineTo(map({x, 0}) - QPointF(0, 5), map({x, 0}) + QPointF(0, 5), pen(1.4));
        label(u"$%1$"_qs.arg(plainNumber(x)), map({x, 0}), {0, 1}, 11);
    }
}

void Figure::plot(const Words& words)
{
    const double from = number(words.at(1));
    const double to = number(words.at(2));
    constexpr int Steps = 160;
    QPainterPath path;
    for (int step = 0; step <= Steps; ++step) {
        const double x = from + (to - from) * step / Steps;
        const auto y = m_expression.evaluate(rest(words, 3), {{u"x"_qs, x}});
        if (!y)
            throw std::runtime_error(
                u"\"%1\" cannot be plotted"_qs.arg(rest(words, 3)).toStdString());
        const QPointF at = map({x, *y});
        step == 0 ? path.moveTo(at) : path.lineTo(at);
    }
    stroke(path, pen(2.2, Blue));
}

void Figure::component(const Words& words, double gap,
                       const std::function<void(QPainterPath&, QPainterPath&)>& symbol,
                       const QString& letter)
{
    const QPointF from = pixel(words.at(1));
    const QPointF to = pixel(words.at(2));
    const QPointF along = unit(to - from);
    const QPointF middle = (from + to) / 2;
    lineTo(from, middle - gap / 2 * along, Outline);
    lineTo(middle + gap / 2 * along, to, Outline);
    QPainterPath outline;
    QPainterPath solid;
    symbol(outline, solid);
    QTransform place;
    place.translate(middle.x(), middle.y());
    place.rotateRadians(std::atan2(along.y(), along.x()));
    stroke(place.map(outline), Outline);
    if (!solid.isEmpty())
        fill(place.map(solid), Black);
    if (!letter.isEmpty())
        label(letter, middle, {}, 0);
    if (words.size() > 3)
        label(rest(words, 3), middle, QPointF(-along.y(), along.x()), 17);
}

void Figure::registerCircuit()
{
    m_commands[u"resistor"_qs] = [this](const Words& words) {
        component(words, 44,
                  [](QPainterPath& outline, QPainterPath&) { outline.addRect(-22, -8, 44, 16); });
    };
    // The long thin stroke is the positive side.
    m_commands[u"cell"_qs] = [this](const Words& words) {
        component(words, 8, [](QPainterPath& outline, QPainterPath& solid) {
            outline.moveTo(4, -14);
            outline.lineTo(4, 14);
            solid.addRect(-6, -7, 3.6, 14);
        });
    };
    m_commands[u"battery"_qs] = [this](const Words& words) {
        component(words, 42, [](QPainterPath& outline, QPainterPath& solid) {
            for (const double x : {-17.0, 17.0}) {
                outline.moveTo(x + 4, -14);
                outline.lineTo(x + 4, 14);
                solid.addRect(x - 6, -7, 3.6, 14);
            }
            for (const double x : {-13.0, -4.5, 4.0}) {
                outline.moveTo(x + 2, 0);
                outline.lineTo(x + 6, 0);
            }
        });
    };
    m_commands[u"lamp"_qs] = [this](const Words& words) {
        component(words, 30, [](QPainterPath& outline, QPainterPath&) {
            outline.addEllipse(QPointF(), 15, 15);
            const double reach = 15 / std::numbers::sqrt2;
            outline.moveTo(-reach, -reach);
            outline.lineTo(reach, reach);
            outline.moveTo(-reach, reach);
            outline.lineTo(reach, -reach);
        });
    };
    for (const auto& [name, letter] :
         {std::pair{u"ammeter"_qs, u"A"_qs}, {u"voltmeter"_qs, u"V"_qs}})
        m_commands[name] = [this, sign = letter](const Words& words) {
            component(
                words, 30,
                [](QPainterPath& outline, QPainterPath&) { outline.addEllipse(QPointF(), 15, 15); },
                sign);
        };
    m_commands[u"switch"_qs] = [this](const Words& words) {
        component(words, 34, [](QPainterPath& outline, QPainterPath& solid) {
            outline.moveTo(-17, 0);
            outline.lineTo(12, -14);
            solid.addEllipse(QPointF(-17, 0), 3, 3);
            solid.addEllipse(QPointF(17, 0), 3, 3);
        });
    };
}

} // namespace varnholt
