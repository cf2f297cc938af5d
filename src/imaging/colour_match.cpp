#include "imaging/colour_match.h"

#include <algorithm>

namespace varnholt {

namespace {
constexpr std::size_t kCacheSlots = 4096;
constexpr int kLargestSum = 3 * 255;
} // namespace

ColourMatcher::ColourMatcher(const Bgr* table, int count)
    : m_table(table, table + count)
{
    const bool grey = std::all_of(m_table.begin(), m_table.end(), [](const Bgr& c) {
        return c.blue == c.green && c.green == c.red;
    });
    if (!grey) {
        m_cache.resize(kCacheSlots);
        return;
    }
    // For a grey g the squared distance is 3g² − 2g·(blue+green+red) + a term without g.
    m_greyBySum.resize(kLargestSum + 1);
    for (int sum = 0; sum <= kLargestSum; ++sum) {
        int best = 0;
        int bestDistance = INT32_MAX;
        for (int i = 0; i < count; ++i) {
            const int g = m_table[static_cast<std::size_t>(i)].green;
            const int distance = 3 * g * g - 2 * g * sum;
            if (distance < bestDistance) {
                bestDistance = distance;
                best = i;
            }
        }
        m_greyBySum[static_cast<std::size_t>(sum)] = static_cast<std::uint8_t>(best);
    }
}

std::uint8_t ColourMatcher::nearest(int blue, int green, int red)
{
    if (!m_greyBySum.empty())
        return m_greyBySum[static_cast<std::size_t>(blue + green + red)];
    const auto colour = static_cast<std::uint32_t>(blue | (green << 8) | (red << 16));
    Slot& slot = m_cache[(colour * 2654435761U) >> 20];
    if (slot.colour != colour)
        slot = {colour, search(blue, green, red)};
    return slot.index;
}

std::uint8_t ColourMatcher::search(int blue, int green, int red) const
{
    std::size_t best = 0;
    int bestDistance = INT32_MAX;
    for (std::size_t i = 0; i < m_table.size(); ++i) {
        const int db = m_table[i].blue - blue;
        const int dg = m_table[i].green - green;
        const int dr = m_table[i].red - red;
        const int distance = db * db + dg * dg + dr * dr;
        if (distance < bestDistance) {
            bestDistance = distance;
            best = i;
        }
    }
    return static_cast<std::uint8_t>(best);
}

} // namespace varnholt
