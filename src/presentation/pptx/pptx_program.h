#pragma once

#include "presentation/pptx/pptx_document.h"
#include "presentation/presentation_extras.h"
#include "presentation/presentation_program.h"
#include "store/services.h"

#include <QDateTime>
#include <QHash>

#include <functional>

namespace varnholt {

/// Where a .pptx goes and what happens to it then. Callbacks may be empty.
struct PptxSettings
{
    /// The folder `Presentations` is made in it when it is not there.
    QString programFolder;
    std::function<QDateTime()> now;
    /// Opens the finished file with the desktop's program for it; false when there is none.
    std::function<bool(const QString& path)> open;
    /// Why the slides go to a file although another program was wanted, a whole sentence; empty
    /// when none was.
    QString insteadBecause;
    KeepGoing keepGoing;
};

/// The back end that needs no presentation program: a document in memory which `finish`
/// writes as "<name>.pptx", or "Varnholt <date> <time>.pptx" where it has no name, under a
/// temporary name until it is whole, and opens. A presentation without slides is not written.
class PptxProgram final : public PresentationProgram, private PresentationExtras
{
public:
    explicit PptxProgram(PptxSettings settings);
    ~PptxProgram() override;

    [[nodiscard]] PresentationExtras* extras() override { return this; }
    /// Throws when nothing can be written to the folder, before any work is done.
    void addPresentation() override;
    void setVisible() override;
    void appendBlankSlide() override;
    void addTextBox(double left, double top, double width, double height,
                    LongLines longLines) override;
    void setShapeText(int shape, const QString& text) override;
    void addPicture(const QString& path, double left, double top, double width, double height,
                    const QString& description) override;
    void scaleHeight(int shape, double factor) override;
    void scaleWidth(int shape, double factor) override;
    /// Only looks whether the slide is there: a .pptx opens at its first one.
    void showSlide(int index) override;
    void finish() override;
    [[nodiscard]] QString notice() const override { return notice_; }

    /// Where the file was written; empty before `finish` and when nothing was.
    [[nodiscard]] QString writtenPath() const { return writtenPath_; }

private:
    void announce(const DeckFacts& facts) override;
    void addTitle(double left, double top, double width, double height, double textSize,
                  const QString& text) override;
    void emphasise(int shape, double textSize) override;
    void setNotes(const QString& text) override;
    void setAdvance(int seconds) override;
    [[nodiscard]] QSizeF pictureSize(const QString& path) override;

    PptxSlide& currentSlide();
    PptxShape& shapeAt(int shape);
    int mediaFor(const QString& path);
    [[nodiscard]] QDateTime now() const;
    QString giveFinalName();

    PptxSettings settings_;
    PptxDocument document_;
    QHash<QString, int> mediaByPath_;
    QString folder_;
    /// The name the file is written under.
    QString partPath_;
    QString writtenPath_;
    QString notice_;
};

} // namespace varnholt
