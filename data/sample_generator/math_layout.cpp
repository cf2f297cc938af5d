#include "math_layout.h"

#include <QFontDatabase>

#include <algorithm>
#include <stdexcept>

namespace varnholt {

namespace {

using namespace Qt::StringLiterals;

constexpr double ScriptScale = 0.72;
constexpr double InlineFractionScale = 0.8;
constexpr double LineSpacing = 1.32;

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
