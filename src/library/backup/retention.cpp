#include "library/backup/retention.h"

#include <algorithm>
#include <chrono>
#include <limits>
#include <numeric>

namespace varnholt {

namespace {

using std::chrono::days;
using std::chrono::floor;
using std::chrono::seconds;
using std::chrono::sys_days;

constexpr seconds keepAll = days(2);

std::int64_t dayOf(seconds time)
{
    return floor<days>(time).count();
}

std::int64_t weekOf(seconds time)
{
    // The first day of all was a Thursday.
    return floor<std::chrono::weeks>(floor<days>(time) + days(3)).count();
}

std::int64_t monthOf(seconds time)
{
    const std::chrono::year_month_day date(sys_days(floor<days>(time)));
    return std::int64_t{static_cast<int>(date.year())} * 12 + static_cast<unsigned>(date.month());
}

struct Range
{
    std::int64_t (*of)(seconds time);
    int count;
};

constexpr Range ranges[] = {{dayOf, 12}, {weekOf, 10}, {monthOf, 9}};

} // namespace

std::vector<bool> KeptBackups(const std::vector<std::int64_t>& times, std::int64_t now,
                              std::int64_t utcOffset)
{
    std::vector<std::size_t> newestFirst(times.size());
    std::iota(newestFirst.begin(), newestFirst.end(), std::size_t{0});
    std::stable_sort(newestFirst.begin(), newestFirst.end(),
                     [&](std::size_t a, std::size_t b) { return times[a] > times[b]; });

    std::vector<bool> kept(times.size());
    for (std::size_t i = 0; i < times.size(); ++i) {
        kept[i] = times[i] >= now - keepAll.count();
    }
    for (const Range& range : ranges) {
        int left = range.count;
        std::int64_t last = std::numeric_limits<std::int64_t>::max();
        for (const std::size_t i : newestFirst) {
            const std::int64_t part = range.of(seconds(times[i] + utcOffset));
            if (times[i] > now || part == last) {
                continue;
            }
            last = part;
            if (left-- == 0) {
                break;
            }
            kept[i] = true;
        }
    }
    return kept;
}

} // namespace varnholt
