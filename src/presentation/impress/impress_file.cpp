#include "presentation/impress/impress_file.h"

#include "files/FolderLock.h"
#include "presentation/impress/impress_program.h"
#include "presentation/pptx/pptx_writer.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cmath>

namespace varnholt {

namespace {

double points(Emu length)
{
    return double(length) / double(emuPerPoint);
}

const QString folderName = QStringLiteral("varnholt-slides-");

/// What programs left that were killed while the office read their file: folders of no living one.
void removeLeftFolders()
{
    const auto folders = QDir::temp().entryInfoList({folderName + QStringLiteral("??????")},
                                                    QDir::Dirs | QDir::NoSymLinks);
    for (const QFileInfo& folder : folders) {
        const FolderLock lock(folder.filesystemFilePath());
        if (!lock.isHeldByAnother()) {
            QDir(folder.filePath()).removeRecursively();
        }
    }
}

} // namespace

Emu ImpressFile::rounded(Emu length) const
{
    return std::llround(double(length) / double(emuPerHundredthMm)) * emuPerHundredthMm;
}

void ImpressFile::announce(const DeckFacts& facts)
{
    PptxDraft::announce(facts);
    facts_ = facts;
}

void ImpressFile::showSlide(int index)
{
    PptxDraft::showSlide(index);
    open(index);
}

void ImpressFile::finish()
{
    // Otherwise the build was aborted; the slides made so far are to stay open.
    if (!opened_) {
        open(static_cast<int>(document().slides.size()));
    }
    impress_.finish();
}

void ImpressFile::open(int index)
{
    opened_ = true;
    try {
        openFile(index);
    } catch (const Cancelled&) {
        throw;
    } catch (const ProgramGone&) {
        throw;
    } catch (const Error&) {
        // A full disk, or an office that does not get to see the file.
        replay(index);
    }
}

void ImpressFile::openFile(int index)
{
    removeLeftFolders();
    // The file is gone as soon as the office has read it: nothing there depends on it.
    const QTemporaryDir folder(QDir::temp().filePath(folderName + QStringLiteral("XXXXXX")));
    const FolderLock lock(QFileInfo(folder.path()).filesystemFilePath());
    const QString path = folder.filePath(QStringLiteral("slides.pptx"));
    writePptx(path, document(), QDateTime::currentDateTime(), impress_.keepGoing());
    std::vector<TextPlace> texts;
    for (size_t slide = 0; slide < document().slides.size(); ++slide) {
        const std::vector<PptxShape>& shapes = document().slides[slide].shapes;
        for (size_t shape = 0; shape < shapes.size(); ++shape) {
            if (shapes[shape].media == 0) {
                texts.push_back(
                    {int(slide), int(shape), shapes[shape].longLines, shapes[shape].title});
            }
        }
    }
    impress_.open(path, facts_, texts, index);
}

void ImpressFile::replay(int index)
{
    PresentationExtras& extras = *impress_.extras();
    extras.announce(facts_);
    impress_.addPresentation();
    impress_.setVisible();
    int number = 0;
    for (const PptxSlide& slide : document().slides) {
        facts_.report(++number);
        impress_.appendBlankSlide();
        int position = 0;
        for (const PptxShape& shape : slide.shapes) {
            replayShape(shape, ++position);
        }
        if (!slide.notes.isEmpty()) {
            extras.setNotes(slide.notes);
        }
        if (slide.advance > 0) {
            extras.setAdvance(slide.advance);
        }
    }
    impress_.showSlide(index);
}

void ImpressFile::replayShape(const PptxShape& shape, int position)
{
    PresentationExtras& extras = *impress_.extras();
    const double left = points(shape.left);
    const double top = points(shape.top);
    const double width = points(shape.width);
    const double height = points(shape.height);
    if (shape.media != 0) {
        impress_.addPicture(document().media[size_t(shape.media) - 1].path, left, top, width,
                            height, shape.description);
        return;
    }
    if (shape.title) {
        extras.addTitle(left, top, width, height, shape.textSize, shape.text);
        return;
    }
    impress_.addTextBox(left, top, width, height, shape.longLines);
    impress_.setShapeText(position, shape.text);
    if (shape.framed) {
        extras.emphasise(position, shape.textSize);
    }
}

} // namespace varnholt
