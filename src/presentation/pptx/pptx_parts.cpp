#include "presentation/pptx/pptx_parts.h"

#include "presentation/pptx/pptx_xml.h"

#include <QByteArray>
#include <QStringBuilder>

#include <set>
#include <utility>

namespace varnholt {

using namespace pptx_xml;

#define OFFICE_TYPE "application/vnd.openxmlformats-officedocument."
#define SLIDES_TYPE OFFICE_TYPE "presentationml."

QByteArray pptxMediaName(const PptxDocument& document, int media)
{
    return "media/image" % QByteArray::number(media) % '.' %
           document.media.at(size_t(media) - 1).format;
}

QByteArray pptxContentTypes(const PptxDocument& document)
{
    Xml xml;
    xml << declaration
        << "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\">"
           "<Default Extension=\"rels\" ContentType=\"application/"
           "vnd.openxmlformats-package.relationships+xml\"/>"
           "<Default Extension=\"xml\" ContentType=\"application/xml\"/>";
    std::set<QByteArray> formats;
    for (const PptxMedia& media : document.media) {
        if (formats.insert(media.format).second) {
            xml << "<Default Extension=\"" << media.format << "\" ContentType=\"image/"
                << media.format << "\"/>";
        }
    }
    const auto part = [&xml](QByteArrayView type, const auto&... name) {
        ((xml << "<Override PartName=\"/") << ... << name)
            << "\" ContentType=\"" << type << "+xml\"/>";
    };
    part("application/vnd.openxmlformats-package.core-properties", "docProps/core.xml");
    part(OFFICE_TYPE "extended-properties", "docProps/app.xml");
    part(SLIDES_TYPE "presentation.main", "ppt/presentation.xml");
    part(SLIDES_TYPE "slideMaster", "ppt/slideMasters/slideMaster1.xml");
    part(SLIDES_TYPE "slideLayout", "ppt/slideLayouts/slideLayout1.xml");
    part(OFFICE_TYPE "theme", "ppt/theme/theme1.xml");
    if (document.hasTitles()) {
        part(SLIDES_TYPE "slideLayout", "ppt/slideLayouts/slideLayout2.xml");
    }
    if (document.hasNotes()) {
        part(SLIDES_TYPE "notesMaster", "ppt/notesMasters/notesMaster1.xml");
        part(OFFICE_TYPE "theme", "ppt/theme/theme2.xml");
    }
    for (size_t slide = 1; slide <= document.slides.size(); ++slide) {
        part(SLIDES_TYPE "slide", "ppt/slides/slide", slide, ".xml");
        if (!document.slides[slide - 1].notes.isEmpty()) {
            part(SLIDES_TYPE "notesSlide", "ppt/notesSlides/notesSlide", slide, ".xml");
        }
    }
    xml << "</Types>";
    return xml.take();
}

QByteArray pptxRootRelations()
{
    return Relations()
        .add("officeDocument", "ppt/presentation.xml")
        .addOfType(
            "http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties",
            "docProps/core.xml")
        .add("extended-properties", "docProps/app.xml")
        .take();
}

QByteArray pptxCoreProperties(const PptxDocument& document, const QDateTime& now)
{
    Xml xml;
    xml << declaration
        << "<cp:coreProperties xmlns:cp=\"http://schemas.openxmlformats.org/package/2006/metadata/"
           "core-properties\" xmlns:dc=\"http://purl.org/dc/elements/1.1/\" "
           "xmlns:dcterms=\"http://purl.org/dc/terms/\" "
           "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"><dc:title>"
        << oneLine(document.title) << "</dc:title>";
    if (!document.language.isEmpty()) {
        xml << "<dc:language>" << oneLine(document.language) << "</dc:language>";
    }
    for (const char* name : {"created", "modified"}) {
        xml << "<dcterms:" << name << " xsi:type=\"dcterms:W3CDTF\">"
            << now.toUTC().toString(Qt::ISODate) << "</dcterms:" << name << '>';
    }
    xml << "</cp:coreProperties>";
    return xml.take();
}

QByteArray pptxAppProperties(const PptxDocument& document)
{
    Xml xml;
    xml << declaration
        << "<Properties xmlns=\"http://schemas.openxmlformats.org/officeDocument/2006/"
           "extended-properties\"><Application>Varnholt</Application><Slides>"
        << document.slides.size() << "</Slides></Properties>";
    return xml.take();
}

QByteArray pptxPresentation(const PptxDocument& document)
{
    // Before the slides there are the master and the theme.
    constexpr size_t firstRelation = 3;
    constexpr size_t firstIdentifier = 256;
    const size_t slides = document.slides.size();
    Xml xml;
    xml << declaration
        << "<p:presentation" NAMESPACES "><p:sldMasterIdLst><p:sldMasterId "
           "id=\"2147483648\" r:id=\"rId1\"/></p:sldMasterIdLst>";
    if (document.hasNotes()) {
        xml << "<p:notesMasterIdLst><p:notesMasterId r:id=\"rId" << firstRelation + slides
            << "\"/></p:notesMasterIdLst>";
    }
    xml << "<p:sldIdLst>";
    for (size_t slide = 0; slide < slides; ++slide) {
        xml << "<p:sldId id=\"" << firstIdentifier + slide << "\" r:id=\"rId"
            << firstRelation + slide << "\"/>";
    }
    xml << "</p:sldIdLst><p:sldSz cx=\"" << pptxSlideWidth << "\" cy=\"" << pptxSlideHeight
        << "\"/><p:notesSz "
        << (document.bare ? "cx=\"7560000\" cy=\"10692000\"" : "cx=\"6858000\" cy=\"9144000\"")
        << "/><p:defaultTextStyle>";
    putLevels(xml, document.bare);
    xml << "</p:defaultTextStyle></p:presentation>";
    return xml.take();
}

QByteArray pptxPresentationRelations(const PptxDocument& document)
{
    Relations relations;
    relations.add("slideMaster", "slideMasters/slideMaster1.xml").add("theme", "theme/theme1.xml");
    for (size_t slide = 1; slide <= document.slides.size(); ++slide) {
        relations.add("slide", "slides/slide", slide, ".xml");
    }
    if (document.hasNotes()) {
        relations.add("notesMaster", "notesMasters/notesMaster1.xml");
    }
    return relations.take();
}

QByteArray pptxMaster(const PptxDocument& document)
{
    Xml xml;
    xml << declaration
        << "<p:sldMaster" NAMESPACES
           "><p:cSld><p:bg><p:bgRef idx=\"1001\"><a:schemeClr val=\"bg1\"/></p:bgRef></p:bg>"
           "<p:spTree>"
        << emptyShapeTree << (document.hasTitles() ? masterTitle : "")
        << "</p:spTree></p:cSld><p:clrMap bg1=\"lt1\" tx1=\"dk1\" bg2=\"lt2\" tx2=\"dk2\" "
           "accent1=\"accent1\" accent2=\"accent2\" accent3=\"accent3\" accent4=\"accent4\" "
           "accent5=\"accent5\" accent6=\"accent6\" hlink=\"hlink\" folHlink=\"folHlink\"/>"
           "<p:sldLayoutIdLst><p:sldLayoutId id=\"2147483649\" r:id=\"rId1\"/>"
        << (document.hasTitles() ? "<p:sldLayoutId id=\"2147483650\" r:id=\"rId3\"/>" : "")
        << "</p:sldLayoutIdLst><p:txStyles><p:titleStyle>";
    putLevel(xml, 1, document.bare);
    xml << "</p:titleStyle><p:bodyStyle>";
    putLevel(xml, 1, document.bare);
    xml << "</p:bodyStyle><p:otherStyle>";
    putLevels(xml, document.bare);
    xml << "</p:otherStyle></p:txStyles></p:sldMaster>";
    return xml.take();
}

QByteArray pptxMasterRelations(const PptxDocument& document)
{
    Relations relations;
    relations.add("slideLayout", "../slideLayouts/slideLayout1.xml")
        .add("theme", "../theme/theme1.xml");
    if (document.hasTitles()) {
        relations.add("slideLayout", "../slideLayouts/slideLayout2.xml");
    }
    return relations.take();
}

QByteArray pptxBlankLayout()
{
    Xml xml;
    xml << declaration
        << "<p:sldLayout" NAMESPACES " type=\"blank\" preserve=\"1\"><p:cSld name=\"Blank\">"
           "<p:spTree>"
        << emptyShapeTree
        << "</p:spTree></p:cSld><p:clrMapOvr><a:masterClrMapping/></p:clrMapOvr></p:sldLayout>";
    return xml.take();
}

QByteArray pptxBlankLayoutRelations()
{
    return Relations().add("slideMaster", "../slideMasters/slideMaster1.xml").take();
}

QByteArray pptxTheme()
{
    constexpr std::pair<const char*, const char*> colours[] = {
        {"dk1", "000000"},     {"lt1", "FFFFFF"},     {"dk2", "1F3A4D"},
        {"lt2", "EEF1F4"},     {"accent1", "2F6DA8"}, {"accent2", "C8622B"},
        {"accent3", "7A8791"}, {"accent4", "D9A521"}, {"accent5", "4C9A6A"},
        {"accent6", "7C5AA0"}, {"hlink", "0B5CAD"},   {"folHlink", "6A4A8C"}};
    constexpr char fill[] = "<a:solidFill><a:schemeClr val=\"phClr\"/></a:solidFill>";
    constexpr char effect[] = "<a:effectStyle><a:effectLst/></a:effectStyle>";
    Xml xml;
    xml << declaration
        << "<a:theme xmlns:a=\"http://schemas.openxmlformats.org/drawingml/2006/main\" "
           "name=\"Varnholt\"><a:themeElements><a:clrScheme name=\"Varnholt\">";
    for (const auto& [name, rgb] : colours) {
        xml << "<a:" << name << "><a:srgbClr val=\"" << rgb << "\"/></a:" << name << '>';
    }
    xml << "</a:clrScheme><a:fontScheme name=\"Varnholt\">";
    for (const char* name : {"majorFont", "minorFont"}) {
        xml << "<a:" << name
            << "><a:latin typeface=\"Arial\"/><a:ea typeface=\"\"/><a:cs typeface=\"\"/></a:"
            << name << '>';
    }
    xml << "</a:fontScheme><a:fmtScheme name=\"Varnholt\"><a:fillStyleLst>" << fill << fill << fill
        << "</a:fillStyleLst><a:lnStyleLst>";
    for (const int width : {6350, 12700, 19050}) {
        xml << "<a:ln w=\"" << width << "\">" << fill << "</a:ln>";
    }
    xml << "</a:lnStyleLst><a:effectStyleLst>" << effect << effect << effect
        << "</a:effectStyleLst><a:bgFillStyleLst>" << fill << fill << fill
        << "</a:bgFillStyleLst></a:fmtScheme></a:themeElements></a:theme>";
    return xml.take();
}

} // namespace varnholt
