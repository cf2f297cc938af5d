#include "presentation/pptx/pptx_writer.h"

#include "presentation/pptx/pptx_parts.h"
#include "presentation/pptx/zip_writer.h"
#include "store/errors.h"

namespace varnholt {

void writePptx(const QString& path, const PptxDocument& document, const QDateTime& now,
               const KeepGoing& keepGoing)
{
    ZipWriter archive(path, now);
    // Readers that recognise a file by its beginning expect this part first.
    archive.add("[Content_Types].xml", pptxContentTypes(document));
    archive.add("_rels/.rels", pptxRootRelations());
    archive.add("docProps/core.xml", pptxCoreProperties(document, now));
    archive.add("docProps/app.xml", pptxAppProperties(document));
    archive.add("ppt/presentation.xml", pptxPresentation(document));
    archive.add("ppt/_rels/presentation.xml.rels", pptxPresentationRelations(document));
    archive.add("ppt/slideMasters/slideMaster1.xml", pptxMaster(document));
    archive.add("ppt/slideMasters/_rels/slideMaster1.xml.rels", pptxMasterRelations(document));
    archive.add("ppt/slideLayouts/slideLayout1.xml", pptxBlankLayout());
    archive.add("ppt/slideLayouts/_rels/slideLayout1.xml.rels", pptxBlankLayoutRelations());
    archive.add("ppt/theme/theme1.xml", pptxTheme());
    if (document.hasTitles()) {
        archive.add("ppt/slideLayouts/slideLayout2.xml", pptxTitleLayout());
        archive.add("ppt/slideLayouts/_rels/slideLayout2.xml.rels", pptxBlankLayoutRelations());
    }
    if (document.hasNotes()) {
        archive.add("ppt/notesMasters/notesMaster1.xml", pptxNotesMaster(document));
        archive.add("ppt/notesMasters/_rels/notesMaster1.xml.rels", pptxNotesMasterRelations());
        archive.add("ppt/theme/theme2.xml", pptxTheme());
    }
    int number = 0;
    for (const PptxSlide& slide : document.slides) {
        const QByteArray file = QByteArray::number(++number) + ".xml";
        archive.add("ppt/slides/slide" + file, pptxSlide(document, slide));
        archive.add("ppt/slides/_rels/slide" + file + ".rels",
                    pptxSlideRelations(document, slide, number));
        if (!slide.notes.isEmpty()) {
            archive.add("ppt/notesSlides/notesSlide" + file, pptxNotes(document, slide));
            archive.add("ppt/notesSlides/_rels/notesSlide" + file + ".rels",
                        pptxNotesRelations(number));
        }
    }
    for (int media = 1; media <= int(document.media.size()); ++media) {
        const PptxMedia& picture = document.media[size_t(media) - 1];
        const QByteArray name = "ppt/" + pptxMediaName(document, media);
        if (keepGoing && !keepGoing()) {
            throw Cancelled();
        }
        if (picture.bytes.isEmpty()) {
            archive.addFile(name, picture.path);
        } else {
            archive.add(name, picture.bytes);
        }
    }
    archive.finish();
}

} // namespace varnholt
