#include "authoring/hints.h"

#include "authoring/PictureCanvas.h"
#include "pictures/picture_files.h"
#include "store/statements.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(frmAddNewQuestion)
};

} // namespace

QString SaveObstacle(const SaveReadiness& readiness, const QString& programFolder)
{
    if (readiness.libraryReadOnly) {
        return Words::tr("The question library can only be read: nothing can be saved.");
    }
    const QFileInfo files(QFileInfo(NewPictureFile(programFolder, 0)).path());
    if (files.exists() && !(files.isDir() && files.isWritable())) {
        return Words::tr("Pictures cannot be saved: the folder %1 takes no files.")
            .arg(QDir::toNativeSeparators(files.filePath()));
    }
    if (!statements::canHold(readiness.answer)) {
        return Words::tr("The question cannot be saved while its answer holds an "
                         "apostrophe (').");
    }
    const int missing = (readiness.hasPicture ? 0 : 1) + (readiness.answer.isEmpty() ? 2 : 0) +
                        (readiness.hasSubtopic ? 0 : 4);
    switch (missing) {
    case 1:
        return Words::tr("Still needed before saving: a picture.");
    case 2:
        return Words::tr("Still needed before saving: an answer.");
    case 3:
        return Words::tr("Still needed before saving: a picture and an answer.");
    case 4:
        return Words::tr("Still needed before saving: a subtopic.");
    case 5:
        return Words::tr("Still needed before saving: a picture and a subtopic.");
    case 6:
        return Words::tr("Still needed before saving: an answer and a subtopic.");
    case 7:
        return Words::tr("Still needed before saving: a picture, an answer and a subtopic.");
    default:
        return {};
    }
}

QString FrameHint(const PictureCanvas& canvas)
{
    if (!canvas.selectionExceedsPage()) {
        return {};
    }
    // Only cropping makes a selection that reaches beyond the canvas.
    const CanvasState& state = canvas.state();
    const bool cut = state.SelX1 < 0 || state.SelY1 < 0 || state.SelX2 > canvas.image().width() ||
                     state.SelY2 > canvas.image().height();
    return (cut ? Words::tr(
                      "The frame was larger than the page of %1 by %2 pixels: only its middle was "
                      "kept. Undo to choose another part, or to use Fit to Page.")
                : Words::tr(
                      "The frame is larger than the page of %1 by %2 pixels: Crop keeps its middle "
                      "and cuts the rest off, Fit to Page keeps all of it and makes it smaller."))
        .arg(canvas.page().width())
        .arg(canvas.page().height());
}

QString PageHint(const PictureCanvas& canvas)
{
    if (!canvas.imageExceedsPage()) {
        return {};
    }
    return Words::tr(
               "Only the upper left %1 by %2 pixels of the picture will be saved. Frame what you "
               "need and crop it, or use Fit to Page to keep all of it.")
        .arg(canvas.page().width())
        .arg(canvas.page().height());
}

QString CanvasDescription(const PictureCanvas& canvas)
{
    const QRect selection = canvas.state().selection();
    const QString selected =
        canvas.state().SelectionShown
            ? Words::tr("Selected: %1 by %2 pixels, %3 from the left and %4 from the top.")
                  .arg(selection.width())
                  .arg(selection.height())
                  .arg(selection.x())
                  .arg(selection.y())
            : Words::tr("Nothing is selected.");
    return selected + u' ' +
           Words::tr(
               "Ctrl+A selects the whole picture, Ctrl and the arrow keys move the frame, with "
               "Shift they size it. The arrow keys move what is selected, Delete erases it, Escape "
               "drops the frame.");
}

} // namespace varnholt
