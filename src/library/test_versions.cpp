#include "library/test_versions.h"

#include "store/SplitMix64.h"

#include <algorithm>
#include <numeric>

namespace varnholt {

namespace {

/// The number of orders of so few questions; never more than are asked for.
int ordersOf(int questions)
{
    int orders = 1;
    for (int i = 2; i <= questions && orders <= mostVersions; ++i) {
        orders *= i;
    }
    return orders;
}

} // namespace

std::optional<std::vector<int>> VersionOrder(std::uint64_t seed, int version, int questions)
{
    if (version < 1 || version > mostVersions || version >= ordersOf(questions)) {
        return std::nullopt;
    }
    std::vector<int> order(static_cast<std::size_t>(questions));
    std::iota(order.begin(), order.end(), 0);
    std::vector<std::vector<int>> earlier{order};
    // Each version has a stream of its own, and goes on in it until its order is a new one.
    constexpr std::uint64_t betweenStreams = 0xd1342543de82ef95;
    for (int k = 1; k <= version; ++k) {
        SplitMix64 numbers;
        numbers.seed(seed + static_cast<std::uint64_t>(k) * betweenStreams);
        do {
            for (std::size_t i = order.size(); i > 1; --i) {
                const auto other =
                    static_cast<std::size_t>(numbers.next() * static_cast<double>(i));
                std::swap(order[i - 1], order[other]);
            }
        } while (std::find(earlier.begin(), earlier.end(), order) != earlier.end());
        earlier.push_back(order);
        std::iota(order.begin(), order.end(), 0);
    }
    return earlier.back();
}

} // namespace varnholt
