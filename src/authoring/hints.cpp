#include "authoring/hints.h"

#include "authoring/PictureCanvas.h"
#include "pictures/picture_files.h"
#include "store/statements.h"

#include <QDir>
#include <QFileInfo>
#include <QStringList>

namespace varnholt {

QString SaveObstacle(const SaveReadiness& readiness, const QString& programFolder)
{
    if (readiness.libraryReadOnly) {
        return QStringLiteral("The question library can only be read: nothing can be saved.");
    }
    const QFileInfo files(QFileInfo(NewPictureFile(programFolder, 0)).path());
    if (files.exists() && !(files.isDir() && files.isWritable())) {
        return QStringLiteral("Pictures cannot be saved: the folder %1 takes no files.")
            .arg(QDir::toNativeSeparators(files.filePath()));
    }
    if (!statements::canHold(readiness.answer)) {
        return QStringLiteral("The question cannot be saved while its answer holds an "
                              "apostrophe (').");
    }
    QStringList missing;
    if (!readiness.hasPicture) {
        missing.append(QStringLiteral("a picture"));
    }
    if (readiness.answer.isEmpty()) {
        missing.append(QStringLiteral("an answer"));
    }
    if (!readiness.hasSubtopic) {
        missing.append(QStringLiteral("a subtopic"));
    }
    if (missing.isEmpty()) {
        return {};
    }
    const QString last = missing.takeLast();
    return QStringLiteral("Still needed before saving: %1.")
        .arg(missing.isEmpty()
                 ? last
                 : missing.join(QStringLiteral(", ")) + QStringLiteral(" and ") + last);
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
    return (cut ? QStringLiteral("The frame was larger than the page of %1 by %2 pixels: only its "
                                 "middle was kept. Paste again to choose another part.")
                : QStringLiteral("The frame is larger than the page of %1 by %2 pixels: Crop "
                                 "keeps its middle and cuts the rest off."))
        .arg(page.innerWidth())
        .arg(page.innerHeight());
}

QString PageHint(const PictureCanvas& canvas)
{
    if (!canvas.HScroll().visible && !canvas.VScroll().visible) {
        return {};
    }
    return QStringLiteral("Only the upper left %1 by %2 pixels of the picture will be saved. "
                          "Frame what you need and crop it.")
        .arg(canvas.picCropped.innerWidth())
        .arg(canvas.picCropped.innerHeight());
}

QString CanvasDescription(const PictureCanvas& canvas)
{
    const QString keys =
        QStringLiteral("Ctrl+A selects the whole picture, the arrow keys move the selection, "
                       "Delete erases it, Escape drops it.");
    return canvas.SelectionShown
               ? QStringLiteral("Selected: %1 by %2 pixels, %3 from the left and %4 from the top. ")
                         .arg(canvas.SelX2 - canvas.SelX1)
                         .arg(canvas.SelY2 - canvas.SelY1)
                         .arg(canvas.SelX1)
                         .arg(canvas.SelY1) +
                     keys
               : QStringLiteral("Nothing is selected. ") + keys;
}

} // namespace varnholt
