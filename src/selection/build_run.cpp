#include "selection/build_run.h"

#include "pictures/picture_files.h"
#include "presentation/slide_builder.h"
#include "store/catalogue.h"
#include "store/errors.h"
#include "store/services.h"
#include "toolkit/LongWork.h"

namespace varnholt {

void RunBuild(QWidget* window, Services& services, const ProgramState& state,
              const SlideOptions& options)
{
    try {
        LongWork work(window, QStringLiteral("Creating the slides…"), LongWork::Cancel::Offered);
        const std::unique_ptr<PresentationProgram> program = services.presentationPrograms->start();
        const BuildInput input{
            state.DrawPool, options.topicLine, options.answerKey,
            [&](const QuestionRecord& question) { return GetTopicText(state, question); },
            [&](const QuestionRecord& question) {
                return FindPictureFile(services.programFolder, question.PictureIndex);
            }};
        BuildPresentation(*program, input, *services.messageBoxes,
                          [&work](int slide, int slides) { work.progress(slide, slides); });
    } catch (const Cancelled&) {
        // Stopped before the first slide; there is nothing to tell.
    } catch (const Error& error) {
        services.messageBoxes->inform(QStringLiteral("Error"), error.message());
    }
}

} // namespace varnholt
