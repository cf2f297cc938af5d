#include "paper/paper_test.h"

#include "store/services.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace varnholt {

std::vector<std::vector<std::size_t>> MakePaperVersions(std::size_t questions, int versions,
                                                        RandomGenerator& random)
{
    std::vector<std::size_t> order(questions);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::vector<std::vector<std::size_t>> orders{order};
    for (int version = 1; version < std::clamp(versions, 1, mostPaperVersions); ++version) {
        for (std::size_t left = questions; left > 1; --left) {
            const auto chosen = static_cast<std::size_t>(random.next() * static_cast<double>(left));
            std::swap(order[left - 1], order[std::min(chosen, left - 1)]);
        }
        orders.push_back(order);
    }
    return orders;
}

} // namespace varnholt
