#include "pdf/suggest_frames.h"

#include "pdf/question_numbers.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <span>

namespace varnholt::pdf {

namespace {

/// Of line heights: a white band from that on parts questions.
constexpr double bandBetweenQuestions = 1.2;
/// Of line heights: what starts no further from the edge starts at it.
constexpr double atTheEdge = 0.6;
constexpr double farFromTheEdge = 3;
/// Of the page's height: the zones of running heads and page numbers.
constexpr double headZone = 0.12;
/// Two lines of text and a rule.
constexpr std::size_t mostLinesApart = 3;
/// Of the page's width: a page number is no wider.
constexpr double numberWidth = 0.16;
/// Of all lines on a page: with fewer at its edge the others are indented.
constexpr double fewAtTheEdge = 0.45;
/// Room round the ink of a frame, in points.
constexpr double room = 4;

struct Line : Strip
{
    bool begins = false;
};

struct Page
{
    double width = 0;
    double height = 0;
    std::vector<Line> lines;
};

/// What a page's ink is measured by.
double lineHeightOf(const std::vector<Page>& pages)
{
    constexpr double lowest = 4;
    constexpr double highest = 30;
    constexpr double usual = 11;
    std::vector<double> heights;
    for (const Page& page : pages) {
        for (const Line& line : page.lines) {
            if (line.height() >= lowest && line.height() <= highest) {
                heights.push_back(line.height());
            }
        }
    }
    if (heights.empty()) {
        return usual;
    }
    // Lines without letters that reach down are lower than others of their size.
    const auto high = heights.begin() + static_cast<std::ptrdiff_t>(heights.size() * 3 / 5);
    std::nth_element(heights.begin(), high, heights.end());
    return *high;
}

double gapBefore(const Page& page, std::size_t line)
{
    return line == 0 ? page.height : page.lines[line].top - page.lines[line - 1].bottom;
}

/// The line stands above the first white band of the page, near its top, or below the last near its
/// bottom.
bool isApart(const Page& page, std::size_t line, double lineHeight)
{
    const Line& it = page.lines[line];
    const auto bandBefore = [&](std::size_t i) { return gapBefore(page, i) >= lineHeight; };
    if (it.bottom < page.height * headZone) {
        std::size_t next = 1;
        while (next < page.lines.size() && !bandBefore(next)) {
            ++next;
        }
        return line < next && next <= mostLinesApart && next < page.lines.size();
    }
    std::size_t first = page.lines.size() - 1;
    while (first > 0 && !bandBefore(first)) {
        --first;
    }
    return it.top > page.height * (1 - headZone) && line >= first && first > 0 &&
           page.lines.size() - first <= mostLinesApart;
}

bool isSamePlace(const Line& a, const Line& b, double width)
{
    constexpr double nearly = 1.5;
    // Page numbers of one to three digits, or the same words with another number.
    const bool across = std::abs(a.left - b.left) < nearly || std::abs(a.right - b.right) < nearly;
    return std::abs(a.bottom - b.bottom) < nearly && across &&
           std::abs((a.right - a.left) - (b.right - b.left)) < width * 0.03;
}

/// Heads and feet are alike on many pages; a question's number is never among them.
void dropHeadsAndFeet(std::vector<Page>& pages, const std::vector<NumberedStart>& numbers,
                      double lineHeight)
{
    const auto isNumbered = [&](std::size_t page, const Line& line) {
        return std::any_of(numbers.begin(), numbers.end(), [&](const NumberedStart& number) {
            return number.page == static_cast<int>(page) && line.top < number.place.center().y() &&
                   number.place.center().y() < line.bottom;
        });
    };
    std::vector<std::vector<bool>> drop;
    for (std::size_t p = 0; p < pages.size(); ++p) {
        const Page& page = pages[p];
        drop.emplace_back(page.lines.size(), false);
        for (std::size_t i = 0; i < page.lines.size(); ++i) {
            if (!isApart(page, i, lineHeight) || isNumbered(p, page.lines[i])) {
                continue;
            }
            std::size_t likeIt = 0;
            for (const Page& other : pages) {
                likeIt += std::any_of(other.lines.begin(), other.lines.end(),
                                      [&](const Line& each) {
                                          return isSamePlace(page.lines[i], each, page.width);
                                      })
                              ? 1
                              : 0;
            }
            const bool foot = page.lines[i].top > page.height * (1 - headZone);
            const bool narrow = page.lines[i].right - page.lines[i].left < page.width * numberWidth;
            drop[p][i] = (likeIt > 1 && likeIt * 5 >= pages.size() * 2) ||
                         (narrow && foot && i + 1 == page.lines.size());
        }
    }
    for (std::size_t p = 0; p < pages.size(); ++p) {
        std::size_t i = 0;
        std::erase_if(pages[p].lines, [&](const Line&) { return drop[p][i++]; });
    }
}

/// Lets a line begin where a number stands, parting it from what it touches.
void beginAt(Page& page, const PageRows& rows, const QRectF& number, double lineHeight)
{
    const auto at = std::find_if(page.lines.begin(), page.lines.end(), [&](const Line& line) {
        return line.bottom > number.center().y();
    });
    if (at == page.lines.end() || at->top > number.bottom()) {
        return;
    }
    if (number.top() - at->top > lineHeight * 0.6) {
        const auto rowAt = [&](double y) {
            return std::clamp<std::ptrdiff_t>(std::lround(y * rows.scale), 0,
                                              static_cast<std::ptrdiff_t>(rows.rows.size()) - 1);
        };
        const auto first = rows.rows.begin();
        const std::ptrdiff_t from = rowAt(number.top() - lineHeight * 0.5);
        // The emptiest row, the last of several.
        std::ptrdiff_t cut = from;
        for (std::ptrdiff_t y = from; y <= rowAt(number.top()); ++y) {
            cut = first[y].ink <= first[cut].ink ? y : cut;
        }
        const Strip whole = *at;
        std::vector<Line> parts;
        for (const auto& [top, bottom] :
             {std::pair(rowAt(whole.top), cut), std::pair(cut, rowAt(whole.bottom))}) {
            for (const Strip& part :
                 StripsOf(rows, static_cast<int>(top), static_cast<int>(bottom))) {
                parts.push_back({part});
            }
        }
        if (parts.size() < 2) {
            return;
        }
        parts.back().begins = true;
        page.lines.insert(page.lines.erase(at), parts.begin(), parts.end());
        return;
    }
    at->begins = true;
}

/// The x of the text's left edge on some pages: the leftmost that several lines share.
double leftEdge(std::span<const Page> pages, double lineHeight)
{
    std::vector<double> lefts;
    for (const Page& page : pages) {
        for (const Line& line : page.lines) {
            lefts.push_back(line.left);
        }
    }
    std::sort(lefts.begin(), lefts.end());
    for (std::size_t i = 0; i + 1 < lefts.size(); ++i) {
        if (lefts[i + 1] - lefts[i] < lineHeight * atTheEdge) {
            return lefts[i];
        }
    }
    return lefts.empty() ? 0 : lefts.front();
}

/// The white band that parts questions on a page: narrower where hardly any is as wide as usual.
double bandOf(const Page& page, double lineHeight)
{
    constexpr std::size_t manyLines = 12;
    constexpr double clearlyWider = 1.6;
    std::vector<double> gaps;
    for (std::size_t i = 1; i < page.lines.size(); ++i) {
        gaps.push_back(gapBefore(page, i));
    }
    const double usual = lineHeight * bandBetweenQuestions;
    const auto wide =
        std::count_if(gaps.begin(), gaps.end(), [&](double gap) { return gap >= usual; });
    if (gaps.size() < manyLines || wide > 1) {
        return usual;
    }
    const auto middle = gaps.begin() + static_cast<std::ptrdiff_t>(gaps.size() / 2);
    std::nth_element(gaps.begin(), middle, gaps.end());
    return *middle * clearlyWider;
}

void beginAtBands(Page& page, double commonEdge, double lineHeight)
{
    // A page may have been scanned askew of the others.
    const double own = leftEdge(std::span(&page, 1), lineHeight);
    const double edge =
        (std::abs(own - commonEdge) < lineHeight * farFromTheEdge ? commonEdge : own) +
        lineHeight * atTheEdge;
    const double band = bandOf(page, lineHeight);
    std::size_t atEdge = 0;
    for (const Line& line : page.lines) {
        atEdge += line.left <= edge ? 1 : 0;
    }
    const bool hanging =
        static_cast<double>(atEdge) < static_cast<double>(page.lines.size()) * fewAtTheEdge;
    for (std::size_t i = 0; i < page.lines.size(); ++i) {
        page.lines[i].begins =
            page.lines[i].left <= edge && (hanging || gapBefore(page, i) >= band);
    }
}

/// Whether what follows a number is indented in the whole paper.
bool isHanging(const std::vector<Page>& pages, double lineHeight)
{
    int indented = 0;
    int following = 0;
    for (const Page& page : pages) {
        std::optional<double> number;
        for (std::size_t i = 0; i < page.lines.size(); ++i) {
            const Line& line = page.lines[i];
            if (line.begins) {
                number = line.left;
            } else if (number && gapBefore(page, i) < lineHeight * bandBetweenQuestions) {
                ++following;
                indented += line.left > *number + lineHeight * atTheEdge ? 1 : 0;
            }
        }
    }
    return following > 0 && indented * 10 >= following * 9;
}

/// Headings between indented questions go: one or two lines at the edge, a band before them, a
/// number after them.
void dropHeadings(Page& page, double edge, double lineHeight)
{
    const auto isHeading = [&](const Line& line) {
        return !line.begins && line.left <= edge + lineHeight * atTheEdge &&
               line.height() < lineHeight * 1.8;
    };
    for (std::size_t i = page.lines.size(); i-- > 1;) {
        if (!page.lines[i].begins) {
            continue;
        }
        std::size_t first = i;
        while (first > 0 && i - first < 2 && isHeading(page.lines[first - 1])) {
            --first;
        }
        while (first < i && gapBefore(page, first) < lineHeight * bandBetweenQuestions) {
            ++first;
        }
        page.lines.erase(page.lines.begin() + static_cast<std::ptrdiff_t>(first),
                         page.lines.begin() + static_cast<std::ptrdiff_t>(i));
        i = first;
    }
}

QRectF frameRound(const Page& page, std::size_t from, std::size_t to)
{
    QRectF ink;
    for (std::size_t i = from; i < to; ++i) {
        const Line& line = page.lines[i];
        ink |= QRectF(QPointF(line.left, line.top), QPointF(line.right, line.bottom));
    }
    const double above = from == 0 ? room : std::min(room, gapBefore(page, from) / 2);
    const double below = to == page.lines.size() ? room : std::min(room, gapBefore(page, to) / 2);
    return ink.adjusted(-room, -above, room, below) & QRectF(0, 0, page.width, page.height);
}

} // namespace

std::vector<PdfFrame> SuggestFrames(const std::vector<SeenPage>& seen)
{
    std::vector<Page> pages;
    std::vector<std::vector<LineStart>> starts;
    for (const SeenPage& each : seen) {
        const auto rows = static_cast<int>(each.rows.rows.size());
        Page page{each.rows.width / each.rows.scale, rows / each.rows.scale, {}};
        for (const Strip& strip : StripsOf(each.rows, 0, rows)) {
            page.lines.push_back({strip});
        }
        pages.push_back(std::move(page));
        starts.push_back(each.starts);
    }
    const double lineHeight = lineHeightOf(pages);
    const std::vector<NumberedStart> numbers = FindQuestionNumbers(starts);
    dropHeadsAndFeet(pages, numbers, lineHeight);
    for (const NumberedStart& number : numbers) {
        const auto at = static_cast<std::size_t>(number.page);
        beginAt(pages[at], seen[at].rows, number.place, lineHeight);
    }
    if (numbers.empty()) {
        const double edge = leftEdge(pages, lineHeight);
        for (Page& page : pages) {
            beginAtBands(page, edge, lineHeight);
        }
    } else if (isHanging(pages, lineHeight)) {
        for (const NumberedStart& number : numbers) {
            dropHeadings(pages[static_cast<std::size_t>(number.page)], number.place.left(),
                         lineHeight);
        }
    }
    std::vector<PdfFrame> frames;
    for (std::size_t p = 0; p < pages.size(); ++p) {
        const std::vector<Line>& lines = pages[p].lines;
        for (std::size_t from = 0, to = 0; from < lines.size(); from = to) {
            to = from + 1;
            while (to < lines.size() && !lines[to].begins) {
                ++to;
            }
            if (lines[from].begins || !frames.empty() || numbers.empty()) {
                frames.push_back({static_cast<int>(p), frameRound(pages[p], from, to),
                                  !lines[from].begins && !frames.empty()});
            }
        }
    }
    return frames;
}

} // namespace varnholt::pdf
