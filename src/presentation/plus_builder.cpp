#include "presentation/deck_build.h"
#include "presentation/presentation_extras.h"

#include "pictures/picture_info.h"

#include <QCoreApplication>
#include <QRectF>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <optional>

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(Presentation)
};

// Where pictures may stand, in points.
constexpr double pictureLeft = 2;
constexpr double pictureRight = 958;
constexpr double pictureBottom = 538;
constexpr double slideWidth = 960;
/// Pictures larger than that show their pixels.
constexpr double mostEnlarged = 2;

constexpr double titleSize = 24;
constexpr double smallTitleSize = 18;
constexpr qsizetype longTitle = 65;
/// Between a picture and the answer under it.
constexpr double gap = 4;
constexpr double boxMargins = 12;

struct AnswerBox
{
    double textSize = 0;
    double height = 0;
};

/// As large as the text can be read across a room, and smaller for long ones: a guess on the
/// generous side, since nobody here knows the fonts.
AnswerBox answerBox(const QString& text)
{
    constexpr double highest = 110;
    constexpr double widthOfSize = 0.58;
    constexpr double lineOfSize = 1.2;
    AnswerBox box;
    for (const double size : {32.0, 24.0, 18.0, 14.0}) {
        double lines = 0;
        for (const QString& line : text.split(u'\n')) {
            const double width = double(line.size()) * size * widthOfSize;
            lines +=
                std::max(1.0, std::ceil(width / (pictureRight - pictureLeft - 2 * boxMargins)));
        }
        box = {size, lines * size * lineOfSize + boxMargins};
        if (box.height <= highest) {
            return box;
        }
    }
    box.height = highest;
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
            addTitle(pictureTop_, title.size() > longTitle ? smallTitleSize : titleSize, title);
        } else {
            if (deck().topicLine) {
                addText({0, 0, 1000, 100}, LongLines::Wrap, slide.topic);
            }
            addText({0, deck().topicLine ? 40.0 : 0.0, 100, 100}, LongLines::Wrap,
                    u'#' + QString::number(slide.number));
        }
        const bool answers = slide.kind == DeckSlide::Kind::Answer;
        const AnswerBox box = answerBox(answerText(slide));
        addPicture(slide, answers ? pictureBottom - box.height - gap : pictureBottom, answers);
        if (answers) {
            addText(
                {pictureLeft, pictureBottom - box.height, pictureRight - pictureLeft, box.height},
                LongLines::Wrap, answerText(slide));
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
            addTitle(columns ? 40 : 24, columns ? titleSize : smallTitleSize, slide.heading);
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
