#include "math_boxes.h"

#include <QFont>
#include <QFontMetricsF>
#include <QTransform>

#include <algorithm>
#include <stdexcept>

namespace varnholt {

namespace {

using namespace Qt::StringLiterals;

// Liberation Serif has all but a few signs, which DejaVu Serif then lends.
QFont fontFor(Face face, const QString& text)
{
    QFont font(u"Liberation Serif"_qs);
    font.setStyleStrategy(
        static_cast<QFont::StyleStrategy>(QFont::NoFontMerging | QFont::ForceOutline));
    font.setHintingPreference(QFont::PreferNoHinting);
    // QFont takes whole pixels only; the outlines are scaled from this size.
    font.setPixelSize(100);
    font.setItalic(face == Face::Italic);
    font.setBold(face == Face::Bold);
    const auto holds = [&text](const QFont& candidate) {
        const QFontMetricsF metrics(candidate);
        return std::all_of(text.cbegin(), text.cend(), [&metrics](QChar character) {
            return character.isSpace() || metrics.inFont(character);
        });
    };
    if (!holds(font)) {
        font.setFamily(u"DejaVu Serif"_qs);
        font.setItalic(false);
        if (!holds(font))
            throw std::runtime_error(
                u"no font holds every character of \"%1\""_qs.arg(text).toStdString());
    }
    return font;
}

/// Height of the fraction bar and of the middle of + and = above the baseline.
double axisHeight(double size)
{
    return 0.252 * size;
}

double ruleThickness(double size)
{
    return std::max(1.1, 0.055 * size);
}

QPainterPath rectangle(double x, double y, double width, double height)
{
    QPainterPath path;
    path.addRect(x, y, width, height);
    return path;
}

/// A round bracket tall enough for `ascent` and `descent`, drawn as a crescent.
Box bracket(bool left, double ascent, double descent, double size)
{
    const double bow = 0.24 * size;
    const double thick = 0.085 * size;
    const double top = -ascent;
    const double middle = (descent - ascent) / 2;
    Box box;
    QPainterPath path;
    const auto at = [left, bow, size](double x) { return 0.06 * size + (left ? bow - x : x); };
    path.moveTo(at(0), top);
    path.cubicTo(at(bow), top + (middle - top) * 0.4, at(bow), descent - (descent - middle) * 0.4,
                 at(0), descent);
    path.cubicTo(at(bow - thick), descent - (descent - middle) * 0.45, at(bow - thick),
                 top + (middle - top) * 0.45, at(0), top);
    box.ink = path;
    box.ink.setFillRule(Qt::WindingFill);
    box.ascent = ascent;
    box.descent = descent;
    box.width = bow + 0.12 * size;
    return box;
}

} // namespace

void Box::add(const Box& other, double x, double y)
{
    QPainterPath moved = other.ink.translated(x, y);
    ink.setFillRule(Qt::WindingFill);
    ink.addPath(moved);
    width = std::max(width, x + other.width);
    ascent = std::max(ascent, other.ascent - y);
    descent = std::max(descent, other.descent + y);
}

Box textBox(const QString& text, Face face, double size)
{
    const QFont font = fontFor(face, text);
    const double scale = size / 100;
    Box box;
    QPainterPath outline;
    outline.addText(0, 0, font, text);
    outline.setFillRule(Qt::WindingFill);
    box.ink = QTransform::fromScale(scale, scale).map(outline);
    box.ink.setFillRule(Qt::WindingFill);
    box.width = QFontMetricsF(font).horizontalAdvance(text) * scale;
    const QRectF bounds = box.ink.boundingRect();
    box.ascent = text.trimmed().isEmpty() ? 0 : std::max(0.0, -bounds.top());
    box.descent = text.trimmed().isEmpty() ? 0 : std::max(0.0, bounds.bottom());
    if (face == Face::Italic) // An italic letter leans out of its advance width.
        box.width = std::max(box.width, bounds.right() - 0.03 * size);
    return box;
}

Box space(double width)
{
    Box box;
    box.width = width;
    return box;
}

Box fraction(const Box& numerator, const Box& denominator, double size)
{
    const double rule = ruleThickness(size);
    const double gap = 0.2 * size;
    const double side = 0.08 * size;
    const double inner = std::max(numerator.width, denominator.width) + 0.16 * size;
    const double axis = axisHeight(size);
    Box box;
    box.width = inner + 2 * side;
    box.ink.setFillRule(Qt::WindingFill);
    box.add(numerator, side + (inner - numerator.width) / 2,
            -axis - rule / 2 - gap - numerator.descent);
    box.add(denominator, side + (inner - denominator.width) / 2,
            -axis + rule / 2 + gap + denominator.ascent);
    box.ink.addPath(rectangle(side, -axis - rule / 2, inner, rule));
    return box;
}

Box root(const Box& radicand, const Box& index, double size)
{
    const double rule = ruleThickness(size);
    const double top = std::max(radicand.ascent, 0.68 * size) + 0.14 * size;
    const double bottom = std::max(radicand.descent, 0.04 * size) + 0.03 * size;
    const double wedge = 0.52 * size;
    const double shift = std::max(0.0, index.width - 0.26 * size);
    const double middle = -0.30 * size;
    Box box;
    box.ink.setFillRule(Qt::WindingFill);
    QPainterPath sign;
    sign.moveTo(shift + 0.02 * size, middle + 0.06 * size);
    sign.lineTo(shift + 0.17 * size, middle - 0.03 * size);
    sign.lineTo(shift + 0.31 * size, bottom - 0.22 * size);
    sign.lineTo(shift + wedge - rule * 0.5, -top);
    sign.lineTo(shift + wedge, -top + rule);
    sign.lineTo(shift + 0.325 * size, bottom);
    sign.lineTo(shift + 0.27 * size, bottom);
    sign.lineTo(shift + 0.115 * size, middle + 0.045 * size);
    sign.lineTo(shift + 0.04 * size, middle + 0.09 * size);
    sign.closeSubpath();
    box.ink.addPath(sign);
    const double barLength = wedge + 0.05 * size + radicand.width + 0.06 * size;
    box.ink.addPath(
        rectangle(shift + wedge - rule * 0.5, -top, barLength - wedge + rule * 0.5, rule));
    box.ascent = top;
    box.descent = bottom;
    if (index.width > 0)
        box.add(index, shift + 0.24 * size - index.width, middle - 0.12 * size);
    box.add(radicand, shift + wedge + 0.05 * size);
    box.width = shift + barLength + 0.08 * size;
    return box;
}

Box bracketed(const Box& inner, double size)
{
    const double ascent = std::max(inner.ascent, 0.66 * size) + 0.08 * size;
    const double descent = std::max(inner.descent, 0.14 * size) + 0.08 * size;
    Box box = bracket(true, ascent, descent, size);
    box.append(inner);
    box.append(bracket(false, ascent, descent, size));
    return box;
}

Box columnVector(const Box& upper, const Box& lower, double size)
{
    const double inner = std::max(upper.width, lower.width);
    const double gap = 0.42 * size;
    const double axis = axisHeight(size);
    Box stack;
    stack.width = inner;
    stack.add(upper, (inner - upper.width) / 2, -axis - gap / 2);
    stack.add(lower, (inner - lower.width) / 2, -axis + gap / 2 + 0.66 * size);
    return bracketed(stack, size);
}

Box arrowAbove(const Box& inner, double size)
{
    const double y = -inner.ascent - 0.16 * size;
    const double rule = ruleThickness(size) * 0.9;
    const double head = 0.11 * size;
    Box box = inner;
    box.ink.addPath(rectangle(0, y - rule / 2, inner.width - head, rule));
    QPainterPath tip;
    tip.moveTo(inner.width + 0.02 * size, y);
    tip.lineTo(inner.width - 2 * head, y - head);
    tip.lineTo(inner.width - 1.5 * head, y);
    tip.lineTo(inner.width - 2 * head, y + head);
    tip.closeSubpath();
    box.ink.addPath(tip);
    box.ascent = -y + head;
    return box;
}

Box dotAbove(const Box& inner, double size)
{
    Box box = inner;
    const double radius = 0.055 * size;
    box.ink.addEllipse(QPointF(inner.width / 2, -inner.ascent - 2.2 * radius), radius, radius);
    box.ascent += 3.4 * radius;
    return box;
}

} // namespace varnholt
