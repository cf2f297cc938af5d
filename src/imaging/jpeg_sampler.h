#pragma once

#include "imaging/DeviceContext.h"

#include <array>
#include <memory>
#include <new>
#include <vector>

namespace varnholt {

/// Horizontal and vertical sampling factor of a component, 1 to 4.
struct SamplingFactors
{
    int h = 1;
    int v = 1;

    bool operator==(const SamplingFactors&) const = default;
};

/// One component's samples, level-shifted by 128, as blocks of 8 by 8 (64 bytes, row by row),
/// the blocks from left to right and then downwards. Width and height are the picture's in
/// proportion to the factors, rounded up; the last column and the last row are repeated up
/// to whole blocks.
struct ComponentPlane
{
    SamplingFactors factors;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t blocksWide = 0;
    std::int32_t blocksHigh = 0;
    /// On cache lines, one for each block.
    static constexpr std::align_val_t kAlignment{64};
    struct AlignedDelete
    {
        void operator()(std::int8_t* p) const { ::operator delete[](p, kAlignment); }
    };
    std::unique_ptr<std::int8_t[], AlignedDelete> samples;

    std::int8_t* blockRow(std::int32_t row) const
    {
        return samples.get() +
               64 * static_cast<std::size_t>(blocksWide) * static_cast<std::size_t>(row);
    }
};

/// A picture as component planes: Y alone, or Y, Cb, Cr.
struct SampledPicture
{
    std::int32_t width = 0;
    std::int32_t height = 0;
    SamplingFactors most; ///< the largest of the components'
    std::vector<ComponentPlane> components;
};

/// Takes the region of `source` at (left, top), black where the source has no pixels, and
/// converts it. A component sampled more coarsely is made from area averages of the colours.
/// A sample stands for as many pixels as the factors say, counted from the top left corner,
/// which is where a decoder puts it; where the last ones go beyond the region, its last
/// column and row are repeated. Width and height are 1 to 65535; `factors` has 1 or 3
/// entries. Throws std::bad_alloc.
SampledPicture sampleContext(const DeviceContext& source, std::int32_t left, std::int32_t top,
                             std::int32_t width, std::int32_t height,
                             const std::vector<SamplingFactors>& factors);

} // namespace varnholt
