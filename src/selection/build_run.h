#pragma once

class QWidget;

namespace varnholt {

struct ProgramState;
struct Services;

/// What the selection window's options say about the slides.
struct SlideOptions
{
    bool topicLine = true;
    bool answerKey = true;
};

/// Builds the presentation of the marked questions of `DrawPool` with a busy pointer and,
/// on long builds, a progress bar over `window`. Every failure is reported to the user; the
/// slides built until then stay open.
void RunBuild(QWidget* window, Services& services, const ProgramState& state,
              const SlideOptions& options);

} // namespace varnholt
