#include "imaging/test_pictures.h"

#include <algorithm>
#include <random>

namespace varnholt::test {

namespace {

Bgr colour(int blue, int green, int red)
{
    return {static_cast<std::uint8_t>(blue), static_cast<std::uint8_t>(green),
            static_cast<std::uint8_t>(red), 0};
}

Bgr randomColour(std::mt19937& random)
{
    const auto bits = static_cast<int>(random() & 0xFFFFFF);
    return colour(bits & 255, (bits >> 8) & 255, bits >> 16);
}

const std::uint8_t* rowAt(const BitmapView& view, int y)
{
    return view.bits + static_cast<std::size_t>(view.height - 1 - y) * view.rowBytes;
}

std::string text(const Bgr& c)
{
    return std::to_string(c.blue) + " " + std::to_string(c.green) + " " + std::to_string(c.red);
}

} // namespace

DeviceContext paint(int width, int height, const ColourOf& colourOf)
{
    DeviceContext context;
    context.Create(width, height, 24);
    for (int y = 0; y < context.Height(); ++y) {
        std::uint8_t* pixel = context.DIBits() +
                              context.BytesPerScanLine() * static_cast<std::size_t>(height - 1 - y);
        for (int x = 0; x < width; ++x) {
            const Bgr c = colourOf(x, y);
            *pixel++ = c.blue;
            *pixel++ = c.green;
            *pixel++ = c.red;
        }
    }
    return context;
}

DeviceContext makePicture(Kind kind, int width, int height, unsigned seed)
{
    std::mt19937 random(seed);
    const int w = std::max(width, 128);
    const int h = std::max(height, 128);
    return paint(width, height, [&](int x, int y) {
        switch (kind) {
        case Kind::Noise:
            return randomColour(random);
        case Kind::Flat:
            return colour(static_cast<int>(seed) * 70, static_cast<int>(seed) * 31, 200);
        case Kind::Smooth:
            return colour(x * 200 / w + 20, y * 180 / h + 30, 220 - (x + y) * 150 / (w + h));
        case Kind::Drawn:
            break;
        }
        if ((x / 3 + y / 5) % 4 == 0)
            return Bgr{};
        return (x * 7 + y * 3) % 11 == 0 ? colour(30, 40, 230) : colour(255, 255, 255);
    });
}

DeviceContext makeNoise(int width, int height, int bitCount, unsigned seed)
{
    if (bitCount == 24)
        return makePicture(Kind::Noise, width, height, seed);
    DeviceContext context;
    context.Create(width, height, bitCount);
    std::mt19937 random(seed);
    std::generate_n(context.DIBits(), context.BytesPerScanLine() * static_cast<std::size_t>(height),
                    [&] { return static_cast<std::uint8_t>(random() & 255); });
    Bgr table[256];
    std::generate_n(table, 256, [&] { return randomColour(random); });
    context.SetDIBColorTable(0, 1 << bitCount, table);
    return context;
}

int indexAt(const BitmapView& view, int x, int y)
{
    const int bit = x * view.bitCount;
    return (rowAt(view, y)[bit / 8] >> (8 - view.bitCount - bit % 8)) & ((1 << view.bitCount) - 1);
}

Bgr colourAt(const BitmapView& view, int x, int y)
{
    if (view.bitCount < 24)
        return view.table[indexAt(view, x, y)];
    const std::uint8_t* pixel = rowAt(view, y) + static_cast<std::size_t>(3 * x);
    return colour(pixel[0], pixel[1], pixel[2]);
}

std::string difference(const BitmapView& found, int width, int height, const ColourOf& expected)
{
    if (found.width != width || found.height != height)
        return "size " + std::to_string(found.width) + "x" + std::to_string(found.height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const Bgr here = colourAt(found, x, y);
            if (here != expected(x, y))
                return std::to_string(x) + ", " + std::to_string(y) + ": " + text(here) +
                       " instead of " + text(expected(x, y));
        }
    }
    return {};
}

} // namespace varnholt::test
