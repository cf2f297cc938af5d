#pragma once

#include "imaging/DeviceContext.h"

#include <functional>
#include <string>

namespace varnholt::test {

using ColourOf = std::function<Bgr(int x, int y)>;

enum class Kind
{
    Noise,
    Flat,
    Smooth, ///< slow changes of colour
    Drawn,  ///< black and coloured strokes on white
};

/// A 24-bit picture of whole-number arithmetic only, the same in every build.
DeviceContext makePicture(Kind kind, int width, int height, unsigned seed = 1);

/// Noise at any bit count, below 24 bits with a colour table of its own.
DeviceContext makeNoise(int width, int height, int bitCount, unsigned seed = 1);

/// A pixel's place in its row's bytes is worked out afresh here, from the format's definition.
Bgr colourAt(const BitmapView& view, int x, int y);

/// Empty when the bitmap has this size and these colours, else where it first differs.
std::string difference(const BitmapView& found, int width, int height, const ColourOf& expected);

} // namespace varnholt::test
