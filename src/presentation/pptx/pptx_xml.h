#pragma once

// What the parts of a presentation package are written with.

#include "presentation/slide_text.h"

#include <QByteArray>
#include <QString>
#include <QStringBuilder>

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

inline QByteArray number(qint64 value)
{
    return QByteArray::number(value);
}

/// Text for element content and for attributes between double quotes.
inline QByteArray escaped(const QString& text)
{
    return text.toHtmlEscaped().toUtf8();
}

/// One line of text for an attribute: attributes know no line breaks.
inline QByteArray escapedLine(const QString& text)
{
    return escaped(slideParagraphs(text).join(u' '));
}

/// A relationship part, its identifiers rId1, rId2, ... in the order of adding.
class Relations
{
public:
    Relations()
    {
        xml_ = QByteArray(declaration) + "<Relationships xmlns=\"http://schemas."
                                         "openxmlformats.org/package/2006/relationships\">";
    }

    Relations& add(const QByteArray& type, const QByteArray& target)
    {
        return addOfType(relationTypes % type, target);
    }
    Relations& addOfType(const QByteArray& type, const QByteArray& target)
    {
        xml_ += "<Relationship Id=\"rId" % number(++count_) % "\" Type=\"" % type % "\" Target=\"" %
                target % "\"/>";
        return *this;
    }
    [[nodiscard]] QByteArray xml() const { return xml_ + "</Relationships>"; }

private:
    QByteArray xml_;
    int count_ = 0;
};

/// One level of the text of a text box, as presentation programs have it by default; `bare` as
/// `PptxDocument` has it.
inline QByteArray levelProperties(int level, bool bare)
{
    const QByteArray format =
        bare ? QByteArrayLiteral("<a:defRPr sz=\"1800\"/>")
             : QByteArrayLiteral("<a:defRPr sz=\"1800\" kern=\"1200\"><a:solidFill>"
                                 "<a:schemeClr val=\"tx1\"/></a:solidFill><a:latin "
                                 "typeface=\"+mn-lt\"/><a:ea typeface=\"+mn-ea\"/><a:cs "
                                 "typeface=\"+mn-cs\"/></a:defRPr>");
    return "<a:lvl" + number(level) + "pPr marL=\"" + number((level - 1) * 457200) +
           "\" algn=\"l\" defTabSz=\"914400\" rtl=\"0\" eaLnBrk=\"1\" latinLnBrk=\"0\" "
           "hangingPunct=\"1\">" +
           format + "</a:lvl" + number(level) + "pPr>";
}

inline QByteArray textLevels(bool bare)
{
    QByteArray xml = bare ? QByteArray() : "<a:defPPr><a:defRPr lang=\"en-US\"/></a:defPPr>";
    for (int level = 1; level <= 9; ++level) {
        xml += levelProperties(level, bare);
    }
    return xml;
}

/// Where titles stand unless a slide says otherwise.
inline QByteArray masterTitle()
{
    return "<p:sp><p:nvSpPr><p:cNvPr id=\"2\" name=\"Title\"/><p:cNvSpPr><a:spLocks noGrp=\"1\"/>"
           "</p:cNvSpPr><p:nvPr><p:ph type=\"title\"/></p:nvPr></p:nvSpPr><p:spPr><a:xfrm>"
           "<a:off x=\"0\" y=\"0\"/><a:ext cx=\"12192000\" cy=\"889000\"/></a:xfrm>"
           "<a:prstGeom prst=\"rect\"><a:avLst/></a:prstGeom></p:spPr><p:txBody>"
           "<a:bodyPr anchor=\"ctr\"/><a:lstStyle/><a:p/></p:txBody></p:sp>";
}

} // namespace varnholt::pptx_xml
