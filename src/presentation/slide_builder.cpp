#include "presentation/slide_builder.h"

#include "presentation/deck_build.h"

#include <QCoreApplication>

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(Presentation)
};

/// The builder of decks without wishes: these calls and no others, in this order.
class ClassicBuild final : public DeckBuild
{
public:
    using DeckBuild::DeckBuild;

private:
    void fill(const DeckSlide& slide) override
    {
        slide.kind == DeckSlide::Kind::Key ? fillKey(slide) : fillQuestion(slide);
    }

    void fillQuestion(const DeckSlide& slide)
    {
        int t = 0;
        if (deck().topicLine) {
            program().addTextBox(0, 0, 1000, 100, LongLines::Wrap);
            program().setFirstShapeText(slide.topic);
            t = 1;
        }
        program().addTextBox(0, 40 * t, 100, 100, LongLines::Wrap);
        inPicture([&] {
            program().addPicture(slide.picturePath, 2, 50 + 20 * t, PresentationProgram::ownSize,
                                 PresentationProgram::ownSize,
                                 Words::tr("Question %1").arg(slide.number));
            return true;
        });
        program().setShapeText(t + 1, u'#' + QString::number(slide.number));
        program().scaleHeight(t + 2, 1);
        program().scaleWidth(t + 2, 1);
    }

    void fillKey(const DeckSlide& slide)
    {
        int shape = 0;
        if (!slide.heading.isEmpty()) {
            program().addTextBox(0, 0, 300, 100, LongLines::Wrap);
            program().setFirstShapeText(slide.heading);
            ++shape;
        }
        for (const KeyLine& line : slide.lines) {
            // Where it wrapped, an answer would be printed over the next one.
            program().addTextBox(line.left, line.top, line.width, line.height, LongLines::RunOn);
            program().setShapeText(++shape, line.text);
        }
    }
};

} // namespace

BuildOutcome BuildPresentation(PresentationProgram& program, const BuildInput& input,
                               const BuildProgress& progress)
{
    const Deck deck = MakeDeck(input);
    return deck.wishes.any() ? BuildPlusPresentation(program, deck, progress)
                             : ClassicBuild(program, deck, progress).run();
}

} // namespace varnholt
