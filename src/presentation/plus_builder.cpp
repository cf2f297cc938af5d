#include "presentation/deck_build.h"
#include "presentation/presentation_extras.h"
#include "presentation/slide_space.h"
#include "presentation/slide_text.h"

#include "pictures/picture_info.h"

#include <QCoreApplication>
#include <QRectF>
#include <QStringList>

#include <algorithm>
#include <optional>
#include <span>

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(Presentation)
};

// Where pictures may stand, in points.
constexpr double pictureLeft = 2;
constexpr double pictureRight = slideWidth - 2;
constexpr double pictureBottom = slideHeight - 2;
/// Pictures larger than that show their pixels.
constexpr double mostEnlarged = 2;
/// Between a picture and the answer under it.
constexpr double gap = 4;

/// A size of an answer's text, and how high its box may become for it.
struct AnswerStep
{
    double textSize;
    double highest;
};

/// As large as the text can be read across a room. A long one is smaller, and then takes more of
/// the picture's room.
constexpr AnswerStep answerSteps[] = {{32, 110}, {24, 110}, {18, 110}, {14, 110},
                                      {14, 200}, {12, 260}, {10, 300}};
/// Where nothing but the usual size is to be had.
constexpr AnswerStep plainAnswerStep[] = {{18, 300}};

struct AnswerBox
{
    QString text;
    double textSize = 0;
    double height = 0;
};

/// What no slide could show is cut.
AnswerBox answerBox(const QString& answer, std::span<const AnswerStep> steps)
{
    const QString text = slideParagraphs(answer).join(u'\n');
    AnswerBox box;
    for (const AnswerStep& step : steps) {
        const auto lines = GuessedLines(text, step.textSize, pictureRight - pictureLeft);
        box = {text, step.textSize, BoxHeight(lines.size(), step.textSize)};
        if (box.height <= step.highest) {
            return box;
        }
        const auto most = std::size_t((step.highest - boxMargins) / (step.textSize * lineOfSize));
        box.text = text.left(lines[most - 1].end() - 1 - text.cbegin()).trimmed() + u'…';
        box.height = step.highest;
    }
    return box;
}

QString answerText(const DeckSlide& slide)
{
    return slide.answer.isEmpty() ? Words::tr("No answer is known.")
                                  : Words::tr("Answer: %1").arg(slide.answer);
}

/// "Question 3, Algebra - Sequences"
QString longName(const DeckSlide& slide)
{
    return slide.topic.isEmpty()
               ? Words::tr("Question %1").arg(slide.number)
               : Words::tr("Question %1, %2").arg(QString::number(slide.number), slide.topic);
}

class PlusBuild final : public DeckBuild
{
public:
    PlusBuild(PresentationProgram& program, const Deck& deck, const BuildProgress& progress)
        : DeckBuild(program, deck, progress)
        , titles_(deck.wishes.titles && extras())
        , pictureTop_(deck.topicLine ? 70 : 50)
    {}

private:
    void fill(const DeckSlide& slide) override
    {
        shapes_ = 0;
        slide.kind == DeckSlide::Kind::Key ? fillKey(slide) : fillQuestion(slide);
    }

    void addText(const QRectF& box, LongLines longLines, const QString& text)
    {
        program().addTextBox(box.left(), box.top(), box.width(), box.height(), longLines);
        program().setShapeText(++shapes_, text);
    }

    void addTitle(double height, double textSize, const QString& text)
    {
        extras()->addTitle(0, 0, slideWidth, height, textSize, text);
        ++shapes_;
    }

    void fillQuestion(const DeckSlide& slide)
    {
        if (titles_) {
            // A topic that the class is not to see stays in the picture's description.
            const QString title =
                deck().topicLine ? longName(slide) : Words::tr("Question %1").arg(slide.number);
            addTitle(pictureTop_, FittingSize(title, {24, 18, 14, 12}, {slideWidth, pictureTop_}),
                     title);
        } else {
            addNumber(slide);
        }
        const bool answers = slide.kind == DeckSlide::Kind::Answer;
        const AnswerBox box =
            answers
                ? answerBox(answerText(slide),
                            extras() ? std::span<const AnswerStep>(answerSteps) : plainAnswerStep)
                : AnswerBox();
        addPicture(slide, answers ? pictureBottom - box.height - gap : pictureBottom, answers);
        if (answers) {
            addText(
                {pictureLeft, pictureBottom - box.height, pictureRight - pictureLeft, box.height},
                LongLines::Wrap, box.text);
            if (extras()) {
                extras()->emphasise(shapes_, box.textSize);
            }
        }
        if (extras() && deck().wishes.answersInNotes) {
            extras()->setNotes(answerText(slide));
        }
        if (extras() && deck().wishes.moveOnSeconds > 0) {
            extras()->setAdvance(deck().wishes.moveOnSeconds);
        }
    }

    /// Where pictures are to be seen from afar the number is, too: on a plate, with the topic
    /// beside it.
    void addNumber(const DeckSlide& slide)
    {
        constexpr double textSize = 28;
        constexpr double plateHeight = 46;
        const QString number = u'#' + QString::number(slide.number);
        const bool large = extras() && deck().wishes.fitPictures;
        const double width = GuessedWidth(number, textSize) + boxMargins;
        if (deck().topicLine) {
            const double left = large ? pictureLeft + width + gap : 0;
            addText({left, large ? 8.0 : 0.0, large ? slideWidth - left : 1000, 100},
                    LongLines::Wrap, slide.topic);
        }
        if (large) {
            addText({pictureLeft, 2, width, plateHeight}, LongLines::Wrap, number);
            extras()->emphasise(shapes_, textSize);
        } else {
            addText({0, deck().topicLine ? 40.0 : 0.0, 100, 100}, LongLines::Wrap, number);
        }
    }

    /// Above `bottom` where that is asked for or, with the answer below it, needed: nothing of a
    /// question is covered.
    void addPicture(const DeckSlide& slide, double bottom, bool mustEnd)
    {
        const QString description =
            deck().wishes.titles ? longName(slide) : Words::tr("Question %1").arg(slide.number);
        const auto place = inPicture([&] {
            const std::optional<QRectF> found = placeOf(slide, bottom, mustEnd);
            const QRectF box =
                found.value_or(QRectF(pictureLeft, pictureTop_, PresentationProgram::ownSize,
                                      PresentationProgram::ownSize));
            program().addPicture(slide.picturePath, box.left(), box.top(), box.width(),
                                 box.height(), description);
            return found;
        });
        ++shapes_;
        if (!place) {
            program().scaleHeight(shapes_, 1);
            program().scaleWidth(shapes_, 1);
        }
    }

    /// Nothing for a picture that keeps its own size.
    std::optional<QRectF> placeOf(const DeckSlide& slide, double bottom, bool mustEnd)
    {
        const bool fits = deck().wishes.fitPictures;
        if (!fits && !mustEnd) {
            return {};
        }
        const QSizeF own = extras() ? extras()->pictureSize(slide.picturePath)
                                    : readPictureInfo(slide.picturePath).points;
        const double width = pictureRight - pictureLeft;
        const double height = bottom - pictureTop_;
        if (!fits && own.height() <= height) {
            return {};
        }
        const double scale =
            std::min({width / own.width(), height / own.height(), fits ? mostEnlarged : 1.0});
        const QSizeF size = own * scale;
        const double left = fits ? pictureLeft + (width - size.width()) / 2 : pictureLeft;
        return QRectF(QPointF(left, pictureTop_), size);
    }

    void fillKey(const DeckSlide& slide)
    {
        const bool columns = deck().wishes.keyColumns;
        if (titles_) {
            addTitle(columns ? 40 : 24, columns ? 24 : 18, slide.heading);
        } else if (!slide.heading.isEmpty()) {
            addText({0, 0, 300, 100}, LongLines::Wrap, slide.heading);
        }
        for (const KeyLine& line : slide.lines) {
            addText({line.left, line.top, line.width, line.height},
                    line.wraps ? LongLines::Wrap : LongLines::RunOn, line.text);
        }
    }

    const bool titles_;
    const double pictureTop_;
    /// On the current slide.
    int shapes_ = 0;
};

} // namespace

BuildOutcome BuildPlusPresentation(PresentationProgram& program, const Deck& deck,
                                   const BuildProgress& progress)
{
    return PlusBuild(program, deck, progress).run();
}

} // namespace varnholt
