// Frames as a value, and which are suggested for pages drawn as rows of letters.
#include "pdf/PdfFrames.h"
#include "pdf/suggest_frames.h"

#include <QPainter>

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>

namespace varnholt::test {

namespace {

const std::vector<QSizeF> pages{{595, 842}, {842, 595}, {595, 842}};

void doSomething(PdfFrames& frames, std::mt19937& random)
{
    const auto number = [&](double from, double to) {
        return std::uniform_real_distribution<>(from, to)(random);
    };
    const QRectF area(number(-50, 800), number(-50, 800), number(-300, 600), number(-300, 600));
    switch (random() % 7) {
    case 0:
    case 1:
        return frames.add(static_cast<int>(random() % pages.size()), area);
    case 2:
        return frames.setArea(area);
    case 3:
        return frames.drop();
    case 4:
        return frames.join();
    case 5:
        return frames.split(area.center().y());
    default:
        return frames.select(static_cast<int>(number(-1, 10)));
    }
}

} // namespace

TEST(PdfFrames, StayOnTheirPagesInOrderAndEveryStepCanBeTakenBack)
{
    std::mt19937 random(11);
    for (int run = 0; run < 300; ++run) {
        PdfFrames frames(pages);
        std::vector<std::vector<PdfFrame>> history{{}};
        for (int step = 0; step < 40; ++step) {
            const std::vector<PdfFrame> before = frames.all();
            doSomething(frames, random);
            if (frames.all() != before) {
                history.push_back(frames.all());
            }
            std::size_t inPictures = 0;
            for (const std::vector<PdfFrame>& picture : frames.pictures()) {
                inPictures += picture.size();
                EXPECT_EQ(std::count_if(picture.begin() + 1, picture.end(),
                                        [](const PdfFrame& each) { return !each.continues; }),
                          0);
            }
            ASSERT_EQ(inPictures, frames.all().size());
            for (std::size_t i = 0; i < frames.all().size(); ++i) {
                const PdfFrame& each = frames.all()[i];
                const QSizeF page = pages[static_cast<std::size_t>(each.page)];
                ASSERT_TRUE(
                    QRectF(QPointF(), page).adjusted(-1e-9, -1e-9, 1e-9, 1e-9).contains(each.area));
                ASSERT_GE(std::min(each.area.width(), each.area.height()), smallestFrame - 1e-9);
                if (i > 0) {
                    const PdfFrame& last = frames.all()[i - 1];
                    ASSERT_LE(std::pair(last.page, last.area.top()),
                              std::pair(each.page, each.area.top()));
                }
            }
        }
        const std::vector<PdfFrame> end = frames.all();
        while (frames.canUndo()) {
            ASSERT_EQ(frames.all(), history.back());
            history.pop_back();
            while (frames.canUndo() && frames.all() != history.back()) {
                frames.undo();
            }
        }
        ASSERT_TRUE(frames.all().empty());
        for (int step = 0; step < 40; ++step) {
            frames.redo();
        }
        ASSERT_EQ(frames.all(), end);
    }
}

TEST(PdfFrames, AreJoinedAndSplit)
{
    PdfFrames frames(pages);
    frames.add(0, {10, 10, 100, 50});
    frames.add(0, {50, 100, 100, 50});
    frames.join();
    ASSERT_EQ(frames.all(), (std::vector<PdfFrame>{{0, {10, 10, 140, 140}}}));
    frames.split(12);
    EXPECT_EQ(frames.all().size(), 1) << "a part would be too small";
    frames.split(60);
    EXPECT_EQ(frames.all(),
              (std::vector<PdfFrame>{{0, {10, 10, 140, 50}}, {0, {10, 60, 140, 90}}}));
    EXPECT_EQ(frames.selected(), 1);
    frames.add(1, {10, 10, 100, 50});
    frames.join();
    frames.add(2, {10, 10, 100, 50});
    EXPECT_EQ(frames.pictures().size(), 3);
    frames.select(1);
    frames.drop();
    EXPECT_EQ(frames.pictures().size(), 3) << "what is left of a picture joined another";
    frames.forgetFirstPicture();
    EXPECT_EQ(frames.all().size(), 2);
}

namespace {

constexpr double scale = 100.0 / 72;

/// A page of rows 14 points apart; the letter before "|" says which question a row is of, "-" none.
/// A "#" is part of a picture, without white rows.
struct Drawn
{
    pdf::SeenPage seen;
    std::multimap<char, QRectF> ink;
};

Drawn draw(const QStringList& rows, bool scanned)
{
    QImage image((pages[0] * scale).toSize(), QImage::Format_Grayscale8);
    image.fill(scanned ? 225 : 255);
    QPainter painter(&image);
    painter.scale(scale, scale);
    Drawn result;
    for (int row = 0; row < rows.size(); ++row) {
        const QString text = rows[row].section(u'|', 1);
        QRectF whole;
        for (int column = 0; column < text.size(); ++column) {
            if (!text[column].isSpace()) {
                const bool picture = text[column] == u'#';
                const QRectF letter(60 + 6 * column, 30 + 14 * row, 5, picture ? 14 : 9);
                painter.fillRect(letter, Qt::black);
                whole |= letter;
            }
        }
        if (whole.isEmpty()) {
            continue;
        }
        result.ink.emplace(rows[row][0].toLatin1(), whole.adjusted(1, 1, -1, -1));
        if (!scanned) {
            result.seen.starts.push_back({text.trimmed().left(16), whole});
        }
    }
    painter.end();
    result.seen.rows = pdf::LookAtPage(image, scale);
    return result;
}

QStringList paged(QStringList rows, const QString& head, const QString& foot)
{
    rows = QStringList{head, {}, {}} + rows;
    rows.resize(55);
    return rows << foot;
}

} // namespace

TEST(SuggestedFrames, HoldOneWholeQuestionEach)
{
    const QString head = QStringLiteral("-|3. Test in class 7b");
    struct Case
    {
        const char* name;
        std::vector<QStringList> pages;
        bool scannedToo;
    };
    const auto rows = [](const char* text) { return QString::fromLatin1(text).split(u'/'); };
    for (const Case& each : std::initializer_list<Case>{
             {"blank lines", {rows("a|1. aaa aaaaaa/a|aaaa//b|2. bbb/b|bbb//c|3. ccc")}, true},
             {"indented, nothing between",
              {rows("a|1. aaa aaaa/a|   aaaa/a|   1. aaa/a|   2. aaa/b|2. bbbb/b|   bb/c|3. ccc/"
                    "c|   cc/d|4. ddd/d|   dddd/e|5. eeee/e|   eee/f|6. fff/f|   ff")},
              true},
             {"nothing between and not indented",
              {rows("a|1. aaa aaaa/a|aaaa/b|2. bbbb/b|bbbb/c|3. cccc")},
              false},
             {"words, title, parts at the edge",
              {rows("-|  Mathematics//-|Answer all//a|Question 1 aa//a|1) aaa//a|2) aaaa//a|3) "
                    "aaaa//b|Question 2/b|bbb//c|Question 3/c|cc")},
              false},
             {"a picture and a heading",
              {rows("a|1. aaa aaaaa/a|   ####/a|   ####/a|   aaa//b|2. bbbb/b|   bbb//-|Section "
                    "B//c|3. ccc/c|   ccccc")},
              false},
             {"a picture that touches the next question",
              {rows("a|1. aaa aaaaa/a|   ####/b|2. bbbb bbbbbb/b|bbb")},
              false},
             {"numbers alone",
              {rows("a|8   aaa aaaa/a|    (a) aa//b|9   bbbb/b|    bbb//c|10  cccc/c|    cc//d|11  "
                    "dddd")},
              true},
             {"heads and feet, a question across pages",
              {paged(rows("a|1. aaaa/a|   aaa//b|2. bbbbbb/b|   bbbb"), head,
                     QStringLiteral("-|              1")),
               paged(rows("b|   bbb bb bbbb//c|3. cccc/c|   cc"), head,
                     QStringLiteral("-|              2")),
               paged(rows("d|4. ddd/d|   ddd"), head, QStringLiteral("-|              3"))},
              true}}) {
        for (const bool scanned : {false, true}) {
            if (scanned && !each.scannedToo) {
                continue;
            }
            SCOPED_TRACE(std::string(each.name) + (scanned ? ", scanned" : ""));
            std::vector<Drawn> drawn;
            std::vector<pdf::SeenPage> seen;
            std::set<char> questions;
            for (const QStringList& page : each.pages) {
                drawn.push_back(draw(page, scanned));
                seen.push_back(drawn.back().seen);
                for (const auto& [question, area] : drawn.back().ink) {
                    questions.insert(question);
                }
            }
            questions.erase('-');
            PdfFrames frames(std::vector<QSizeF>(seen.size(), pages[0]));
            frames.replaceAll(pdf::SuggestFrames(seen));
            EXPECT_EQ(frames.pictures().size(), questions.size());
            for (const std::vector<PdfFrame>& picture : frames.pictures()) {
                std::set<char> inside;
                std::size_t lines = 0;
                for (const PdfFrame& frame : picture) {
                    for (const auto& [question, area] :
                         drawn[static_cast<std::size_t>(frame.page)].ink) {
                        if (frame.area.intersects(area)) {
                            EXPECT_TRUE(frame.area.contains(area)) << question << " is cut";
                            inside.insert(question);
                            ++lines;
                        }
                    }
                }
                ASSERT_EQ(inside.size(), 1) << std::string(inside.begin(), inside.end());
                std::size_t all = 0;
                for (const Drawn& page : drawn) {
                    all += page.ink.count(*inside.begin());
                }
                EXPECT_EQ(lines, all) << *inside.begin();
                EXPECT_EQ(questions.erase(*inside.begin()), 1);
            }
        }
    }
}

TEST(SuggestedFrames, AreNoneOnEmptyPages)
{
    EXPECT_TRUE(pdf::SuggestFrames({}).empty());
    EXPECT_TRUE(pdf::SuggestFrames({draw({}, true).seen, pdf::SeenPage()}).empty());
    const pdf::PageRows page =
        draw({QStringLiteral("a|aa"), {}, {}, QStringLiteral("a|aaa")}, false).seen.rows;
    EXPECT_NEAR(pdf::WidestGap(page, 0, 842), (39 + 72) / 2.0, 1);
    EXPECT_LT(pdf::WidestGap(page, 60, 842), 0);
}

} // namespace varnholt::test
