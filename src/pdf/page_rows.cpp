#include "pdf/page_rows.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace varnholt::pdf {

namespace {

/// How much darker than the paper ink is.
constexpr int contrast = 48;
/// The paper of a dark page is not taken for ink all over.
constexpr int darkestPaper = 128;

/// The commonest of the light greys.
int paperOf(const QImage& grey)
{
    std::array<int, 256> count{};
    for (int y = 0; y < grey.height(); ++y) {
        const uchar* row = grey.constScanLine(y);
        for (int x = 0; x < grey.width(); ++x) {
            ++count[row[x]];
        }
    }
    return static_cast<int>(std::max_element(count.begin() + darkestPaper, count.end()) -
                            count.begin());
}

} // namespace

PageRows LookAtPage(const QImage& grey, double scale)
{
    PageRows page{scale, grey.width(), {}};
    const int ink = paperOf(grey) - contrast;
    std::vector<int> columns(static_cast<std::size_t>(grey.width()));
    for (int y = 0; y < grey.height(); ++y) {
        const uchar* row = grey.constScanLine(y);
        for (std::size_t x = 0; x < columns.size(); ++x) {
            columns[x] += row[x] < ink ? 1 : 0;
        }
    }
    const int wholePage = grey.height() * 4 / 5;
    page.rows.resize(static_cast<std::size_t>(grey.height()));
    for (int y = 0; y < grey.height(); ++y) {
        const uchar* row = grey.constScanLine(y);
        Row& seen = page.rows[static_cast<std::size_t>(y)];
        for (int x = 0; x < grey.width(); ++x) {
            if (row[x] < ink && columns[static_cast<std::size_t>(x)] < wholePage) {
                seen.first = seen.ink == 0 ? x : seen.first;
                seen.last = x;
                ++seen.ink;
            }
        }
        seen = seen.ink < 2 ? Row() : seen;
    }
    return page;
}

std::vector<Strip> StripsOf(const PageRows& page, int from, int to)
{
    std::vector<Strip> strips;
    bool inside = false;
    for (int y = from; y < to; ++y) {
        const Row& row = page.rows[static_cast<std::size_t>(y)];
        if (row.isWhite()) {
            inside = false;
            continue;
        }
        if (!std::exchange(inside, true)) {
            strips.push_back({y / page.scale, 0, page.width / page.scale, 0});
        }
        Strip& strip = strips.back();
        strip.bottom = (y + 1) / page.scale;
        strip.left = std::min(strip.left, row.first / page.scale);
        strip.right = std::max(strip.right, (row.last + 1) / page.scale);
    }
    return strips;
}

double WidestGap(const PageRows& page, double top, double bottom)
{
    const auto rowAt = [&](double y) {
        return std::clamp(static_cast<int>(std::lround(y * page.scale)), 0,
                          static_cast<int>(page.rows.size()));
    };
    const std::vector<Strip> strips = StripsOf(page, rowAt(top), rowAt(bottom));
    double widest = 0;
    double middle = -1;
    for (std::size_t i = 1; i < strips.size(); ++i) {
        const double gap = strips[i].top - strips[i - 1].bottom;
        if (gap > widest) {
            widest = gap;
            middle = (strips[i].top + strips[i - 1].bottom) / 2;
        }
    }
    return middle;
}

} // namespace varnholt::pdf
