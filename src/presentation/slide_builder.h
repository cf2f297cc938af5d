#pragma once

#include "presentation/presentation_program.h"
#include "store/list1.h"
#include "store/modMain.h"

#include <QString>

#include <functional>

namespace varnholt {

class MessageBoxes;

/// What one build is made from. The references must outlive the build.
struct BuildInput
{
    /// Records whose `Selected` is set go on slides, in pool order.
    const List1<QuestionRecord>& drawPool;
    /// A topic line on each question slide.
    bool topicLine = false;
    /// Answer key slides after the questions.
    bool answerKey = false;
    /// The topic line of a question; called only when `topicLine` is set.
    std::function<QString(const QuestionRecord&)> topicText;
    /// Where the picture of a question is or ought to be. A path that leads nowhere (or an
    /// empty one) becomes a failure of `PresentationProgram::addPicture`, not of this call.
    std::function<QString(const QuestionRecord&)> picturePath;
};

enum class BuildOutcome
{
    complete,
    /// A picture was missing or unreadable, or the presentation program failed later on. The
    /// user has been told; the slides so far stay open.
    aborted,
    /// The progress callback threw `Cancelled`. Nothing was said and nothing is finished:
    /// what an outside program already shows stays there, a file is not written.
    cancelled,
};

/// Builds the presentation: one slide per selected record, then the answer key.
///
/// A failure before the first picture step (the program does not start, the first slide
/// cannot be added, there is no slide to show at the end) reaches the caller as it is. From
/// the first picture on any failure ends the build with the "File Missing" message.
/// `PresentationProgram::finish` is called in every case but a cancelled build; an `Error`
/// of its own (a full disk) reaches the caller.
///
/// `progress` may be empty; it is called before each slide is added.
BuildOutcome BuildPresentation(PresentationProgram& program, const BuildInput& input,
                               MessageBoxes& messageBoxes, const BuildProgress& progress = {});

} // namespace varnholt
