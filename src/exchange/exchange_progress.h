#pragma once

#include <cstdint>
#include <functional>

namespace varnholt {

/// The stretches of an export or import that take their time.
enum class ExchangeWork
{
    Collecting,
    Packing,
    Unpacking,
    Importing
};

/// Told that `done` of `all` parts of a stretch are done; again and again, with the same numbers,
/// while a slow disk is waited for. Called very often, for every file or record; must not throw.
using ExchangeProgress =
    std::function<void(ExchangeWork work, std::int64_t done, std::int64_t all)>;

} // namespace varnholt
