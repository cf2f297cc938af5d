#pragma once

#include <QSizeF>
#include <QString>

#include <functional>

namespace varnholt {

/// What a build says about itself before it begins.
struct DeckFacts
{
    /// What the presentation is called, its date included; empty for a name of the back end's own.
    QString name;
    /// The language of the texts, such as "en-GB"; empty when it is not to be told.
    QString language;
    /// Whether slides with the answers repeat the questions.
    bool answerSlides = false;
    /// How many slides there are going to be.
    int slides = 0;
    /// For a program that only collects (`PresentationExtras::collects`): slide `slide` is on its
    /// way to where it is seen. May throw `Cancelled`.
    std::function<void(int slide)> report;
};

/// What a back end may be able to do beyond `PresentationProgram`. Positions and sizes are points;
/// all but `announce` works on the current slide and throws `Error` as the operations there do.
class PresentationExtras
{
public:
    virtual ~PresentationExtras() = default;

    /// Whether slides are collected until `showSlide` or `finish`, so that these are what takes
    /// time.
    [[nodiscard]] virtual bool collects() const { return false; }
    /// Comes before everything else.
    virtual void announce(const DeckFacts& facts) = 0;
    /// The slide's title, a placeholder that outlines and screen readers know. It becomes shape 1,
    /// so it comes before all others.
    virtual void addTitle(double left, double top, double width, double height, double textSize,
                          const QString& text) = 0;
    /// The text of a text box becomes bold and that large, on white in a frame.
    virtual void emphasise(int shape, double textSize) = 0;
    /// What stands in the notes of the slide.
    virtual void setNotes(const QString& text) = 0;
    /// The slide gives way to the next after so many seconds, 1 or more, or a click.
    virtual void setAdvance(int seconds) = 0;
    /// A picture's own size.
    [[nodiscard]] virtual QSizeF pictureSize(const QString& path) = 0;
};

} // namespace varnholt
