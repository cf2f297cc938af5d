#pragma once

#include "presentation/slide_builder.h"

class QWidget;

namespace varnholt {

struct Draw;
struct ProgramState;
struct Services;

/// What the selection window's options say about the slides.
struct SlideOptions
{
    bool topicLine = true;
    bool answerKey = true;
    SlideWishes wishes{};
};

/// Builds the presentation of the marked questions of a draw with a busy pointer and,
/// on long builds, a progress bar over `window`. When all that has gone the user is told what
/// there is to tell, so the caller says nothing more; the slides built until then stay open.
/// The presentation is called as the test is at first (`NameOfTest`), so that it is the same again
/// when that is made again. Throws nothing that the build threw.
BuildOutcome RunBuild(QWidget* window, Services& services, const ProgramState& state,
                      const Draw& draw, const SlideOptions& options);
/// The same of a pool whose topics and pictures the caller knows. The date is added to its name.
BuildOutcome RunBuild(QWidget* window, Services& services, const BuildInput& input);

} // namespace varnholt
