#include "authoring/hints.h"

#include "authoring/PictureCanvas.h"
#include "pictures/picture_files.h"
#include "store/statements.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace varnholt {

namespace {

QString tr(const char* sentence)
{
    return QCoreApplication::translate("frmAddNewQuestion", sentence);
}

} // namespace

QString SaveObstacle(const SaveReadiness& readiness, const QString& programFolder)
{
    if (readiness.libraryReadOnly) {
        return tr("The question library can only be read: nothing can be saved.");
    }
    const QFileInfo files(QFileInfo(NewPictureFile(programFolder, 0)).path());
    if (files.exists() && !(files.isDir() && files.isWritable())) {
        return tr("Pictures cannot be saved: the folder %1 takes no files.")
            .arg(QDir::toNativeSeparators(files.filePath()));
    }
    if (!statements::canHold(readiness.answer)) {
        return tr("The question cannot be saved while its answer holds an "
                  "apostrophe (').");
    }
    const int missing = (readiness.hasPicture ? 0 : 1) + (readiness.answer.isEmpty() ? 2 : 0) +
                        (readiness.hasSubtopic ? 0 : 4);
    switch (missing) {
    case 1:
        return tr("Still needed before saving: a picture.");
    case 2:
        return tr("Still needed before saving: an answer.");
    case 3:
        return tr("Still needed before saving: a picture and an answer.");
    case 4:
        return tr("Still needed before saving: a subtopic.");
    case 5:
        return tr("Still needed before saving: a picture and a subtopic.");
    case 6:
        return tr("Still needed before saving: an answer and a subtopic.");
    case 7:
        return tr("Still needed before saving: a picture, an answer and a subtopic.");
    default:
        return {};
    }
}

QString FrameHint(const PictureCanvas& canvas)
{
    const PictureSurface& page = canvas.picCropped;
    if (!canvas.SelectionShown || (canvas.SelX2 - canvas.SelX1 <= page.innerWidth() &&
                                   canvas.SelY2 - canvas.SelY1 <= page.innerHeight())) {
        return {};
    }
    // Only cropping makes a selection that reaches beyond the canvas.
    const bool cut = canvas.SelX1 < 0 || canvas.SelY1 < 0 ||
                     canvas.SelX2 > canvas.picQuestion.innerWidth() ||
                     canvas.SelY2 > canvas.picQuestion.innerHeight();
    return (cut ? tr("The frame was larger than the page of %1 by %2 pixels: only its "
                     "middle was kept. Paste again to choose another part.")
                : tr("The frame is larger than the page of %1 by %2 pixels: Crop "
                     "keeps its middle and cuts the rest off."))
        .arg(page.innerWidth())
        .arg(page.innerHeight());
}

QString PageHint(const PictureCanvas& canvas)
{
    if (!canvas.HScroll().visible && !canvas.VScroll().visible) {
        return {};
    }
    return tr("Only the upper left %1 by %2 pixels of the picture will be saved. "
              "Frame what you need and crop it.")
        .arg(canvas.picCropped.innerWidth())
        .arg(canvas.picCropped.innerHeight());
}

QString CanvasDescription(const PictureCanvas& canvas)
{
    const QString keys = tr("Ctrl+A selects the whole picture, the arrow keys move the selection, "
                            "Delete erases it, Escape drops it.");
    return canvas.SelectionShown
               ? tr("Selected: %1 by %2 pixels, %3 from the left and %4 from the top.")
                         .arg(canvas.SelX2 - canvas.SelX1)
                         .arg(canvas.SelY2 - canvas.SelY1)
                         .arg(canvas.SelX1)
                         .arg(canvas.SelY1) +
                     u' ' + keys
               : tr("Nothing is selected.") + u' ' + keys;
}

} // namespace varnholt
