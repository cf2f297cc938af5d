#include "presentation/slide_builder.h"

#include "store/errors.h"

#include <QCoreApplication>

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(Presentation)
};

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

    /// How a build ends that has failed now because of `failure`.
    [[nodiscard]] BuildOutcome abortedBy(const std::exception& failure) const
    {
        BuildOutcome outcome;
        outcome.end = BuildOutcome::End::Aborted;
        const auto* error = dynamic_cast<const Error*>(&failure);
        outcome.reason = error ? error->message() : QString::fromUtf8(failure.what());
        outcome.poolIndex = poolIndex_;
        outcome.number = number_;
        outcome.pictureIsBad = addingPicture_ && !dynamic_cast<const ProgramGone*>(&failure);
        return outcome;
    }

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
        for (poolIndex_ = 1; poolIndex_ <= input_.drawPool.upperBound(); ++poolIndex_) {
            const DrawnQuestion& record = input_.drawPool(poolIndex_);
            if (record.Selected) {
                number_ = ++number;
                addQuestionSlide(record);
            }
        }
        poolIndex_ = 0;
        number_ = 0;
    }

    void addQuestionSlide(const QuestionRecord& record)
    {
        const QString path = input_.picturePath(record);
        appendSlide();
        int t = 0;
        if (input_.topicLine) {
            program_.addTextBox(0, 0, 1000, 100, LongLines::Wrap);
            program_.setFirstShapeText(input_.topicText(record));
            t = 1;
        }
        program_.addTextBox(0, 40 * t, 100, 100, LongLines::Wrap);
        firstPictureReached_ = true;
        addingPicture_ = true;
        program_.addPicture(path, 2, 50 + 20 * t, PresentationProgram::ownSize,
                            PresentationProgram::ownSize, pictureDescription(number_));
        addingPicture_ = false;
        program_.setShapeText(t + 1, u'#' + QString::number(number_));
        program_.scaleHeight(t + 2, 1);
        program_.scaleWidth(t + 2, 1);
    }

    static QString pictureDescription(int number) { return Words::tr("Question %1").arg(number); }

    void addAnswerKey()
    {
        appendSlide();
        program_.addTextBox(0, 0, 300, 100, LongLines::Wrap);
        program_.setFirstShapeText(Words::tr("Answer Key"));
        int answer = 0;
        int line = 1;
        for (int i = 1; i <= input_.drawPool.upperBound(); ++i) {
            const DrawnQuestion& record = input_.drawPool(i);
            if (!record.Selected) {
                continue;
            }
            ++answer;
            ++line;
            // Where it wrapped, an answer would be printed over the next one.
            program_.addTextBox(0, answerLineHeight * (line - 1), 100, 100, LongLines::RunOn);
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
    /// Of the question whose slide is being made; 0 outside of those slides.
    int poolIndex_ = 0;
    int number_ = 0;
    bool firstPictureReached_ = false;
    bool addingPicture_ = false;
};

/// The failure that led here is the one worth telling about.
void finishQuietly(PresentationProgram& program)
{
    try {
        program.finish();
    } catch (const Error&) {
    } catch (const Cancelled&) {
    }
}

} // namespace

BuildOutcome BuildPresentation(PresentationProgram& program, const BuildInput& input,
                               const BuildProgress& progress)
{
    BuildOutcome outcome;
    try {
        program.addPresentation();
        Build build(program, input, progress);
        try {
            build.run();
        } catch (const Cancelled&) {
            throw;
        } catch (const std::exception& failure) {
            if (!build.firstPictureReached()) {
                finishQuietly(program);
                throw;
            }
            outcome = build.abortedBy(failure);
        }
        program.finish();
        outcome.notice = program.notice();
    } catch (const Cancelled&) {
        outcome.end = BuildOutcome::End::Cancelled;
    } catch (const Error& error) {
        if (outcome.end != BuildOutcome::End::Aborted) {
            throw;
        }
        // The abort is told of anyway; this comes on top of it.
        outcome.notice = error.message();
    }
    return outcome;
}

} // namespace varnholt
