#include "presentation/pptx/pptx_writer.h"

#include "presentation/pptx/pptx_parts.h"
#include "presentation/pptx/zip_writer.h"
#include "store/errors.h"

#include <QStringBuilder>

namespace varnholt {

void writePptx(const QString& path, const PptxDocument& document, const QDateTime& now,
               const KeepGoing& keepGoing)
{
    // Answer slides are twice as many parts to the same pictures.
    const bool packs = document.answerSlides && !document.bare;
    const auto packed = [packs](QuickDeflate& deflate) { return packs ? &deflate : nullptr; };
    QuickDeflate lists;
    QuickDeflate slides;
    QuickDeflate relations;
    QuickDeflate notes;
    QuickDeflate notesRelations;
    ZipWriter archive(path, now);
    // Readers that recognise a file by its beginning expect this part first.
    archive.add("[Content_Types].xml", pptxContentTypes(document), packed(lists));
    archive.add("_rels/.rels", pptxRootRelations());
    archive.add("docProps/core.xml", pptxCoreProperties(document, now));
    archive.add("docProps/app.xml", pptxAppProperties(document));
    archive.add("ppt/presentation.xml", pptxPresentation(document), packed(lists));
    archive.add("ppt/_rels/presentation.xml.rels", pptxPresentationRelations(document),
                packed(lists));
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
        const QByteArray n = QByteArray::number(++number);
        archive.add("ppt/slides/slide" % n % ".xml", pptxSlide(document, slide), packed(slides));
        archive.add("ppt/slides/_rels/slide" % n % ".xml.rels",
                    pptxSlideRelations(document, slide, number), packed(relations));
        if (!slide.notes.isEmpty()) {
            archive.add("ppt/notesSlides/notesSlide" % n % ".xml", pptxNotes(document, slide),
                        packed(notes));
            archive.add("ppt/notesSlides/_rels/notesSlide" % n % ".xml.rels",
                        pptxNotesRelations(number), packed(notesRelations));
        }
    }
    for (int media = 1; media <= int(document.media.size()); ++media) {
        const PptxMedia& picture = document.media[size_t(media) - 1];
        const QByteArray name = "ppt/" % pptxMediaName(document, media);
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
