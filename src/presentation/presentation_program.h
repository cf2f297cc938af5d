#pragma once

#include "store/errors.h"

#include <QString>

#include <functional>

namespace varnholt {

class PresentationExtras;

/// The presentation program has gone, its presentation was closed, or it takes no more calls, in
/// the middle of a build: what it was asked for last is not the reason.
class ProgramGone : public Error
{
public:
    using Error::Error;
};

/// What becomes of a line that is longer than its text box is wide.
enum class LongLines
{
    Wrap,
    /// It goes on past the box's right edge; position and size of the box stay.
    RunOn
};

/// The port to the presentation program: exactly the operations the builder needs, in the
/// terms of a presentation program's object model. Shapes and slides count from 1 in order
/// of creation; shape operations work on the slide appended last. Positions and sizes are
/// points (1/72 inch) from the slide's top-left corner.
///
/// An object lives for one build. Every operation is synchronous and throws `Error` when
/// the program refuses it, has gone, or a file cannot be read.
class PresentationProgram
{
public:
    /// Width or height of a picture: the picture's own (its pixels at its density, at
    /// 96 dpi where the file gives none).
    static constexpr double ownSize = -1;

    virtual ~PresentationProgram() = default;

    /// The object that a presentation of so many slides is best built with, this one or one that
    /// belongs to it. Asked before everything else; nothing else is asked of this one then.
    [[nodiscard]] virtual PresentationProgram& forSlides(int /*slides*/) { return *this; }

    /// What the back end can do beyond this port; null when that is nothing.
    [[nodiscard]] virtual PresentationExtras* extras() { return nullptr; }

    /// A new, empty presentation in a window; it becomes the active one. 960 x 540 points.
    virtual void addPresentation() = 0;
    virtual void setVisible() = 0;
    /// Adds a blank slide after the last one and selects it: it is the current slide now.
    virtual void appendBlankSlide() = 0;
    /// Adds a horizontal text box to the current slide.
    virtual void addTextBox(double left, double top, double width, double height,
                            LongLines longLines) = 0;
    /// A line break begins a new paragraph, whichever character stands for it; what becomes of
    /// other characters that no slide can show is said at `slideParagraphs`.
    virtual void setShapeText(int shape, const QString& text) = 0;
    /// `setShapeText` for shape 1 where that is a fixed place and not a counted one: object models
    /// are given the one as a 16-bit number, the other as one of 32 bits.
    virtual void setFirstShapeText(const QString& text) { setShapeText(1, text); }
    /// Embeds a picture file (not linked) on the current slide. `width` and `height` may be
    /// `ownSize`. `description` is the alternative text.
    virtual void addPicture(const QString& path, double left, double top, double width,
                            double height, const QString& description) = 0;
    /// Scales a shape relative to its original size, its top-left corner fixed.
    virtual void scaleHeight(int shape, double factor) = 0;
    virtual void scaleWidth(int shape, double factor) = 0;
    /// The slide to look at when the build is over. The last operation before `finish`: nothing
    /// is added after it. An `index` outside 1..number of slides is an error.
    virtual void showSlide(int index) = 0;

    /// Called once when the build is over, also after an abort: whatever is left to do
    /// (write, open, show) is done now, so that the slides built so far stay open.
    /// May throw `Error`.
    virtual void finish() = 0;

    /// After `finish`: what the user should be told about the result, in whole sentences; empty
    /// when it is simply there to be seen.
    [[nodiscard]] virtual QString notice() const { return {}; }
};

/// What a build tells the window about itself. `slide` of `slides` is being made now.
using BuildProgress = std::function<void(int slide, int slides)>;

} // namespace varnholt
