#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace varnholt {

/// The versions of a test beside the one that was drawn: B to F.
inline constexpr int mostVersions = 5;

/// The order of version 1 (B) to `mostVersions` (F) of a test: element i is the place, from 0, that
/// its question i had in the drawn order. It depends on nothing but the arguments, so that it is
/// the same on every machine, and it differs from the drawn order and from those of the versions
/// before it. None when so few questions have no such order left.
[[nodiscard]] std::optional<std::vector<int>> VersionOrder(std::uint64_t seed, int version,
                                                           int questions);

} // namespace varnholt
