#include "presentation/pptx/pptx_parts.h"

#include "presentation/pptx/pptx_xml.h"

#include <set>

namespace varnholt {

using namespace pptx_xml;

QByteArray pptxMediaName(const PptxDocument& document, int media)
{
    return "ppt/media/image" + number(media) + '.' + document.media.at(size_t(media) - 1).format;
}

QByteArray pptxContentTypes(const PptxDocument& document)
{
    const QByteArray office = "application/vnd.openxmlformats-officedocument.";
    QByteArray xml =
        QByteArray(declaration) +
        "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
        "<Default Extension=\"rels\" ContentType=\"application/"
        "vnd.openxmlformats-package.relationships+xml\"/>"
        "<Default Extension=\"xml\" ContentType=\"application/xml\"/>";
    std::set<QByteArray> formats;
    for (const PptxMedia& media : document.media) {
        if (formats.insert(media.format).second) {
            xml += "<Default Extension=\"" + media.format + "\" ContentType=\"image/" +
                   media.format + "\"/>";
        }
    }
    const auto part = [&xml](const QByteArray& name, const QByteArray& type) {
        xml += "<Override PartName=\"/" + name + "\" ContentType=\"" + type + "+xml\"/>";
    };
    const QByteArray slides = office + "presentationml.";
    part("docProps/core.xml", "application/vnd.openxmlformats-package.core-properties");
    part("docProps/app.xml", office + "extended-properties");
    part("ppt/presentation.xml", slides + "presentation.main");
    part("ppt/slideMasters/slideMaster1.xml", slides + "slideMaster");
    part("ppt/slideLayouts/slideLayout1.xml", slides + "slideLayout");
    part("ppt/theme/theme1.xml", office + "theme");
    if (document.hasTitles()) {
        part("ppt/slideLayouts/slideLayout2.xml", slides + "slideLayout");
    }
    if (document.hasNotes()) {
        part("ppt/notesMasters/notesMaster1.xml", slides + "notesMaster");
        part("ppt/theme/theme2.xml", office + "theme");
    }
    for (size_t slide = 1; slide <= document.slides.size(); ++slide) {
        part("ppt/slides/slide" + number(qint64(slide)) + ".xml", slides + "slide");
        if (!document.slides[slide - 1].notes.isEmpty()) {
            part("ppt/notesSlides/notesSlide" + number(qint64(slide)) + ".xml",
                 slides + "notesSlide");
        }
    }
    return xml + "</Types>";
}

QByteArray pptxRootRelations()
{
    return Relations()
        .add("officeDocument", "ppt/presentation.xml")
        .addOfType(
            "http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties",
            "docProps/core.xml")
        .add("extended-properties", "docProps/app.xml")
        .xml();
}

QByteArray pptxCoreProperties(const PptxDocument& document, const QDateTime& now)
{
    const QByteArray time = now.toUTC().toString(Qt::ISODate).toLatin1();
    const auto stamp = [&time](const QByteArray& name) {
        return "<dcterms:" + name + " xsi:type=\"dcterms:W3CDTF\">" + time + "</dcterms:" + name +
               '>';
    };
    return QByteArray(declaration) +
           "<cp:coreProperties xmlns:cp=\"http://schemas.openxmlformats.org/package/2006/metadata/"
           "core-properties\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\" "
           "xmlns:dcterms=\"http://purl.org/dc/terms/\" "
           "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"><dc:title>" +
           escapedLine(document.title) + "</dc:title>" +
           (document.language.isEmpty()
                ? QByteArray()
                : "<dc:language>" + escapedLine(document.language) + "</dc:language>") +
           stamp("created") + stamp("modified") + "</cp:coreProperties>";
}

QByteArray pptxAppProperties(const PptxDocument& document)
{
    return QByteArray(declaration) +
           "<Properties xmlns=\"http://schemas.openxmlformats.org/officeDocument/2006/"
           "extended-properties\"><Application>Varnholt</Application><Slides>" +
           number(qint64(document.slides.size())) + "</Slides></Properties>";
}

QByteArray pptxPresentation(const PptxDocument& document)
{
    QByteArray xml = QByteArray(declaration) +
                     "<p:presentation" NAMESPACES "><p:sldMasterIdLst><p:sldMasterId "
                     "id=\"2147483648\" r:id=\"rId1\"/></p:sldMasterIdLst>";
    if (document.hasNotes()) {
        xml += "<p:notesMasterIdLst><p:notesMasterId r:id=\"rId" +
               number(qint64(3 + document.slides.size())) + "\"/></p:notesMasterIdLst>";
    }
    xml += "<p:sldIdLst>";
    for (size_t slide = 0; slide < document.slides.size(); ++slide) {
        xml += "<p:sldId id=\"" + number(qint64(256 + slide)) + "\" r:id=\"rId" +
               number(qint64(3 + slide)) + "\"/>";
    }
    return xml + "</p:sldIdLst><p:sldSz cx=\"" + number(pptxSlideWidth) + "\" cy=\"" +
           number(pptxSlideHeight) + "\"/><p:notesSz " +
           (document.bare ? "cx=\"7560000\" cy=\"10692000\"" : "cx=\"6858000\" cy=\"9144000\"") +
           "/><p:defaultTextStyle>" + textLevels(document.bare) +
           "</p:defaultTextStyle></p:presentation>";
}

QByteArray pptxPresentationRelations(const PptxDocument& document)
{
    Relations relations;
    relations.add("slideMaster", "slideMasters/slideMaster1.xml").add("theme", "theme/theme1.xml");
    for (size_t slide = 1; slide <= document.slides.size(); ++slide) {
        relations.add("slide", "slides/slide" + number(qint64(slide)) + ".xml");
    }
    if (document.hasNotes()) {
        relations.add("notesMaster", "notesMasters/notesMaster1.xml");
    }
    return relations.xml();
}

QByteArray pptxMaster(const PptxDocument& document)
{
    return QByteArray(declaration) +
           "<p:sldMaster" NAMESPACES
           "><p:cSld><p:bg><p:bgRef idx=\"1001\"><a:schemeClr val=\"bg1\"/></p:bgRef></p:bg>"
           "<p:spTree>" +
           emptyShapeTree + (document.hasTitles() ? masterTitle() : QByteArray()) +
           "</p:spTree></p:cSld><p:clrMap bg1=\"lt1\" tx1=\"dk1\" bg2=\"lt2\" tx2=\"dk2\" "
           "accent1=\"accent1\" accent2=\"accent2\" accent3=\"accent3\" accent4=\"accent4\" "
           "accent5=\"accent5\" accent6=\"accent6\" hlink=\"hlink\" folHlink=\"folHlink\"/>"
           "<p:sldLayoutIdLst><p:sldLayoutId id=\"2147483649\" r:id=\"rId1\"/>" +
           (document.hasTitles() ? "<p:sldLayoutId id=\"2147483650\" r:id=\"rId3\"/>" : "") +
           "</p:sldLayoutIdLst><p:txStyles><p:titleStyle>" + levelProperties(1, document.bare) +
           "</p:titleStyle><p:bodyStyle>" + levelProperties(1, document.bare) +
           "</p:bodyStyle><p:otherStyle>" + textLevels(document.bare) +
           "</p:otherStyle></p:txStyles></p:sldMaster>";
}

QByteArray pptxMasterRelations(const PptxDocument& document)
{
    Relations relations;
    relations.add("slideLayout", "../slideLayouts/slideLayout1.xml")
        .add("theme", "../theme/theme1.xml");
    if (document.hasTitles()) {
        relations.add("slideLayout", "../slideLayouts/slideLayout2.xml");
    }
    return relations.xml();
}

QByteArray pptxBlankLayout()
{
    return QByteArray(declaration) +
           "<p:sldLayout" NAMESPACES " type=\"blank\" preserve=\"1\"><p:cSld name=\"Blank\">"
           "<p:spTree>" +
           emptyShapeTree +
           "</p:spTree></p:cSld><p:clrMapOvr><a:masterClrMapping/></p:clrMapOvr></p:sldLayout>";
}

QByteArray pptxBlankLayoutRelations()
{
    return Relations().add("slideMaster", "../slideMasters/slideMaster1.xml").xml();
}

QByteArray pptxTheme()
{
    const auto colour = [](const QByteArray& name, const QByteArray& rgb) {
        return "<a:" + name + "><a:srgbClr val=\"" + rgb + "\"/></a:" + name + '>';
    };
    const auto font = [](const QByteArray& name) {
        return "<a:" + name +
               "><a:latin typeface=\"Arial\"/><a:ea typeface=\"\"/><a:cs typeface=\"\"/></a:" +
               name + '>';
    };
    const QByteArray fill = "<a:solidFill><a:schemeClr val=\"phClr\"/></a:solidFill>";
    const auto line = [&fill](const QByteArray& width) {
        return "<a:ln w=\"" + width + "\">" + fill + "</a:ln>";
    };
    const QByteArray effect = "<a:effectStyle><a:effectLst/></a:effectStyle>";
    return QByteArray(declaration) +
           "<a:theme xmlns:a=\"http://schemas.openxmlformats.org/drawingml/2006/main\" "
           "name=\"Varnholt\"><a:themeElements><a:clrScheme name=\"Varnholt\">" +
           colour("dk1", "000000") + colour("lt1", "FFFFFF") + colour("dk2", "1F3A4D") +
           colour("lt2", "EEF1F4") + colour("accent1", "2F6DA8") + colour("accent2", "C8622B") +
           colour("accent3", "7A8791") + colour("accent4", "D9A521") + colour("accent5", "4C9A6A") +
           colour("accent6", "7C5AA0") + colour("hlink", "0B5CAD") + colour("folHlink", "6A4A8C") +
           "</a:clrScheme><a:fontScheme name=\"Varnholt\">" + font("majorFont") +
           font("minorFont") + "</a:fontScheme><a:fmtScheme name=\"Varnholt\"><a:fillStyleLst>" +
           fill + fill + fill + "</a:fillStyleLst><a:lnStyleLst>" + line("6350") + line("12700") +
           line("19050") + "</a:lnStyleLst><a:effectStyleLst>" + effect + effect + effect +
           "</a:effectStyleLst><a:bgFillStyleLst>" + fill + fill + fill +
           "</a:bgFillStyleLst></a:fmtScheme></a:themeElements></a:theme>";
}

} // namespace varnholt
