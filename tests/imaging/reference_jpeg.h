#pragma once

#include "imaging/cJpeg.h"

#include <array>
#include <string>
#include <vector>

/// JPEG files seen through libjpeg-turbo and through the plain definitions of the standard,
/// without any code of the encoder. Failures are thrown as std::runtime_error.
namespace varnholt::test {

using Bytes = std::vector<std::uint8_t>;

Bytes encode(const cJpeg& encoder);

/// Decoded to rows of blue, green, red, top row first. Any warning of the decoder is a failure.
struct Decoded
{
    int width = 0;
    int height = 0;
    Bytes pixels;
};
Decoded decode(const Bytes& file);

struct Coefficients
{
    struct Component
    {
        int h = 0;
        int v = 0;
        int blocksWide = 0;
        int blocksHigh = 0;
        std::array<int, 64> table{};             // row by row
        std::vector<std::array<int, 64>> blocks; // row by row
    };
    int width = 0;
    int height = 0;
    std::vector<Component> components;
};
/// The quantised coefficients as libjpeg-turbo reads them, at any sampling.
Coefficients readCoefficients(const Bytes& file);

/// Computes every component of the region from its pixels by the definitions (area average,
/// conversion, repeated edges, discrete cosine transform), and demands that each coefficient
/// of the file is as near to it as its quantisation step allows.
void checkCoefficients(const Coefficients& file, const BitmapView& picture, int left, int top);

struct Segment
{
    int marker = 0;
    std::string content;
};
/// All marker segments up to the end; entropy-coded data is skipped.
std::vector<Segment> segments(const Bytes& file);

} // namespace varnholt::test
