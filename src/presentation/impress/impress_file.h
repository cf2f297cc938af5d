#pragma once

#include "presentation/pptx/pptx_draft.h"

#include <functional>

namespace varnholt {

class ImpressProgram;

/// Slides for Impress that are many: they are put together here, written to a temporary .pptx and
/// opened by the office in one go, which is quicker than a call for each of their shapes. What
/// comes of it is what the calls would have made. Where that fails, the calls are made after all.
class ImpressFile final : public PptxDraft
{
public:
    /// `impress` outlives this object.
    explicit ImpressFile(ImpressProgram& impress)
        : impress_(impress)
    {
        document().bare = true;
    }

    void addPresentation() override {}
    /// Has the office open the slides, the slide with this index on the screen.
    void showSlide(int index) override;
    void finish() override;

private:
    [[nodiscard]] bool collects() const override { return true; }
    void announce(const DeckFacts& facts) override;
    /// Whole hundredths of a millimetre.
    [[nodiscard]] Emu rounded(Emu length) const override;
    void open(int index);
    void openFile(int index);
    /// The slides call by call.
    void replay(int index);
    void replayShape(const PptxShape& shape, int position);

    ImpressProgram& impress_;
    DeckFacts facts_;
    bool opened_ = false;
};

} // namespace varnholt
