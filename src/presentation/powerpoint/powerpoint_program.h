#pragma once

#include "presentation/presentation_extras.h"
#include "presentation/presentation_program.h"
#include "presentation/upright_pictures.h"
#include "store/services.h"

#include <memory>
#include <string>

namespace varnholt {

class PowerPointConnection;

/// The presentation port on top of PowerPoint. The presentation is in PowerPoint from the first
/// call on; it stays open, unsaved and visible when this object goes.
class PowerPointProgram final : public PresentationProgram, private PresentationExtras
{
public:
    /// Connects it. Throws `Error` when PowerPoint cannot be reached, `Cancelled` when
    /// `keepGoing` says so.
    PowerPointProgram(std::shared_ptr<PowerPointConnection> connection, const KeepGoing& keepGoing);
    ~PowerPointProgram() override;

    [[nodiscard]] PresentationExtras* extras() override { return this; }
    void addPresentation() override;
    void setVisible() override;
    void appendBlankSlide() override;
    /// Long lines are left to PowerPoint, whose own text boxes the teacher is used to: nothing
    /// but a box's place and text is ever set.
    void addTextBox(double left, double top, double width, double height,
                    LongLines longLines) override;
    void setShapeText(int shape, const QString& text) override;
    void setFirstShapeText(const QString& text) override;
    void addPicture(const QString& path, double left, double top, double width, double height,
                    const QString& description) override;
    void scaleHeight(int shape, double factor) override;
    void scaleWidth(int shape, double factor) override;
    void showSlide(int index) override;
    void finish() override {}

private:
    /// Of a build without wishes PowerPoint is told no more than it always was.
    void announce(const DeckFacts& facts) override { facts_ = facts; }
    void addTitle(double left, double top, double width, double height, double textSize,
                  const QString& text) override;
    void emphasise(int shape, double textSize) override;
    void setNotes(const QString& text) override;
    void setAdvance(int seconds) override;
    [[nodiscard]] QSizeF pictureSize(const QString& path) override;

    template <typename Index>
    void setText(Index shape, const QString& text);

    std::shared_ptr<PowerPointConnection> connection_;
    UprightPictures pictures_;
    DeckFacts facts_;
};

} // namespace varnholt
