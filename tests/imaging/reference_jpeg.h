#pragma once

#include "imaging/cJpeg.h"

#include <array>
#include <string>
#include <vector>

/// JPEG files seen through libjpeg-turbo and through the plain definitions of the standard,
/// without any code of the encoder. Failures are thrown as std::runtime_error.
namespace varnholt::test {

using Bytes = std::vector<std::uint8_t>;

struct Region
{
    int width = 0;
    int height = 0;
    int left = 0;
    int top = 0;
};

/// What the encoder writes; with `region`, every kernel set samples and writes it, and all
/// must write the same bytes.
Bytes encode(const cJpeg& encoder);
Bytes encode(cJpeg& encoder, const DeviceContext& picture, const Region& region);

struct Component
{
    int h = 0;
    int v = 0;
    int blocksWide = 0;
    std::array<int, 64> table{};             // row by row
    std::vector<std::array<int, 64>> blocks; // row by row
};
/// The components' quantised coefficients, at any sampling. A warning is a failure.
std::vector<Component> readCoefficients(const Bytes& file);

/// Computes every component of the region from its pixels by the definitions (area average,
/// conversion, repeated edges, discrete cosine transform), and demands that each coefficient
/// of the file is as near to it as its quantisation step allows, and that the file decodes to
/// the region's size wherever the sampling is one libjpeg-turbo can decode.
void check(const Bytes& file, const DeviceContext& picture, const Region& region);

struct Segment
{
    int marker = 0;
    std::string content;
};
/// All marker segments up to the end; entropy-coded data is skipped.
std::vector<Segment> segments(const Bytes& file);

} // namespace varnholt::test
