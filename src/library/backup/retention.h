#pragma once

#include <cstdint>
#include <vector>

namespace varnholt {

/// Which backups stay, in the order of `times`: all of the last two days, and the newest of each of
/// the 12 newest days, the 10 newest weeks (from Monday) and the 9 newest months. Days, weeks and
/// months without a backup do not count, so that neither a holiday nor a clock gone wrong takes
/// any away; what is dated later than `now` stays and counts for nothing. Times are seconds of UTC,
/// `utcOffset` the seconds by which the clock on the wall is ahead of it.
[[nodiscard]] std::vector<bool> KeptBackups(const std::vector<std::int64_t>& times,
                                            std::int64_t now, std::int64_t utcOffset);

} // namespace varnholt
