#include "presentation/pptx/pptx_parts.h"
#include "presentation/pptx/pptx_xml.h"

#include <cmath>

namespace varnholt {

using namespace pptx_xml;

namespace {

void putTransform(Xml& xml, const PptxDocument& document, const PptxShape& shape)
{
    // The reader of bare documents takes a hundredth of a millimetre off every size.
    const Emu more = document.bare ? emuPerHundredthMm : 0;
    xml << "<a:xfrm><a:off x=\"" << shape.left << "\" y=\"" << shape.top << "\"/><a:ext cx=\""
        << shape.width + more << "\" cy=\"" << shape.height + more
        << "\"/></a:xfrm><a:prstGeom prst=\"rect\"><a:avLst/></a:prstGeom>";
}

/// The margins that readers other than of bare documents take for granted; a frame adds half its
/// line there.
const char* margins(const PptxDocument& document, const PptxShape& shape)
{
    if (!document.bare) {
        return "";
    }
    return shape.framed ? " lIns=\"100800\" tIns=\"55080\" rIns=\"100800\" bIns=\"55080\""
                        : " lIns=\"91440\" tIns=\"45720\" rIns=\"91440\" bIns=\"45720\"";
}

/// The attributes by which a slide knows a shape. Identifier 1 is the shape tree's.
void putIdentity(Xml& xml, const PptxDocument& document, const char* kind, int id)
{
    xml << "id=\"" << id << "\" name=\"";
    if (!document.bare) {
        xml << kind << ' ' << id - 1;
    }
    xml << '"';
}

/// What a run of text says of itself: nothing unless it is told to.
void putRunProperties(Xml& xml, const PptxShape& shape, const QString& language)
{
    if (language.isEmpty() && shape.textSize <= 0 && !shape.framed) {
        return;
    }
    xml << "<a:rPr";
    if (!language.isEmpty()) {
        xml << " lang=\"" << language << '"';
    }
    if (shape.textSize > 0) {
        xml << " sz=\"" << std::llround(shape.textSize * 100) << '"';
    }
    xml << (shape.framed ? " b=\"1\"/>" : "/>");
}

/// `shape` gives them their looks.
void putParagraphs(Xml& xml, const QString& text, const PptxShape& shape, const QString& language)
{
    for (const QString& paragraph : slideParagraphs(text)) {
        if (paragraph.isEmpty()) {
            xml << "<a:p/>";
            continue;
        }
        xml << "<a:p><a:r>";
        putRunProperties(xml, shape, language);
        xml << "<a:t>" << paragraph << "</a:t></a:r></a:p>";
    }
}

void putTextBox(Xml& xml, const PptxDocument& document, const PptxShape& shape, int id)
{
    xml << "<p:sp><p:nvSpPr><p:cNvPr ";
    putIdentity(xml, document, "TextBox", id);
    xml << "/><p:cNvSpPr txBox=\"1\"/><p:nvPr/></p:nvSpPr><p:spPr>";
    putTransform(xml, document, shape);
    xml << (shape.framed ? "<a:solidFill><a:schemeClr val=\"bg1\"/></a:solidFill><a:ln w=\"19050\">"
                           "<a:solidFill><a:schemeClr val=\"accent1\"/></a:solidFill></a:ln>"
                         : "<a:noFill/>")
        << "</p:spPr><p:txBody><a:bodyPr wrap=\""
        << (shape.longLines == LongLines::Wrap ? "square" : "none") << "\" rtlCol=\"0\""
        << (shape.framed ? " anchor=\"ctr\"" : "") << margins(document, shape)
        << "><a:noAutofit/></a:bodyPr><a:lstStyle/>";
    putParagraphs(xml, shape.text, shape, document.language);
    xml << "</p:txBody></p:sp>";
}

void putTitle(Xml& xml, const PptxDocument& document, const PptxShape& shape, int id)
{
    xml << "<p:sp><p:nvSpPr><p:cNvPr ";
    putIdentity(xml, document, "Title", id);
    xml << "/><p:cNvSpPr><a:spLocks noGrp=\"1\"/></p:cNvSpPr><p:nvPr><p:ph type=\"title\"/>"
           "</p:nvPr></p:nvSpPr><p:spPr>";
    putTransform(xml, document, shape);
    xml << "</p:spPr><p:txBody><a:bodyPr anchor=\"ctr\"" << margins(document, shape)
        << "><a:noAutofit/></a:bodyPr><a:lstStyle/>";
    putParagraphs(xml, shape.text, shape, document.language);
    xml << "</p:txBody></p:sp>";
}

void putPicture(Xml& xml, const PptxDocument& document, const PptxShape& shape, int id,
                int relation)
{
    xml << "<p:pic><p:nvPicPr><p:cNvPr ";
    putIdentity(xml, document, "Picture", id);
    xml << " descr=\"" << oneLine(shape.description)
        << "\"/><p:cNvPicPr><a:picLocks noChangeAspect=\"1\"/></p:cNvPicPr><p:nvPr/>"
           "</p:nvPicPr><p:blipFill><a:blip r:embed=\"rId"
        << relation << "\"/><a:stretch><a:fillRect/></a:stretch></p:blipFill><p:spPr>";
    putTransform(xml, document, shape);
    xml << "</p:spPr></p:pic>";
}

/// The picture of the slide on a page of notes.
void putNotesImage(Xml& xml, int id)
{
    xml << "<p:sp><p:nvSpPr><p:cNvPr id=\"" << id
        << "\" name=\"Slide Image\"/><p:cNvSpPr><a:spLocks noGrp=\"1\" noRot=\"1\" "
           "noChangeAspect=\"1\"/></p:cNvSpPr><p:nvPr><p:ph type=\"sldImg\"/></p:nvPr>"
           "</p:nvSpPr><p:spPr><a:xfrm><a:off x=\"381000\" y=\"685800\"/>"
           "<a:ext cx=\"6096000\" cy=\"3429000\"/></a:xfrm><a:prstGeom prst=\"rect\"><a:avLst/>"
           "</a:prstGeom></p:spPr></p:sp>";
}

void putNotesBody(Xml& xml, int id, const QString& text, const QString& language)
{
    xml << "<p:sp><p:nvSpPr><p:cNvPr id=\"" << id
        << "\" name=\"Notes\"/><p:cNvSpPr><a:spLocks noGrp=\"1\"/></p:cNvSpPr><p:nvPr>"
           "<p:ph type=\"body\" idx=\"1\"/></p:nvPr></p:nvSpPr><p:spPr><a:xfrm>"
           "<a:off x=\"685800\" y=\"4343400\"/><a:ext cx=\"5486400\" cy=\"4114800\"/></a:xfrm>"
           "<a:prstGeom prst=\"rect\"><a:avLst/></a:prstGeom></p:spPr><p:txBody><a:bodyPr/>"
           "<a:lstStyle/>";
    putParagraphs(xml, text, {}, language);
    xml << "</p:txBody></p:sp>";
}

} // namespace

QByteArray pptxSlide(const PptxDocument& document, const PptxSlide& slide)
{
    Xml xml;
    xml << declaration << "<p:sld" NAMESPACES "><p:cSld><p:spTree>" << emptyShapeTree;
    // Relationship 1 is the layout's.
    int id = 1;
    int relation = 1;
    for (const PptxShape& shape : slide.shapes) {
        ++id;
        if (shape.media != 0) {
            putPicture(xml, document, shape, id, ++relation);
        } else if (shape.title) {
            putTitle(xml, document, shape, id);
        } else {
            putTextBox(xml, document, shape, id);
        }
    }
    xml << "</p:spTree></p:cSld><p:clrMapOvr><a:masterClrMapping/></p:clrMapOvr>";
    if (slide.advance > 0) {
        // Without something inside, Impress does not see the time.
        xml << "<p:transition advTm=\"" << qint64{1000} * slide.advance
            << "\"><p:cut/></p:transition>";
    }
    xml << "</p:sld>";
    return xml.take();
}

QByteArray pptxSlideRelations(const PptxDocument& document, const PptxSlide& slide, int number)
{
    Relations relations;
    const bool titled = !slide.shapes.empty() && slide.shapes.front().title;
    relations.add("slideLayout",
                  titled ? "../slideLayouts/slideLayout2.xml" : "../slideLayouts/slideLayout1.xml");
    for (const PptxShape& shape : slide.shapes) {
        if (shape.media != 0) {
            relations.add("image", "../", pptxMediaName(document, shape.media));
        }
    }
    if (!slide.notes.isEmpty()) {
        relations.add("notesSlide", "../notesSlides/notesSlide", number, ".xml");
    }
    return relations.take();
}

QByteArray pptxTitleLayout()
{
    Xml xml;
    xml << declaration
        << "<p:sldLayout" NAMESPACES " type=\"titleOnly\" preserve=\"1\">"
           "<p:cSld name=\"Title Only\"><p:spTree>"
        << emptyShapeTree << masterTitle
        << "</p:spTree></p:cSld><p:clrMapOvr><a:masterClrMapping/></p:clrMapOvr></p:sldLayout>";
    return xml.take();
}

QByteArray pptxNotesMaster(const PptxDocument& document)
{
    Xml xml;
    xml << declaration
        << "<p:notesMaster" NAMESPACES
           "><p:cSld><p:bg><p:bgRef idx=\"1001\"><a:schemeClr val=\"bg1\"/></p:bgRef></p:bg>"
           "<p:spTree>"
        << emptyShapeTree;
    putNotesImage(xml, 2);
    putNotesBody(xml, 3, {}, {});
    xml << "</p:spTree></p:cSld><p:clrMap bg1=\"lt1\" tx1=\"dk1\" bg2=\"lt2\" tx2=\"dk2\" "
           "accent1=\"accent1\" accent2=\"accent2\" accent3=\"accent3\" accent4=\"accent4\" "
           "accent5=\"accent5\" accent6=\"accent6\" hlink=\"hlink\" folHlink=\"folHlink\"/>"
           "<p:notesStyle>";
    putLevels(xml, document.bare);
    xml << "</p:notesStyle></p:notesMaster>";
    return xml.take();
}

QByteArray pptxNotesMasterRelations()
{
    return Relations().add("theme", "../theme/theme2.xml").take();
}

QByteArray pptxNotes(const PptxDocument& document, const PptxSlide& slide)
{
    Xml xml;
    xml << declaration << "<p:notes" NAMESPACES "><p:cSld><p:spTree>" << emptyShapeTree;
    putNotesImage(xml, 2);
    putNotesBody(xml, 3, slide.notes, document.language);
    xml << "</p:spTree></p:cSld><p:clrMapOvr><a:masterClrMapping/></p:clrMapOvr></p:notes>";
    return xml.take();
}

QByteArray pptxNotesRelations(int number)
{
    return Relations()
        .add("notesMaster", "../notesMasters/notesMaster1.xml")
        .add("slide", "../slides/slide", number, ".xml")
        .take();
}

} // namespace varnholt
