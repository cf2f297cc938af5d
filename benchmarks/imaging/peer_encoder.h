#pragma once

#include "imaging/DeviceContext.h"

#include <cstdint>
#include <span>
#include <vector>

namespace varnholt::bench {

/// How libjpeg-turbo is set up: the counterpart of ours, or its own fast way.
enum class PeerMode
{
    FloatOptimised,  ///< JDCT_FLOAT, optimize_coding
    IntegerStandard, ///< JDCT_ISLOW, the standard's example Huffman tables
};

/// Encodes the rows with sampling 2×2, 1×1, 1×1 and the quantisation tables given, in zigzag
/// order, at 24 bits a pixel. Writes into `out`, which must be large enough, so
/// that no output memory counts for either side; returns the size.
std::size_t peerEncode(const DeviceContext& context, std::span<const std::uint16_t> luminance,
                       std::span<const std::uint16_t> chrominance, PeerMode mode,
                       std::vector<std::uint8_t>& out);

/// Decoded by libjpeg-turbo to blue, green, red rows, top row first, without padding.
std::vector<std::uint8_t> peerDecode(std::span<const std::uint8_t> file, int& width, int& height);

} // namespace varnholt::bench
