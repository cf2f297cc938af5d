#pragma once

// What the parts of a presentation package are written with.

#include "presentation/slide_text.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <algorithm>
#include <charconv>
#include <concepts>
#include <utility>

namespace varnholt::pptx_xml {

inline constexpr char declaration[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\n";

inline constexpr char relationTypes[] =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/";

#define NAMESPACES                                                                                 \
    " xmlns:a=\"http://schemas.openxmlformats.org/drawingml/2006/main\""                           \
    " xmlns:r=\"http://schemas.openxmlformats.org/officeDocument/2006/relationships\""             \
    " xmlns:p=\"http://schemas.openxmlformats.org/presentationml/2006/main\""

inline constexpr char emptyShapeTree[] =
    "<p:nvGrpSpPr><p:cNvPr id=\"1\" name=\"\"/><p:cNvGrpSpPr/><p:nvPr/></p:nvGrpSpPr>"
    "<p:grpSpPr><a:xfrm><a:off x=\"0\" y=\"0\"/><a:ext cx=\"0\" cy=\"0\"/>"
    "<a:chOff x=\"0\" y=\"0\"/><a:chExt cx=\"0\" cy=\"0\"/></a:xfrm></p:grpSpPr>";

/// A part as it is put together: markup as it is, numbers in decimal, texts escaped for element
/// content and for attributes between double quotes. A slide has a hundred pieces, each of which
/// goes straight to its place: joining them pair by pair took most of the time of a slide.
class Xml
{
public:
    /// With room for a usual slide.
    explicit Xml(qsizetype room = 4096)
        : bytes_(room, Qt::Uninitialized)
    {}

    Xml& operator<<(QByteArrayView markup)
    {
        if (markup.size() > bytes_.size() - size_) {
            bytes_.resize(2 * bytes_.size() + markup.size());
        }
        std::copy(markup.begin(), markup.end(), bytes_.data() + size_);
        size_ += markup.size();
        return *this;
    }
    Xml& operator<<(char markup) { return *this << QByteArrayView(&markup, 1); }
    Xml& operator<<(std::integral auto number)
    {
        char digits[24];
        const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
        return *this << QByteArrayView(digits, end);
    }
    Xml& operator<<(const std::same_as<QString> auto& text)
    {
        const QByteArray bytes = text.toUtf8();
        qsizetype start = 0;
        for (qsizetype i = 0; i < bytes.size(); ++i) {
            if (const char* entity = entityFor(bytes[i])) {
                *this << QByteArrayView(bytes).sliced(start, i - start) << entity;
                start = i + 1;
            }
        }
        return *this << QByteArrayView(bytes).sliced(start);
    }

    [[nodiscard]] QByteArray take()
    {
        bytes_.truncate(size_);
        return std::move(bytes_);
    }

private:
    static const char* entityFor(char c)
    {
        switch (c) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        default:
            return nullptr;
        }
    }

    /// The first `size_` of them are written.
    QByteArray bytes_;
    qsizetype size_ = 0;
};

/// One line of text for an attribute: attributes know no line breaks.
inline QString oneLine(const QString& text)
{
    return slideParagraphs(text).join(u' ');
}

/// A relationship part, its identifiers rId1, rId2, ... in the order of adding.
class Relations
{
public:
    Relations()
        : xml_(768)
    {
        xml_ << declaration
             << "<Relationships xmlns=\"http://schemas.openxmlformats.org/package/2006/"
                "relationships\">";
    }

    /// The target may come in pieces.
    template <typename... Target>
    Relations& add(QByteArrayView type, const Target&... target)
    {
        begin() << relationTypes << type << "\" Target=\"";
        return end(target...);
    }
    Relations& addOfType(QByteArrayView type, QByteArrayView target)
    {
        begin() << type << "\" Target=\"";
        return end(target);
    }
    [[nodiscard]] QByteArray take()
    {
        xml_ << "</Relationships>";
        return xml_.take();
    }

private:
    Xml& begin() { return xml_ << "<Relationship Id=\"rId" << ++count_ << "\" Type=\""; }
    template <typename... Target>
    Relations& end(const Target&... target)
    {
        (xml_ << ... << target) << "\"/>";
        return *this;
    }

    Xml xml_;
    int count_ = 0;
};

/// One level of the text of a text box, as presentation programs have it by default; `bare` as
/// `PptxDocument` has it.
inline void putLevel(Xml& xml, int level, bool bare)
{
    xml << "<a:lvl" << level << "pPr marL=\"" << (level - 1) * 457200
        << "\" algn=\"l\" defTabSz=\"914400\" rtl=\"0\" eaLnBrk=\"1\" latinLnBrk=\"0\" "
           "hangingPunct=\"1\">"
        << (bare ? "<a:defRPr sz=\"1800\"/>"
                 : "<a:defRPr sz=\"1800\" kern=\"1200\"><a:solidFill><a:schemeClr val=\"tx1\"/>"
                   "</a:solidFill><a:latin typeface=\"+mn-lt\"/><a:ea typeface=\"+mn-ea\"/>"
                   "<a:cs typeface=\"+mn-cs\"/></a:defRPr>")
        << "</a:lvl" << level << "pPr>";
}

inline void putLevels(Xml& xml, bool bare)
{
    if (!bare) {
        xml << "<a:defPPr><a:defRPr lang=\"en-US\"/></a:defPPr>";
    }
    for (int level = 1; level <= 9; ++level) {
        putLevel(xml, level, bare);
    }
}

/// Where titles stand unless a slide says otherwise.
inline constexpr char masterTitle[] =
    "<p:sp><p:nvSpPr><p:cNvPr id=\"2\" name=\"Title\"/><p:cNvSpPr><a:spLocks noGrp=\"1\"/>"
    "</p:cNvSpPr><p:nvPr><p:ph type=\"title\"/></p:nvPr></p:nvSpPr><p:spPr><a:xfrm>"
    "<a:off x=\"0\" y=\"0\"/><a:ext cx=\"12192000\" cy=\"889000\"/></a:xfrm>"
    "<a:prstGeom prst=\"rect\"><a:avLst/></a:prstGeom></p:spPr><p:txBody>"
    "<a:bodyPr anchor=\"ctr\"/><a:lstStyle/><a:p/></p:txBody></p:sp>";

} // namespace varnholt::pptx_xml
