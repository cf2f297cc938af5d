#pragma once

#include "presentation/presentation_program.h"
#include "store/list1.h"
#include "store/modMain.h"
#include "store/slide_wishes.h"

#include <QString>

#include <functional>

namespace varnholt {

/// What one build is made from. The references must outlive the build.
struct BuildInput
{
    /// Records whose `Selected` is set go on slides, in pool order.
    const List1<DrawnQuestion>& drawPool;
    /// A topic line on each question slide.
    bool topicLine = false;
    /// Answer key slides after the questions.
    bool answerKey = false;
    /// The topic line of a question; called only when `topicLine` or `wishes.titles` is set.
    std::function<QString(const QuestionRecord&)> topicText;
    /// Where the picture of a question is or ought to be. A path that leads nowhere (or an
    /// empty one) becomes a failure of `PresentationProgram::addPicture`, not of this call.
    std::function<QString(const QuestionRecord&)> picturePath;
    SlideWishes wishes{};
    /// What the presentation is called, its date included (`PresentationName`); empty for a name of
    /// the back end's own.
    QString name{};
};

/// What came of a build. The texts are whole sentences for the user.
struct BuildOutcome
{
    enum class End
    {
        Complete,
        /// A picture was missing or unreadable, or the presentation program failed later on;
        /// the slides made so far stay open.
        Aborted,
        /// The user stopped it. What an outside program already shows stays there, a file is
        /// not written.
        Cancelled,
        /// There are no slides, or they could not be written or shown.
        Failed,
    };

    End end = End::Complete;
    /// Why it was aborted or failed.
    QString reason;
    /// Aborted: where. The position in the draw pool of the question whose slide was being
    /// made and its number in the presentation; 0 past the question slides.
    int poolIndex = 0;
    int number = 0;
    /// Aborted: whether the question's picture is the reason, not the presentation program.
    bool pictureIsBad = false;
    /// What else there is to know, for example where the file lies; mostly empty.
    QString notice;
};

/// Builds the presentation of the deck that `MakeDeck` makes of `input`: with nothing wished for
/// one slide per selected record, then the answer key.
///
/// A failure before the first picture step (the program does not start, the first slide
/// cannot be added, there is no slide to show at the end) reaches the caller as it is, as does
/// an `Error` of `PresentationProgram::finish` (a full disk) after a whole build. From the
/// first picture on any failure ends the build as aborted. `finish` is called in every case
/// but a cancelled build.
///
/// What is wished for and takes `PresentationExtras` is left out where the program lacks them.
///
/// `progress` may be empty; it is called before each slide is added and may throw `Cancelled`.
[[nodiscard]] BuildOutcome BuildPresentation(PresentationProgram& program, const BuildInput& input,
                                             const BuildProgress& progress = {});

} // namespace varnholt
