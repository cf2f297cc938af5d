#include "presentation/deck.h"

#include "presentation/slide_builder.h"
#include "presentation/slide_space.h"
#include "presentation/slide_text.h"

#include <QCoreApplication>

#include <algorithm>

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(Presentation)
};

constexpr int answersPerSlide = 25;
constexpr double answerLineHeight = 20;

constexpr double columnTextSize = 18;
constexpr double firstColumnLine = 44;
constexpr double columnLineHeight = 24;
constexpr std::size_t linesInColumn = 20;
constexpr int mostColumns = 6;

DeckSlide keySlide(const QString& heading)
{
    DeckSlide slide;
    slide.kind = DeckSlide::Kind::Key;
    slide.heading = heading;
    return slide;
}

/// "1) B"
QString keyText(int number, const QString& answer)
{
    return QString::number(number) + QStringLiteral(") ") + answer;
}

QString continued(int page)
{
    return Words::tr("Answer Key, page %1").arg(page);
}

class DeckMaker
{
public:
    explicit DeckMaker(const BuildInput& input)
        : input_(input)
    {}

    Deck make()
    {
        deck_.name = input_.name;
        deck_.topicLine = input_.topicLine;
        deck_.wishes = input_.wishes;
        int number = 0;
        for (int i = 1; i <= input_.drawPool.upperBound(); ++i) {
            if (input_.drawPool(i).Selected) {
                addQuestion(i, ++number);
            }
        }
        if (input_.answerKey) {
            input_.wishes.keyColumns ? addKeyInColumns() : addKey();
        }
        return std::move(deck_);
    }

private:
    void addQuestion(int poolIndex, int number)
    {
        const QuestionRecord& record = input_.drawPool(poolIndex);
        DeckSlide slide;
        slide.number = number;
        slide.poolIndex = poolIndex;
        if (input_.topicLine || input_.wishes.titles) {
            slide.topic = input_.topicText(record);
        }
        slide.answer = record.Answer;
        slide.picturePath = input_.picturePath(record);
        deck_.slides.push_back(slide);
        if (input_.wishes.answersAfterEach) {
            slide.kind = DeckSlide::Kind::Answer;
            deck_.slides.push_back(std::move(slide));
        }
    }

    void addKey()
    {
        deck_.slides.push_back(keySlide(Words::tr("Answer Key")));
        int page = 1;
        int answer = 0;
        for (int i = 1; i <= input_.drawPool.upperBound(); ++i) {
            const DrawnQuestion& record = input_.drawPool(i);
            if (!record.Selected) {
                continue;
            }
            DeckSlide& slide = deck_.slides.back();
            const auto above = slide.lines.size() + (slide.heading.isEmpty() ? 0 : 1);
            KeyLine& line = slide.lines.emplace_back();
            line.text = keyText(++answer, record.Answer);
            line.top = answerLineHeight * static_cast<double>(above);
            if (i % answersPerSlide == 0) {
                ++page;
                deck_.slides.push_back(
                    keySlide(input_.wishes.titles ? continued(page) : QString()));
            }
        }
    }

    void addKeyInColumns()
    {
        QStringList answers;
        double widest = 1;
        for (const DrawnQuestion& record : input_.drawPool) {
            if (record.Selected) {
                const QStringList lines =
                    slideParagraphs(keyText(static_cast<int>(answers.size()) + 1, record.Answer));
                for (const QString& line : lines) {
                    widest = std::max(widest, GuessedWidth(line, columnTextSize));
                }
                answers.append(lines.join(u'\n'));
            }
        }
        const int columns = std::clamp(int(slideWidth / (widest + boxMargins)), 1, mostColumns);
        const double width = slideWidth / columns;
        deck_.slides.push_back(keySlide(Words::tr("Answer Key")));
        int page = 1;
        int column = 0;
        std::size_t row = 0;
        for (const QString& answer : answers) {
            const std::vector<QStringView> lines = GuessedLines(answer, columnTextSize, width);
            // What is longer than a column goes on in the next one.
            for (std::size_t first = 0; first < lines.size(); first += linesInColumn) {
                const std::size_t rows = std::min(lines.size() - first, linesInColumn);
                if (row + rows > linesInColumn) {
                    row = 0;
                    if (++column == columns) {
                        column = 0;
                        deck_.slides.push_back(keySlide(continued(++page)));
                    }
                }
                KeyLine& line = deck_.slides.back().lines.emplace_back();
                line.text = QStringView(lines[first].begin(), lines[first + rows - 1].end())
                                .trimmed()
                                .toString();
                line.left = column * width;
                line.top = firstColumnLine + columnLineHeight * static_cast<double>(row);
                line.width = width;
                line.height = columnLineHeight * static_cast<double>(rows);
                line.wraps = rows > 1;
                row += rows;
            }
        }
    }

    const BuildInput& input_;
    Deck deck_;
};

} // namespace

Deck MakeDeck(const BuildInput& input)
{
    return DeckMaker(input).make();
}

} // namespace varnholt
