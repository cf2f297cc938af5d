#pragma once

#include "imaging/DeviceContext.h"

#include <array>
#include <memory>
#include <vector>

namespace varnholt {

/// Horizontal and vertical sampling factor of a component, 1 to 4.
struct SamplingFactors
{
    int h = 1;
    int v = 1;
};

/// One component's samples, level-shifted by 128, top row first. Width and height are the
/// picture's in proportion to the factors, rounded up; the last column and the last row are
/// repeated up to whole blocks of 8 by 8.
struct ComponentPlane
{
    SamplingFactors factors;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int32_t blocksWide = 0;
    std::int32_t blocksHigh = 0;
    std::unique_ptr<std::int8_t[]> samples;

    std::size_t stride() const { return static_cast<std::size_t>(blocksWide) * 8; }
    std::int8_t* row(std::int32_t y) const
    {
        return samples.get() + stride() * static_cast<std::size_t>(y);
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
/// converts it. A component of other than the full size is made from a halftone stretch of
/// the region. Width and height are 1 to 65535; `factors` has 1 or 3 entries. Throws
/// std::bad_alloc.
SampledPicture sampleContext(const DeviceContext& source, std::int32_t left, std::int32_t top,
                             std::int32_t width, std::int32_t height,
                             const std::vector<SamplingFactors>& factors);

} // namespace varnholt
