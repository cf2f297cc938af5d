#include "paper/PaperLayout.h"

#include <QCoreApplication>
#include <QStringList>

#include <algorithm>

namespace varnholt {

namespace {

constexpr double margin = 45;
constexpr double footerHeight = 22;
constexpr double mostScale = 1.5;
constexpr double textSize = 11;
/// The number of a question is larger than its text.
constexpr double numberFactor = 1.3;
constexpr double gap = 10;
constexpr int choices = 5;
/// Narrower than this a column of the key could not show an answer.
constexpr double leastKeyColumn = 54;

class Layouter
{
    Q_DECLARE_TR_FUNCTIONS(PaperLayout)

public:
    Layouter(const PaperTest& test, const PaperOptions& options,
             const std::vector<PaperPictureSize>& sizes, const TextWidth& widthOf)
        : test_(test)
        , options_(options)
        , sizes_(sizes)
        , widthOf_(widthOf)
        , scale_(options.largePrint ? 1.5 : 1)
        , perPage_(options.largePrint ? 1 : options.questionsPerPage)
    {
        const bool letter = options.paper == PaperOptions::Paper::Letter;
        layout_.width = letter ? 612 : 595.276;
        layout_.height = letter ? 792 : 841.89;
        numberWidth_ =
            widthOf_(numbered(test.questions.size()) + u' ', size() * numberFactor, true);
    }

    PaperLayout run()
    {
        for (std::size_t version = 0; version < test_.versions.size(); ++version) {
            const std::size_t firstPage = layout_.pages.size();
            startPage();
            addHeading(version);
            addQuestions(test_.versions[version]);
            addFooters(version, firstPage);
        }
        if (options_.key == PaperOptions::Key::OwnPage && !test_.questions.empty()) {
            addKey();
        }
        return std::move(layout_);
    }

private:
    static QString numbered(std::size_t number) { return QString::number(number) + u'.'; }
    static QString letterOf(std::size_t version)
    {
        return QString(QChar(static_cast<char16_t>(u'A' + version)));
    }
    [[nodiscard]] double size() const { return textSize * scale_; }
    [[nodiscard]] double lineHeight() const { return size() * 1.35; }
    [[nodiscard]] double right() const { return layout_.width - margin; }
    [[nodiscard]] double bottom() const { return layout_.height - margin - footerHeight; }

    void startPage()
    {
        layout_.pages.emplace_back();
        top_ = margin;
    }
    PaperLayout::Page& page() { return layout_.pages.back(); }

    void addText(double left, double baseline, const QString& text, bool bold = false,
                 double factor = 1)
    {
        page().texts.push_back({left, baseline, size() * factor, bold, false, text});
    }

    /// As much of a text as there is room for.
    [[nodiscard]] QString fitted(const QString& text, double width, bool bold = false,
                                 double factor = 1) const
    {
        const auto fits = [&](const QString& candidate) {
            return widthOf_(candidate, size() * factor, bold) <= width;
        };
        const QString line = text.simplified();
        if (fits(line)) {
            return line;
        }
        qsizetype fitting = 0;
        qsizetype tooLong = line.size();
        while (tooLong - fitting > 1) {
            const qsizetype middle = (fitting + tooLong) / 2;
            (fits(line.left(middle) + u'…') ? fitting : tooLong) = middle;
        }
        return line.left(fitting).trimmed() + u'…';
    }

    void addHeading(std::size_t version)
    {
        const QString letter =
            test_.versions.size() > 1 ? tr("Version %1").arg(letterOf(version)) : QString();
        const double letterWidth = widthOf_(letter, size() * 1.3, true);
        const double baseline = top_ + size() * 1.5;
        const double titleWidth = right() - margin - letterWidth - gap;
        double factor = 1.5;
        while (factor > 1 && widthOf_(test_.title, size() * factor, true) > titleWidth) {
            factor -= 0.25;
        }
        addText(margin, baseline, fitted(test_.title, titleWidth, true, factor), true, factor);
        if (!letter.isEmpty()) {
            addText(right() - letterWidth, baseline, letter, true, 1.3);
        }
        QStringList facts;
        if (!test_.className.isEmpty()) {
            facts.append(tr("Class: %1").arg(test_.className));
        }
        if (!test_.date.isEmpty()) {
            facts.append(tr("Date: %1").arg(test_.date));
        }
        double line = baseline + lineHeight() * 1.8;
        const QString factLine = facts.join(u" · "_qs);
        addText(margin, line, fitted(factLine, right() - margin));
        double nameLeft = margin + (right() - margin) * 0.5;
        if (widthOf_(factLine, size(), false) > nameLeft - margin - gap) {
            nameLeft = margin;
            line += lineHeight() * 1.5;
        }
        const QString name = tr("Name:");
        addText(nameLeft, line, name);
        const double nameEnd = nameLeft + widthOf_(name, size(), false) + gap / 2;
        page().outlines.push_back({nameEnd, line + 2, right() - nameEnd, 0});
        page().outlines.push_back({margin, line + lineHeight() * 0.8, right() - margin, 0});
        top_ = line + lineHeight() * 0.8 + gap;
    }

    /// Height of everything below the picture.
    [[nodiscard]] double answerHeight() const
    {
        double height = options_.key == PaperOptions::Key::AfterEach ? gap / 2 + lineHeight() : 0;
        switch (options_.answerSpace) {
        case PaperOptions::AnswerSpace::None:
            return height;
        case PaperOptions::AnswerSpace::Line:
            return height + 30 * scale_;
        case PaperOptions::AnswerSpace::Box:
            return height + gap + 62 * scale_;
        case PaperOptions::AnswerSpace::Choices:
            return height + gap + 16 * scale_;
        }
        return height;
    }

    [[nodiscard]] double topicHeight() const { return options_.topicLines ? lineHeight() : 0; }

    /// The picture at the largest scale that the room and `most` allow; a line's height for the
    /// words in place of a missing one.
    [[nodiscard]] PaperPictureSize fittedPicture(std::size_t question, double width, double height,
                                                 double most) const
    {
        const PaperPictureSize own = sizes_.at(question);
        if (own.width <= 0 || own.height <= 0) {
            return {0, lineHeight() * 2};
        }
        const double scale =
            std::max(0.0, std::min({most, width / own.width, height / own.height}));
        return {own.width * scale, own.height * scale};
    }

    void addQuestions(const std::vector<std::size_t>& order)
    {
        const int columns = perPage_ == 4 ? 2 : 1;
        const int rows = perPage_ > 1 ? 2 : 1;
        for (std::size_t i = 0; i < order.size(); ++i) {
            const std::size_t question = order[i];
            if (perPage_ == 0) {
                addNextBlock(i + 1, question);
                continue;
            }
            const int slot = static_cast<int>(i) % perPage_;
            if (slot == 0 && i > 0) {
                startPage();
            }
            const double width = (right() - margin - gap * 2 * (columns - 1)) / columns;
            const double height = (bottom() - top_ - gap * 2 * (rows - 1)) / rows;
            const int row = slot / columns;
            const PaperLayout::Rectangle cell{margin + (width + gap * 2) * (slot % columns),
                                              top_ + (height + gap * 2) * row, width, height};
            addBlock(i + 1, question, cell,
                     fittedPicture(question, width - numberWidth_,
                                   height - topicHeight() - answerHeight(), mostScale));
        }
    }

    /// Below the one before where there is room, else on a page of its own.
    void addNextBlock(std::size_t number, std::size_t question)
    {
        const double width = right() - margin;
        const double around = topicHeight() + answerHeight();
        PaperPictureSize picture =
            fittedPicture(question, width - numberWidth_, bottom() - margin - around, 1);
        if (top_ + around + picture.height > bottom() && number > 1) {
            startPage();
        }
        // Below a heading there is less room than on a page without one.
        picture = fittedPicture(question, width - numberWidth_, bottom() - top_ - around, 1);
        const double height = around + std::max(picture.height, lineHeight());
        addBlock(number, question, {margin, top_, width, height}, picture);
        top_ += height + gap * 1.6;
    }

    void addBlock(std::size_t number, std::size_t question, const PaperLayout::Rectangle& cell,
                  const PaperPictureSize& picture)
    {
        const PaperTest::Question& asked = test_.questions.at(question);
        const double left = cell.left + numberWidth_;
        const double width = cell.width - numberWidth_;
        addText(cell.left, cell.top + size(), numbered(number), true, numberFactor);
        if (options_.topicLines) {
            addText(left, cell.top + size(), fitted(asked.topicText, width, false, 0.9), false,
                    0.9);
        }
        const double top = cell.top + topicHeight();
        if (picture.width > 0) {
            // Behind the picture, for those who cannot see it.
            const double hiddenSize = std::min(8.0, picture.height);
            page().texts.push_back({left, top + picture.height, hiddenSize, false, true,
                                    asked.topicText.isEmpty()
                                        ? tr("Picture of question %1").arg(number)
                                        : tr("Picture of question %1: %2")
                                              .arg(QString::number(number), asked.topicText)});
            page().pictures.push_back({question, {left, top, picture.width, picture.height}});
        } else {
            addText(left, top + size(),
                    fitted(tr("The picture of this question is missing or damaged."), width));
        }
        const double below = top + std::max(picture.height, lineHeight());
        addAnswerSpace(left, below, width, cell.top + cell.height);
        if (options_.key == PaperOptions::Key::AfterEach) {
            const double base = below + answerHeight() - lineHeight() * 0.3;
            addText(left, base, fitted(tr("Answer: %1").arg(asked.answer), width));
        }
    }

    void addAnswerSpace(double left, double top, double width, double cellBottom)
    {
        switch (options_.answerSpace) {
        case PaperOptions::AnswerSpace::None:
            return;
        case PaperOptions::AnswerSpace::Line:
            page().outlines.push_back({left, top + 26 * scale_, width, 0});
            return;
        case PaperOptions::AnswerSpace::Box: {
            // Room that a cell has left is room to write in.
            const double least = 62 * scale_;
            const double more =
                options_.key == PaperOptions::Key::AfterEach ? 0 : cellBottom - top - gap;
            page().outlines.push_back({left, top + gap, width, std::clamp(more, least, 3 * least)});
            return;
        }
        case PaperOptions::AnswerSpace::Choices:
            const double box = 13 * scale_;
            const double pitch = std::min(width / choices, 62 * scale_);
            for (int i = 0; i < choices; ++i) {
                const double at = left + pitch * i;
                page().outlines.push_back({at, top + gap, box, box});
                addText(at + box + 4 * scale_, top + gap + size(),
                        letterOf(static_cast<std::size_t>(i)));
            }
        }
    }

    void addFooters(std::size_t version, std::size_t firstPage)
    {
        const std::size_t count = layout_.pages.size() - firstPage;
        for (std::size_t i = 0; i < count; ++i) {
            const QString text =
                test_.versions.size() > 1
                    ? tr("Version %1, page %2 of %3").arg(letterOf(version)).arg(i + 1).arg(count)
                    : tr("Page %1 of %2").arg(i + 1).arg(count);
            const double width = widthOf_(text, size() * 0.8, false);
            layout_.pages[firstPage + i].texts.push_back({(layout_.width - width) / 2,
                                                          layout_.height - margin, size() * 0.8,
                                                          false, false, text});
        }
    }

    /// A row for each question and a column for each version; side by side in blocks where one
    /// block is longer than the page.
    void addKey()
    {
        const std::size_t count = test_.questions.size();
        const auto versions = static_cast<double>(test_.versions.size());
        const double width = right() - margin;
        std::size_t next = 0;
        while (next < count) {
            startPage();
            addText(margin, top_ + size() * 1.5, tr("Answer Key"), true, 1.5);
            addText(margin, top_ + size() * 1.5 + lineHeight() * 1.3, fitted(test_.title, width));
            const double tableTop = top_ + size() * 1.5 + lineHeight() * 2.8;
            const auto rows = std::max<std::size_t>(
                1, static_cast<std::size_t>((bottom() - tableTop) / lineHeight()) - 1);
            const auto most = std::max<std::size_t>(
                1, static_cast<std::size_t>(
                       (width + gap) / (numberWidth_ + versions * leastKeyColumn * scale_ + gap)));
            const std::size_t blocks = std::min(most, (count - next + rows - 1) / rows);
            const double blockWidth = (width + gap) / static_cast<double>(blocks) - gap;
            for (std::size_t block = 0; block < blocks && next < count; ++block) {
                const double left = margin + (blockWidth + gap) * static_cast<double>(block);
                const std::size_t end = std::min(count, next + rows);
                addKeyBlock(left, tableTop, blockWidth, next, end);
                next = end;
            }
        }
    }

    void addKeyBlock(double left, double top, double width, std::size_t first, std::size_t end)
    {
        const double column = (width - numberWidth_) / static_cast<double>(test_.versions.size());
        for (std::size_t version = 0; version < test_.versions.size(); ++version) {
            const double at = left + numberWidth_ + column * static_cast<double>(version);
            if (test_.versions.size() > 1) {
                addText(at, top, letterOf(version), true);
            }
            double baseline = top;
            for (std::size_t i = first; i < end; ++i) {
                baseline += lineHeight();
                const std::size_t question = test_.versions[version].at(i);
                addText(at, baseline, fitted(test_.questions.at(question).answer, column - 6));
            }
        }
        double baseline = top;
        for (std::size_t i = first; i < end; ++i) {
            baseline += lineHeight();
            addText(left, baseline, numbered(i + 1), true);
        }
    }

    const PaperTest& test_;
    const PaperOptions& options_;
    const std::vector<PaperPictureSize>& sizes_;
    const TextWidth& widthOf_;
    const double scale_;
    const int perPage_;
    /// Of the longest number of a question, with the space behind it.
    double numberWidth_ = 0;
    PaperLayout layout_;
    /// Where the next thing on the page begins.
    double top_ = 0;
};

} // namespace

PaperLayout LayOutPaper(const PaperTest& test, const PaperOptions& options,
                        const std::vector<PaperPictureSize>& sizes, const TextWidth& widthOf)
{
    return Layouter(test, options, sizes, widthOf).run();
}

} // namespace varnholt
