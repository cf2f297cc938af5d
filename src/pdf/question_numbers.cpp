#include "pdf/question_numbers.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <tuple>

namespace varnholt::pdf {

namespace {

/// Numbers that belong together stand so close to one below the other, in points: 9 and 10 may be
/// set by their right edges.
constexpr double sameColumn = 9;
constexpr int highestNumber = 400;
/// A number that nothing follows, like "7 Find x", is one in such company alone.
constexpr std::size_t enoughBare = 3;

enum Style
{
    Word,
    Dot,
    Bracket,
    Brackets,
    Bare,
    Styles
};

struct Found
{
    Style style;
    int value;
    int page;
    QRectF place;
};

/// A line's number, as questions are numbered; 0 when it has none.
std::pair<Style, int> numberOf(const QString& text)
{
    static const QRegularExpression forms(
        QStringLiteral(
            "^(?:(?:Question|Problem|Exercise|Task|Aufgabe|Frage|Q|Ex|No|Nr)\\.?\\s*(\\d{1,3})\\b"
            "|(\\d{1,3})\\.(?!\\d)|(\\d{1,3})\\)|\\((\\d{1,3})\\)|(\\d{1,3})(?:\\s|$))"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = forms.match(text);
    for (int style = Word; match.hasMatch() && style < Styles; ++style) {
        if (match.hasCaptured(style + 1)) {
            return {static_cast<Style>(style), match.captured(style + 1).toInt()};
        }
    }
    return {Bare, 0};
}

using Chain = std::vector<Found>;

/// The longest of those that go up by one, in their order.
Chain longestChain(const Chain& found)
{
    struct Link
    {
        std::size_t length;
        std::ptrdiff_t before;
    };
    std::vector<Link> links;
    std::map<int, std::size_t> endingWith;
    std::size_t best = 0;
    for (std::size_t i = 0; i < found.size(); ++i) {
        const auto before = endingWith.find(found[i].value - 1);
        links.push_back(before == endingWith.end()
                            ? Link{1, -1}
                            : Link{links[before->second].length + 1,
                                   static_cast<std::ptrdiff_t>(before->second)});
        const auto known = endingWith.find(found[i].value);
        if (known == endingWith.end() || links[known->second].length < links[i].length) {
            endingWith[found[i].value] = i;
        }
        best = links[i].length > links[best].length ? i : best;
    }
    Chain chain;
    for (auto at = static_cast<std::ptrdiff_t>(best); !found.empty() && at >= 0;
         at = links[static_cast<std::size_t>(at)].before) {
        chain.insert(chain.begin(), found[static_cast<std::size_t>(at)]);
    }
    return chain;
}

} // namespace

std::vector<NumberedStart> FindQuestionNumbers(const std::vector<std::vector<LineStart>>& pages)
{
    // What stands on several pages in the same place is a running head.
    std::map<std::pair<QString, long>, int> repeated;
    const auto same = [](const LineStart& line) {
        return std::pair(line.text, std::lround(line.place.top()));
    };
    for (const std::vector<LineStart>& page : pages) {
        for (const LineStart& line : page) {
            ++repeated[same(line)];
        }
    }
    Chain all;
    for (std::size_t page = 0; page < pages.size(); ++page) {
        const std::size_t first = all.size();
        for (const LineStart& line : pages[page]) {
            const auto [style, value] = numberOf(line.text);
            if (value > 0 && value <= highestNumber && !line.place.isEmpty() &&
                repeated[same(line)] == 1) {
                all.push_back({style, value, static_cast<int>(page), line.place});
            }
        }
        std::stable_sort(
            all.begin() + static_cast<std::ptrdiff_t>(first), all.end(),
            [](const Found& a, const Found& b) { return a.place.top() < b.place.top(); });
    }
    Chain best;
    std::set<std::pair<Style, int>> tried;
    for (const Found& corner : all) {
        if (!tried.emplace(corner.style, static_cast<int>(corner.place.left())).second) {
            continue;
        }
        Chain column;
        std::copy_if(all.begin(), all.end(), std::back_inserter(column), [&](const Found& each) {
            const double across = each.place.left() - std::floor(corner.place.left());
            return each.style == corner.style && across >= 0 && across <= sameColumn;
        });
        Chain chain = longestChain(column);
        const std::size_t enough = corner.style == Bare ? enoughBare : 2;
        const bool alone = chain.size() == 1 && chain.front().value == 1 && corner.style != Bare;
        if (chain.size() < enough && !(alone && best.empty())) {
            continue;
        }
        // Words come first, bare numbers last; then what stands furthest to the left, where parts
        // never do.
        const auto rank = [](const Chain& each) {
            const Style style = each.front().style;
            double left = each.front().place.left();
            for (const Found& found : each) {
                left = std::min(left, found.place.left());
            }
            return std::tuple(each.size() > 1, style == Word, style != Bare,
                              -std::round(left / sameColumn), each.size());
        };
        if (best.empty() || rank(chain) > rank(best)) {
            best = std::move(chain);
        }
    }
    std::vector<NumberedStart> starts;
    for (const Found& found : best) {
        starts.push_back({found.page, found.place});
    }
    return starts;
}

} // namespace varnholt::pdf
