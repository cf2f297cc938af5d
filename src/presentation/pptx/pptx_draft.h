#pragma once

#include "presentation/pptx/pptx_document.h"
#include "presentation/presentation_extras.h"
#include "presentation/presentation_program.h"

#include <QHash>

namespace varnholt {

/// The port as far as it only says what goes on the slides: it becomes a document in memory. What
/// that is for is up to the derived class.
class PptxDraft : public PresentationProgram, protected PresentationExtras
{
public:
    [[nodiscard]] PresentationExtras* extras() override { return this; }
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

protected:
    void announce(const DeckFacts& facts) override;

    PptxDocument& document() { return document_; }
    /// Lengths on slides are exact unless a derived class rounds them to what its reader counts in.
    [[nodiscard]] virtual Emu rounded(Emu length) const { return length; }

private:
    void addTitle(double left, double top, double width, double height, double textSize,
                  const QString& text) override;
    void emphasise(int shape, double textSize) override;
    void setNotes(const QString& text) override;
    void setAdvance(int seconds) override;
    [[nodiscard]] QSizeF pictureSize(const QString& path) override;

    [[nodiscard]] Emu emu(double points) const;
    PptxSlide& currentSlide();
    PptxShape& shapeAt(int shape);
    int mediaFor(const QString& path);

    PptxDocument document_;
    QHash<QString, int> mediaByPath_;
};

} // namespace varnholt
