#include "presentation/pptx/pptx_parts.h"
#include "presentation/pptx/pptx_xml.h"

#include <QStringBuilder>

#include <cmath>

namespace varnholt {

using namespace pptx_xml;

namespace {

QByteArray transform(const PptxDocument& document, const PptxShape& shape)
{
    // The reader of bare documents takes a hundredth of a millimetre off every size.
    const Emu more = document.bare ? emuPerHundredthMm : 0;
    return "<a:xfrm><a:off x=\"" % number(shape.left) % "\" y=\"" % number(shape.top) %
           "\"/><a:ext cx=\"" % number(shape.width + more) % "\" cy=\"" %
           number(shape.height + more) %
           "\"/></a:xfrm><a:prstGeom prst=\"rect\"><a:avLst/></a:prstGeom>";
}

/// The margins that readers other than of bare documents take for granted; a frame adds half its
/// line there.
QByteArray margins(const PptxDocument& document, const PptxShape& shape)
{
    if (!document.bare) {
        return {};
    }
    return shape.framed ? " lIns=\"100800\" tIns=\"55080\" rIns=\"100800\" bIns=\"55080\""
                        : " lIns=\"91440\" tIns=\"45720\" rIns=\"91440\" bIns=\"45720\"";
}

/// The attributes by which a slide knows a shape. Identifier 1 is the shape tree's.
QByteArray identity(const PptxDocument& document, const char* kind, int id)
{
    return "id=\"" % number(id) % "\" name=\"" %
           (document.bare ? QByteArray()
                          : QByteArray(kind % QByteArrayLiteral(" ") % number(id - 1))) %
           '"';
}

/// What a run of text says of itself: nothing unless it is told to.
QByteArray runProperties(const PptxShape& shape, const QString& language)
{
    QByteArray attributes;
    if (!language.isEmpty()) {
        attributes += " lang=\"" % escaped(language) % '"';
    }
    if (shape.textSize > 0) {
        attributes += " sz=\"" % number(std::llround(shape.textSize * 100)) % '"';
    }
    if (shape.framed) {
        attributes += " b=\"1\"";
    }
    return attributes.isEmpty() ? attributes : "<a:rPr" % attributes % "/>";
}

QByteArray paragraphs(const QString& text, const QByteArray& properties)
{
    QByteArray xml;
    for (const QString& paragraph : slideParagraphs(text)) {
        xml += paragraph.isEmpty() ? QByteArrayLiteral("<a:p/>")
                                   : "<a:p><a:r>" % properties % "<a:t>" % escaped(paragraph) %
                                         "</a:t></a:r></a:p>";
    }
    return xml;
}

QByteArray textBox(const PptxDocument& document, const PptxShape& shape, int id)
{
    const QByteArray fill =
        shape.framed
            ? QByteArrayLiteral("<a:solidFill><a:schemeClr val=\"bg1\"/></a:solidFill>"
                                "<a:ln w=\"19050\"><a:solidFill><a:schemeClr val=\"accent1\"/>"
                                "</a:solidFill></a:ln>")
            : QByteArrayLiteral("<a:noFill/>");
    return "<p:sp><p:nvSpPr><p:cNvPr " % identity(document, "TextBox", id) %
           "/><p:cNvSpPr txBox=\"1\"/><p:nvPr/></p:nvSpPr><p:spPr>" % transform(document, shape) %
           fill % "</p:spPr><p:txBody><a:bodyPr wrap=\"" %
           (shape.longLines == LongLines::Wrap ? "square" : "none") % "\" rtlCol=\"0\"" %
           (shape.framed ? " anchor=\"ctr\"" : "") % margins(document, shape) %
           "><a:noAutofit/></a:bodyPr><a:lstStyle/>" %
           paragraphs(shape.text, runProperties(shape, document.language)) % "</p:txBody></p:sp>";
}

QByteArray title(const PptxDocument& document, const PptxShape& shape, int id)
{
    return "<p:sp><p:nvSpPr><p:cNvPr " % identity(document, "Title", id) %
           "/><p:cNvSpPr><a:spLocks noGrp=\"1\"/></p:cNvSpPr><p:nvPr><p:ph type=\"title\"/>"
           "</p:nvPr></p:nvSpPr><p:spPr>" %
           transform(document, shape) % "</p:spPr><p:txBody><a:bodyPr anchor=\"ctr\"" %
           margins(document, shape) % "><a:noAutofit/></a:bodyPr><a:lstStyle/>" %
           paragraphs(shape.text, runProperties(shape, document.language)) % "</p:txBody></p:sp>";
}

QByteArray picture(const PptxDocument& document, const PptxShape& shape, int id, int relation)
{
    return "<p:pic><p:nvPicPr><p:cNvPr " % identity(document, "Picture", id) % " descr=\"" %
           escapedLine(shape.description) %
           "\"/><p:cNvPicPr><a:picLocks noChangeAspect=\"1\"/></p:cNvPicPr><p:nvPr/>"
           "</p:nvPicPr><p:blipFill><a:blip r:embed=\"rId" %
           number(relation) % "\"/><a:stretch><a:fillRect/></a:stretch></p:blipFill><p:spPr>" %
           transform(document, shape) % "</p:spPr></p:pic>";
}

/// The picture of the slide on a page of notes.
QByteArray notesImage(int id)
{
    return "<p:sp><p:nvSpPr><p:cNvPr id=\"" % number(id) %
           "\" name=\"Slide Image\"/><p:cNvSpPr><a:spLocks noGrp=\"1\" noRot=\"1\" "
           "noChangeAspect=\"1\"/></p:cNvSpPr><p:nvPr><p:ph type=\"sldImg\"/></p:nvPr>"
           "</p:nvSpPr><p:spPr><a:xfrm><a:off x=\"381000\" y=\"685800\"/>"
           "<a:ext cx=\"6096000\" cy=\"3429000\"/></a:xfrm><a:prstGeom prst=\"rect\"><a:avLst/>"
           "</a:prstGeom></p:spPr></p:sp>";
}

QByteArray notesBody(int id, const QByteArray& text)
{
    return "<p:sp><p:nvSpPr><p:cNvPr id=\"" % number(id) %
           "\" name=\"Notes\"/><p:cNvSpPr><a:spLocks noGrp=\"1\"/></p:cNvSpPr><p:nvPr>"
           "<p:ph type=\"body\" idx=\"1\"/></p:nvPr></p:nvSpPr><p:spPr><a:xfrm>"
           "<a:off x=\"685800\" y=\"4343400\"/><a:ext cx=\"5486400\" cy=\"4114800\"/></a:xfrm>"
           "<a:prstGeom prst=\"rect\"><a:avLst/></a:prstGeom></p:spPr><p:txBody><a:bodyPr/>"
           "<a:lstStyle/>" %
           text % "</p:txBody></p:sp>";
}

} // namespace

QByteArray pptxSlide(const PptxDocument& document, const PptxSlide& slide)
{
    QByteArray xml;
    xml.reserve(4096);
    xml += declaration;
    xml += "<p:sld" NAMESPACES "><p:cSld><p:spTree>";
    xml += emptyShapeTree;
    // Relationship 1 is the layout's.
    int id = 1;
    int relation = 1;
    for (const PptxShape& shape : slide.shapes) {
        ++id;
        xml += shape.media != 0 ? picture(document, shape, id, ++relation)
               : shape.title    ? title(document, shape, id)
                                : textBox(document, shape, id);
    }
    xml += "</p:spTree></p:cSld><p:clrMapOvr><a:masterClrMapping/></p:clrMapOvr>";
    if (slide.advance > 0) {
        // Without something inside, Impress does not see the time.
        xml += "<p:transition advTm=\"" % number(qint64{1000} * slide.advance) %
               "\"><p:cut/></p:transition>";
    }
    xml += "</p:sld>";
    return xml;
}

QByteArray pptxSlideRelations(const PptxDocument& document, const PptxSlide& slide, int number)
{
    Relations relations;
    const bool titled = !slide.shapes.empty() && slide.shapes.front().title;
    relations.add("slideLayout",
                  titled ? "../slideLayouts/slideLayout2.xml" : "../slideLayouts/slideLayout1.xml");
    for (const PptxShape& shape : slide.shapes) {
        if (shape.media != 0) {
            relations.add("image", pptxMediaName(document, shape.media).replace("ppt/", "../"));
        }
    }
    if (!slide.notes.isEmpty()) {
        relations.add("notesSlide",
                      "../notesSlides/notesSlide" % QByteArray::number(number) % ".xml");
    }
    return relations.xml();
}

QByteArray pptxTitleLayout()
{
    return QByteArray(declaration) %
           "<p:sldLayout" NAMESPACES " type=\"titleOnly\" preserve=\"1\">"
           "<p:cSld name=\"Title Only\"><p:spTree>" %
           emptyShapeTree % masterTitle() %
           "</p:spTree></p:cSld><p:clrMapOvr><a:masterClrMapping/></p:clrMapOvr></p:sldLayout>";
}

QByteArray pptxNotesMaster(const PptxDocument& document)
{
    return QByteArray(declaration) %
           "<p:notesMaster" NAMESPACES
           "><p:cSld><p:bg><p:bgRef idx=\"1001\"><a:schemeClr val=\"bg1\"/></p:bgRef></p:bg>"
           "<p:spTree>" %
           emptyShapeTree % notesImage(2) % notesBody(3, "<a:p/>") %
           "</p:spTree></p:cSld><p:clrMap bg1=\"lt1\" tx1=\"dk1\" bg2=\"lt2\" tx2=\"dk2\" "
           "accent1=\"accent1\" accent2=\"accent2\" accent3=\"accent3\" accent4=\"accent4\" "
           "accent5=\"accent5\" accent6=\"accent6\" hlink=\"hlink\" folHlink=\"folHlink\"/>"
           "<p:notesStyle>" %
           textLevels(document.bare) % "</p:notesStyle></p:notesMaster>";
}

QByteArray pptxNotesMasterRelations()
{
    return Relations().add("theme", "../theme/theme2.xml").xml();
}

QByteArray pptxNotes(const PptxDocument& document, const PptxSlide& slide)
{
    return QByteArray(declaration) % "<p:notes" NAMESPACES "><p:cSld><p:spTree>" % emptyShapeTree %
           notesImage(2) %
           notesBody(3, paragraphs(slide.notes, runProperties({}, document.language))) %
           "</p:spTree></p:cSld><p:clrMapOvr><a:masterClrMapping/></p:clrMapOvr></p:notes>";
}

QByteArray pptxNotesRelations(int number)
{
    return Relations()
        .add("notesMaster", "../notesMasters/notesMaster1.xml")
        .add("slide", "../slides/slide" % QByteArray::number(number) % ".xml")
        .xml();
}

} // namespace varnholt
