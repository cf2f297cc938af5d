#include "math_layout.h"

#include <QFont>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QTransform>

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace varnholt {

namespace {

using namespace Qt::StringLiterals;

constexpr double ScriptScale = 0.72;
constexpr double InlineFractionScale = 0.8;
constexpr double LineSpacing = 1.32;

enum class Face
{
    Upright,
    Italic,
    Bold
};

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

enum class Kind
{
    Ordinary,
    Binary,
    Relation,
    Open,
    Close,
    Punctuation,
    Function
};

struct Atom
{
    Box box;
    Kind kind = Kind::Ordinary;
    bool leans = false; ///< An italic letter, which an exponent need not keep away from.
    bool fraction = false;
};

/// Recursive descent over one formula.
class FormulaParser
{
public:
    FormulaParser(const QString& source, double size, bool display)
        : m_source(source)
        , m_size(size)
        , m_display(display)
    {}

    Box whole()
    {
        const Box box = row();
        if (m_at < m_source.size())
            fail();
        return box;
    }

private:
    [[noreturn]] void fail() const
    {
        throw std::runtime_error(
            u"the formula \"%1\" cannot be read at character %2"_qs.arg(m_source)
                .arg(m_at + 1)
                .toStdString());
    }

    bool atEnd() const { return m_at >= m_source.size() || m_source.at(m_at) == u'}'; }

    bool take(QStringView text)
    {
        if (!QStringView(m_source).mid(m_at).startsWith(text))
            return false;
        m_at += text.size();
        return true;
    }

    void expect(QStringView text)
    {
        if (!take(text))
            fail();
    }

    /// Reads `{...}` at `scale` times the current size.
    Box group(double scale = 1, bool display = false)
    {
        const double oldSize = std::exchange(m_size, m_size * scale);
        const bool oldDisplay = std::exchange(m_display, display);
        expect(u"{");
        const Box box = row();
        expect(u"}");
        m_size = oldSize;
        m_display = oldDisplay;
        return box;
    }

    QString rawGroup()
    {
        expect(u"{");
        const qsizetype end = m_source.indexOf(u'}', m_at);
        if (end < 0)
            fail();
        const QString text = m_source.mid(m_at, end - m_at);
        m_at = end + 1;
        return text;
    }

    Box row()
    {
        std::vector<Atom> atoms;
        while (!atEnd() && !QStringView(m_source).mid(m_at).startsWith(u"\\right")) {
            if (take(u" "))
                continue;
            if (m_source.at(m_at) == u'^' || m_source.at(m_at) == u'_') {
                if (atoms.empty()) // As in "cm^2" with the letters outside of the formula.
                    atoms.push_back({space(0), Kind::Ordinary});
                scripts(atoms.back());
            } else {
                atoms.push_back(atom());
            }
        }
        return joined(atoms);
    }

    void scripts(Atom& base)
    {
        Box upper;
        Box lower;
        while (!atEnd()) {
            const bool up = take(u"^");
            if (!up && !take(u"_"))
                break;
            Box script;
            if (!atEnd() && m_source.at(m_at) == u'{') {
                script = group(ScriptScale);
            } else {
                const double oldSize = std::exchange(m_size, m_size * ScriptScale);
                script = atom().box;
                m_size = oldSize;
            }
            (up ? upper : lower) = script;
        }
        Box box = base.box;
        if (upper.width > 0) {
            const double raise =
                std::max(base.box.ascent - 0.30 * m_size, 0.36 * m_size) + upper.descent;
            box.add(upper, base.box.width + (base.leans ? 0.01 : 0.04) * m_size, -raise);
        }
        if (lower.width > 0)
            box.add(lower, base.box.width - (base.leans ? 0.02 : 0) * m_size,
                    0.18 * m_size + std::max(0.0, base.box.descent - 0.2 * m_size));
        box.width += 0.03 * m_size;
        base.box = box;
    }

    Atom atom()
    {
        const QChar next = m_source.at(m_at);
        if (next == u'{')
            return {group(), Kind::Ordinary};
        if (next == u'\\')
            return command();
        if (next.isDigit())
            return {textBox(number(), Face::Upright, m_size), Kind::Ordinary};
        ++m_at;
        if (next == u'-' || next == u'−')
            return {textBox(u"−"_qs, Face::Upright, m_size), Kind::Binary};
        const QString text(next);
        if (u"+×÷±·"_qs.contains(next))
            return {textBox(text, Face::Upright, m_size), Kind::Binary};
        if (u"=<>≤≥≠≈∝→:"_qs.contains(next))
            return {textBox(text, Face::Upright, m_size), Kind::Relation};
        if (u"(["_qs.contains(next))
            return {textBox(text, Face::Upright, m_size), Kind::Open};
        if (u")]"_qs.contains(next))
            return {textBox(text, Face::Upright, m_size), Kind::Close};
        if (u",;"_qs.contains(next))
            return {textBox(text, Face::Upright, m_size), Kind::Punctuation};
        if (next.isLetter() && next != u'Ω' && next != u'Δ')
            return {textBox(text, Face::Italic, m_size), Kind::Ordinary, true};
        return {textBox(text, Face::Upright, m_size), Kind::Ordinary};
    }

    QString number()
    {
        QString digits;
        while (m_at < m_source.size() &&
               (m_source.at(m_at).isDigit() ||
                (m_source.at(m_at) == u'.' && m_at + 1 < m_source.size() &&
                 m_source.at(m_at + 1).isDigit())))
            digits += m_source.at(m_at++);
        return digits;
    }

    Atom command()
    {
        if (take(u"\\frac")) {
            const double scale = m_display ? 1 : InlineFractionScale;
            const Box numerator = group(scale);
            const Box denominator = group(scale);
            return {fraction(numerator, denominator, m_size), Kind::Ordinary, false, true};
        }
        if (take(u"\\sqrt")) {
            Box index;
            if (take(u"["))
                index = textBox(number(), Face::Upright, m_size * 0.6);
            if (index.width > 0)
                expect(u"]");
            return {root(group(), index, m_size), Kind::Ordinary};
        }
        if (take(u"\\vec"))
            return {arrowAbove(group(), m_size), Kind::Ordinary};
        if (take(u"\\dot"))
            return {dotAbove(group(), m_size), Kind::Ordinary};
        if (take(u"\\col")) {
            const Box upper = group();
            const Box lower = group();
            return {columnVector(upper, lower, m_size), Kind::Ordinary};
        }
        if (take(u"\\left(")) {
            const Box inner = row();
            expect(u"\\right)");
            return {bracketed(inner, m_size), Kind::Ordinary};
        }
        if (take(u"\\text"))
            return {textBox(rawGroup(), Face::Upright, m_size), Kind::Ordinary};
        if (take(u"\\bold"))
            return {textBox(rawGroup(), Face::Bold, m_size), Kind::Ordinary};
        if (take(u"\\quad"))
            return {space(m_size), Kind::Ordinary};
        if (take(u"\\,"))
            return {space(m_size / 6), Kind::Ordinary};
        for (const QString& name : {u"sin"_qs, u"cos"_qs, u"tan"_qs})
            if (take(u'\\' + name))
                return {textBox(name, Face::Upright, m_size), Kind::Function};
        fail();
    }

    /// Sets the atoms in a row with the customary spaces: wide round relations, narrower round
    /// operators between two operands, thin after commas and function names.
    Box joined(const std::vector<Atom>& atoms) const
    {
        Box box;
        box.ink.setFillRule(Qt::WindingFill);
        Kind before = Kind::Open;
        for (const Atom& atom : atoms) {
            Kind kind = atom.kind;
            const bool operandBefore = before == Kind::Ordinary || before == Kind::Close;
            if (kind == Kind::Binary && !operandBefore)
                kind = Kind::Open; // A sign, not an operator.
            double gap = 0;
            if (kind == Kind::Relation || (before == Kind::Relation && !atoms.empty()))
                gap = box.width > 0 ? 0.28 : 0;
            else if (kind == Kind::Binary || before == Kind::Binary)
                gap = 0.23;
            else if (before == Kind::Punctuation)
                gap = 0.2;
            else if (atom.fraction && before == Kind::Ordinary)
                gap = 0.06; // A mixed number.
            else if ((before == Kind::Function && kind != Kind::Open) ||
                     (kind == Kind::Function && operandBefore))
                gap = 0.14;
            box.width += gap * m_size;
            box.append(atom.box);
            before = kind;
        }
        return box;
    }

    QString m_source;
    double m_size;
    bool m_display;
    qsizetype m_at = 0;
};

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

Typesetter::Typesetter()
{
    const QStringList installed = QFontDatabase::families();
    for (const auto& [family, package] : {std::pair{u"Liberation Serif"_qs, u"fonts-liberation"_qs},
                                          {u"DejaVu Serif"_qs, u"fonts-dejavu-core"_qs}})
        if (!installed.contains(family))
            throw std::runtime_error(
                u"the font %1 is not installed (Debian package %2)"_qs.arg(family, package)
                    .toStdString());
}

Box Typesetter::formula(const QString& source, double size, bool display) const
{
    return FormulaParser(source, size, display).whole();
}

std::vector<Box> Typesetter::words(const QString& source, double size) const
{
    std::vector<Box> result(1);
    QString pending;
    bool bold = false;
    const auto flush = [&] {
        if (!pending.isEmpty())
            result.back().append(textBox(pending, bold ? Face::Bold : Face::Upright, size));
        pending.clear();
    };
    for (qsizetype at = 0; at < source.size(); ++at) {
        const QChar next = source.at(at);
        if (next == u'$') {
            const qsizetype end = source.indexOf(u'$', at + 1);
            if (end < 0)
                throw std::runtime_error(u"\"%1\" lacks a closing $"_qs.arg(source).toStdString());
            flush();
            result.back().append(formula(source.mid(at + 1, end - at - 1), size));
            at = end;
        } else if (next == u'*') {
            flush();
            bold = !bold;
        } else if (next == u' ') {
            flush();
            if (result.back().width > 0)
                result.emplace_back();
        } else {
            pending += next == u'~' ? QChar(u'\u00a0') : next;
        }
    }
    flush();
    return result;
}

Box Typesetter::line(const QString& source, double size) const
{
    return paragraph(source, size, 1e9);
}

Box Typesetter::paragraph(const QString& source, double size, double width) const
{
    const double blank = 0.25 * size;
    std::vector<Box> lines(1);
    for (const Box& word : words(source, size)) {
        if (lines.back().width > 0 && lines.back().width + blank + word.width > width)
            lines.emplace_back();
        lines.back().add(word, lines.back().width > 0 ? lines.back().width + blank : 0);
    }
    Box box;
    // A line is as high as its letters may be, so that the space between blocks is even.
    box.ascent = 0.69 * size;
    box.descent = 0.21 * size;
    double baseline = 0;
    for (std::size_t index = 0; index < lines.size(); ++index) {
        if (index > 0) {
            const double needed = lines[index - 1].descent + lines[index].ascent + 0.2 * size;
            baseline += std::max(LineSpacing * size, needed);
        }
        box.add(lines[index], 0, baseline);
        box.descent = std::max(box.descent, baseline + 0.21 * size);
    }
    return box;
}

} // namespace varnholt
