#include "presentation/deck_build.h"

#include "presentation/presentation_extras.h"
#include "store/errors.h"

#include <QLocale>

namespace varnholt {

namespace {

/// The failure that led here is the one worth telling about.
void finishQuietly(PresentationProgram& program)
{
    try {
        program.finish();
    } catch (const Error&) {
    } catch (const Cancelled&) {
    }
}

QString languageTag()
{
    const QLocale locale;
    return locale.language() == QLocale::C ? QStringLiteral("en-US")
                                           : locale.name().replace(u'_', u'-');
}

} // namespace

DeckBuild::DeckBuild(PresentationProgram& program, const Deck& deck, const BuildProgress& progress)
    : program_(program.forSlides(static_cast<int>(deck.slides.size())))
    , extras_(program_.extras())
    , deck_(deck)
    , progress_(progress)
{}

void DeckBuild::report(int slide, bool collected) const
{
    if (!progress_) {
        return;
    }
    const int slides = static_cast<int>(deck_.slides.size());
    if (extras_ && extras_->collects()) {
        // Collecting takes about so much of the time.
        constexpr int part = 10;
        progress_(collected ? slides + (part - 1) * slide : slide, part * slides);
    } else {
        progress_(slide, slides);
    }
}

void DeckBuild::addSlides()
{
    program_.setVisible();
    for (std::size_t i = 0; i < deck_.slides.size(); ++i) {
        slide_ = &deck_.slides[i];
        report(static_cast<int>(i + 1), false);
        program_.appendBlankSlide();
        fill(*slide_);
    }
    slide_ = nullptr;
    program_.showSlide(1);
}

BuildOutcome DeckBuild::abortedBy(const std::exception& failure) const
{
    BuildOutcome outcome;
    outcome.end = BuildOutcome::End::Aborted;
    const auto* error = dynamic_cast<const Error*>(&failure);
    outcome.reason = error ? error->message() : QString::fromUtf8(failure.what());
    if (slide_) {
        outcome.poolIndex = slide_->poolIndex;
        outcome.number = slide_->number;
    }
    outcome.pictureIsBad = addingPicture_ && !dynamic_cast<const ProgramGone*>(&failure);
    return outcome;
}

BuildOutcome DeckBuild::run()
{
    BuildOutcome outcome;
    try {
        if (extras_) {
            extras_->announce({deck_.name, deck_.wishes.titles ? languageTag() : QString(),
                               deck_.wishes.answersAfterEach, static_cast<int>(deck_.slides.size()),
                               [this](int slide) { report(slide, true); }});
        }
        program_.addPresentation();
        try {
            addSlides();
        } catch (const Cancelled&) {
            throw;
        } catch (const std::exception& failure) {
            if (!firstPictureReached_) {
                finishQuietly(program_);
                throw;
            }
            outcome = abortedBy(failure);
        }
        program_.finish();
        outcome.notice = program_.notice();
    } catch (const Cancelled&) {
        outcome.end = BuildOutcome::End::Cancelled;
    } catch (const Error& error) {
        if (outcome.end != BuildOutcome::End::Aborted) {
            throw;
        }
        // The abort is told of anyway; this comes on top of it.
        outcome.notice = error.message();
    }
    return outcome;
}

} // namespace varnholt
