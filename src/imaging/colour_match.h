#pragma once

#include "imaging/bitmap_rows.h"

#include <vector>

namespace varnholt {

/// Finds the colour-table entry nearest to a colour: the least sum of squared differences of
/// blue, green and red; the lowest index of several. An all-grey table is looked up directly,
/// any other through a small cache, so one matcher should serve a whole transfer.
class ColourMatcher
{
public:
    /// The table is copied; `count` is 1 to 256.
    ColourMatcher(const Bgr* table, int count);

    std::uint8_t nearest(int blue, int green, int red);

private:
    std::uint8_t search(int blue, int green, int red) const;

    std::vector<Bgr> m_table;
    std::vector<std::uint8_t> m_greyBySum; // index of the nearest grey for blue+green+red
    struct Slot
    {
        std::uint32_t colour = 0xFFFFFFFF;
        std::uint8_t index = 0;
    };
    std::vector<Slot> m_cache;
};

} // namespace varnholt
