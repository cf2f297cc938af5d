#pragma once

#include "presentation/deck.h"
#include "presentation/slide_builder.h"

namespace varnholt {

class PresentationExtras;

/// What every way of building a deck has in common: the order of the slides, the progress, and what
/// becomes of a failure.
class DeckBuild
{
public:
    DeckBuild(PresentationProgram& program, const Deck& deck, const BuildProgress& progress);
    virtual ~DeckBuild() = default;
    DeckBuild(const DeckBuild&) = delete;
    DeckBuild& operator=(const DeckBuild&) = delete;

    /// As `BuildPresentation`.
    [[nodiscard]] BuildOutcome run();

protected:
    /// Puts on the current slide, which is empty, what it is to hold.
    virtual void fill(const DeckSlide& slide) = 0;

    PresentationProgram& program() { return program_; }
    /// Null where the program has none.
    PresentationExtras* extras() { return extras_; }
    [[nodiscard]] const Deck& deck() const { return deck_; }
    /// From here on a failure is a matter of the build, no longer of the caller; one that is thrown
    /// in `step` may be the picture's.
    template <typename Step>
    auto inPicture(Step step)
    {
        firstPictureReached_ = true;
        addingPicture_ = true;
        auto done = step();
        addingPicture_ = false;
        return done;
    }

private:
    void addSlides();
    /// `collected` when the slide, made before, is on its way to the presentation program.
    void report(int slide, bool collected) const;
    [[nodiscard]] BuildOutcome abortedBy(const std::exception& failure) const;

    PresentationProgram& program_;
    PresentationExtras* const extras_;
    const Deck& deck_;
    const BuildProgress& progress_;
    /// The one being made.
    const DeckSlide* slide_ = nullptr;
    bool firstPictureReached_ = false;
    bool addingPicture_ = false;
};

/// The builder of decks with wishes. Slides hold, in this order: the title (or topic line and
/// number), the picture, the answer.
[[nodiscard]] BuildOutcome BuildPlusPresentation(PresentationProgram& program, const Deck& deck,
                                                 const BuildProgress& progress);

} // namespace varnholt
