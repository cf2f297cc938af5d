#pragma once

#include "presentation/pptx/pptx_document.h"

#include <QByteArray>
#include <QDateTime>

namespace varnholt {

/// The XML parts of a presentation package (ECMA-376 parts 1 and 2): the fixed ones and
/// those that depend on the document. Slides, pictures and their file names count from 1.
/// Each returns a whole part, ready to be stored.

[[nodiscard]] QByteArray pptxContentTypes(const PptxDocument& document);
[[nodiscard]] QByteArray pptxRootRelations();
[[nodiscard]] QByteArray pptxCoreProperties(const PptxDocument& document, const QDateTime& now);
[[nodiscard]] QByteArray pptxAppProperties(const PptxDocument& document);
[[nodiscard]] QByteArray pptxPresentation(const PptxDocument& document);
[[nodiscard]] QByteArray pptxPresentationRelations(const PptxDocument& document);
[[nodiscard]] QByteArray pptxSlide(const PptxDocument& document, const PptxSlide& slide);
/// `number` is the slide's own.
[[nodiscard]] QByteArray pptxSlideRelations(const PptxDocument& document, const PptxSlide& slide,
                                            int number);
[[nodiscard]] QByteArray pptxMaster(const PptxDocument& document);
[[nodiscard]] QByteArray pptxMasterRelations(const PptxDocument& document);
[[nodiscard]] QByteArray pptxBlankLayout();
[[nodiscard]] QByteArray pptxBlankLayoutRelations();
[[nodiscard]] QByteArray pptxTheme();
/// Of a document with titles.
[[nodiscard]] QByteArray pptxTitleLayout();
/// Of a document with notes.
[[nodiscard]] QByteArray pptxNotesMaster(const PptxDocument& document);
[[nodiscard]] QByteArray pptxNotesMasterRelations();
[[nodiscard]] QByteArray pptxNotes(const PptxDocument& document, const PptxSlide& slide);
[[nodiscard]] QByteArray pptxNotesRelations(int number);

/// The name below "ppt/" inside the package, for example "media/image3.jpeg".
[[nodiscard]] QByteArray pptxMediaName(const PptxDocument& document, int media);

} // namespace varnholt
