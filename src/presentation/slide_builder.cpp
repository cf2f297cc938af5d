#include "presentation/slide_builder.h"

#include "store/errors.h"
#include "store/services.h"

namespace varnholt {

namespace {

constexpr int answersPerSlide = 25;
constexpr double answerLineHeight = 20;

class Build
{
public:
    Build(PresentationProgram& program, const BuildInput& input, const BuildProgress& progress)
        : program_(program)
        , input_(input)
        , progress_(progress)
        , slides_(countSlides())
    {}

    void run()
    {
        program_.setVisible();
        addQuestionSlides();
        if (input_.answerKey) {
            addAnswerKey();
        }
        program_.showSlide(1);
    }

    /// From here on a failure is a matter of the build, no longer of the caller.
    [[nodiscard]] bool firstPictureReached() const { return firstPictureReached_; }

private:
    [[nodiscard]] bool breaksKeyAfter(int poolIndex) const
    {
        return poolIndex % answersPerSlide == 0;
    }

    [[nodiscard]] int countSlides() const
    {
        int slides = input_.answerKey ? 1 : 0;
        for (int i = 1; i <= input_.drawPool.upperBound(); ++i) {
            if (input_.drawPool(i).Selected) {
                slides += input_.answerKey && breaksKeyAfter(i) ? 2 : 1;
            }
        }
        return slides;
    }

    void appendSlide()
    {
        if (progress_) {
            progress_(++slide_, slides_);
        }
        program_.appendBlankSlide();
    }

    void addQuestionSlides()
    {
        int number = 0;
        for (const QuestionRecord& record : input_.drawPool) {
            if (record.Selected) {
                addQuestionSlide(record, ++number);
            }
        }
    }

    void addQuestionSlide(const QuestionRecord& record, int number)
    {
        const QString path = input_.picturePath(record);
        appendSlide();
        int t = 0;
        if (input_.topicLine) {
            program_.addTextBox(0, 0, 1000, 100);
            program_.setShapeText(1, input_.topicText(record));
            t = 1;
        }
        program_.addTextBox(0, 40 * t, 100, 100);
        firstPictureReached_ = true;
        program_.addPicture(path, 2, 50 + 20 * t, PresentationProgram::ownSize,
                            PresentationProgram::ownSize, pictureDescription(number));
        program_.setShapeText(t + 1, u'#' + QString::number(number));
        program_.scaleHeight(t + 2, 1);
        program_.scaleWidth(t + 2, 1);
    }

    static QString pictureDescription(int number)
    {
        return QStringLiteral("Question %1").arg(number);
    }

    void addAnswerKey()
    {
        appendSlide();
        program_.addTextBox(0, 0, 300, 100);
        program_.setShapeText(1, QStringLiteral("Answer Key"));
        int answer = 0;
        int line = 1;
        for (int i = 1; i <= input_.drawPool.upperBound(); ++i) {
            const QuestionRecord& record = input_.drawPool(i);
            if (!record.Selected) {
                continue;
            }
            ++answer;
            ++line;
            program_.addTextBox(0, answerLineHeight * (line - 1), 100, 100);
            program_.setShapeText(line,
                                  QString::number(answer) + QStringLiteral(") ") + record.Answer);
            if (breaksKeyAfter(i)) {
                appendSlide();
                line = 0;
            }
        }
    }

    PresentationProgram& program_;
    const BuildInput& input_;
    const BuildProgress& progress_;
    const int slides_;
    int slide_ = 0;
    bool firstPictureReached_ = false;
};

void reportAbort(MessageBoxes& messageBoxes)
{
    messageBoxes.inform(
        QStringLiteral("File Missing"),
        QStringLiteral("The creation of the powerpoint has been aborted because one of the "
                       "questions selected is missing a picture file. Please go to Manage "
                       "Assessments and delete that questions."));
}

/// The failure that led here is the one worth telling about.
void finishQuietly(PresentationProgram& program)
{
    try {
        program.finish();
    } catch (const Error&) {
    }
}

} // namespace

BuildOutcome BuildPresentation(PresentationProgram& program, const BuildInput& input,
                               MessageBoxes& messageBoxes, const BuildProgress& progress)
{
    program.addPresentation();
    Build build(program, input, progress);
    BuildOutcome outcome = BuildOutcome::complete;
    try {
        build.run();
    } catch (const Cancelled&) {
        return BuildOutcome::cancelled;
    } catch (const std::exception&) {
        if (!build.firstPictureReached()) {
            finishQuietly(program);
            throw;
        }
        reportAbort(messageBoxes);
        outcome = BuildOutcome::aborted;
    }
    program.finish();
    return outcome;
}

} // namespace varnholt
