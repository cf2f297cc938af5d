#include "selection/build_run.h"

#include "log/ProgramLog.h"
#include "pictures/picture_files.h"
#include "presentation/presentation_name.h"
#include "selection/question_draw.h"
#include "selection/test_record.h"
#include "store/catalogue.h"
#include "store/errors.h"
#include "store/services.h"
#include "toolkit/LongWork.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QElapsedTimer>

namespace varnholt {

namespace {

struct Words
{
    Q_DECLARE_TR_FUNCTIONS(RunBuild)
};

/// So long without an answer, and the user is told that she may as well stop.
constexpr int longWaitMs = 10'000;

/// The progress bar lives in here and nobody speaks meanwhile. `silent` becomes whether in the
/// end the presentation program had not answered for long.
BuildOutcome build(SlidesInto into, QWidget* window, const Services& services,
                   const BuildInput& input, bool& silent)
{
    PresentationPrograms& programs = *services.presentationPrograms;
    const bool mayStaySilent = into == SlidesInto::Program && programs.canWriteFileInstead();
    const QString creating = Words::tr("Creating the slides…");
    LongWork work(window, creating, LongWork::Cancel::Offered);
    QElapsedTimer sinceStep;
    sinceStep.start();
    const auto keepGoing = [&] {
        silent = mayStaySilent && sinceStep.hasExpired(longWaitMs);
        if (silent) {
            work.setLabel(Words::tr("The presentation program has not answered for a while. You "
                                    "can go on waiting for it or cancel."));
        }
        return work.goOn();
    };
    const auto progress = [&](int slide, int slides) {
        sinceStep.start();
        silent = false;
        work.setLabel(creating);
        work.progress(slide, slides);
    };
    BuildOutcome outcome;
    try {
        const auto program = programs.start(into, keepGoing);
        outcome = BuildPresentation(*program, input, progress);
    } catch (const Cancelled&) {
        outcome.end = BuildOutcome::End::Cancelled;
    } catch (const Error& error) {
        outcome.end = BuildOutcome::End::Failed;
        outcome.reason = error.message();
    }
    return outcome;
}

/// Why a build was aborted, at which question, and what to make of it.
QString explanation(const BuildOutcome& outcome, const BuildInput& input)
{
    QString text = outcome.reason;
    if (outcome.number > 0) {
        text += QStringLiteral("\n\n") +
                Words::tr("It happened at question %1 of the presentation (%2).")
                    .arg(outcome.number)
                    .arg(input.topicText(input.drawPool(outcome.poolIndex)));
    }
    if (!outcome.pictureIsBad) {
        text += QStringLiteral("\n\n") +
                Words::tr("No picture is missing, so there is nothing to delete. Please "
                          "create the slides once more.");
    }
    return text;
}

void tell(MessageBoxes& messages, const BuildOutcome& outcome, const BuildInput& input)
{
    if (outcome.end == BuildOutcome::End::Failed) {
        messages.inform(Words::tr("Error"), outcome.reason);
    } else if (outcome.end == BuildOutcome::End::Aborted) {
        messages.explain(
            Words::tr("File Missing"),
            Words::tr("The creation of the powerpoint has been aborted because one of the "
                      "questions selected is missing a picture file. Please go to Manage "
                      "Assessments and delete that questions."),
            explanation(outcome, input));
    }
    if (!outcome.notice.isEmpty()) {
        messages.inform(Words::tr("Presentation"), outcome.notice);
    }
}

int marked(const BuildInput& input)
{
    int questions = 0;
    for (const DrawnQuestion& question : input.drawPool) {
        questions += question.Selected ? 1 : 0;
    }
    return questions;
}

} // namespace

BuildOutcome RunBuild(QWidget* window, Services& services, const ProgramState& state,
                      const Draw& draw, const SlideOptions& options)
{
    return RunBuild(window, services,
                    {draw.DrawPool, options.topicLine, options.answerKey,
                     [&](const QuestionRecord& question) { return GetTopicText(state, question); },
                     [&](const QuestionRecord& question) {
                         return FindPictureFile(services.programFolder, question.PictureIndex);
                     },
                     options.wishes, NameOfTest(state, draw)});
}

BuildOutcome RunBuild(QWidget* window, Services& services, const BuildInput& unnamed)
{
    BuildInput input = unnamed;
    input.name = PresentationName(
        unnamed.name,
        QDateTime::fromMSecsSinceEpoch(services.clock->millisecondsSinceEpoch()).date());
    bool silent = false;
    BuildOutcome outcome = build(SlidesInto::Program, window, services, input, silent);
    if (outcome.end == BuildOutcome::End::Cancelled && silent &&
        services.messageBoxes->yesNo(
            Words::tr("Presentation"),
            Words::tr("The presentation program has not answered. Do you want the slides in a "
                      "presentation file instead?"),
            MessageBoxes::Answer::Yes)) {
        outcome = build(SlidesInto::File, window, services, input, silent);
    }
    qCInfo(logSlides,
           "A build of %d questions ended as %d (0 complete, 1 aborted, 2 cancelled, 3 "
           "failed).",
           marked(input), static_cast<int>(outcome.end));
    tell(*services.messageBoxes, outcome, input);
    return outcome;
}

} // namespace varnholt
