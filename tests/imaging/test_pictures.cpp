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

} // namespace

DeviceContext makePicture(Kind kind, int width, int height, unsigned seed)
{
    std::mt19937 random(seed);
    const int w = std::max(width, 128);
    const int h = std::max(height, 128);
    DeviceContext context;
    context.Create(width, height, 24);
    for (int i = 0; i < width * height; ++i) {
        const int x = i % width;
        const int y = i / width;
        Bgr c{};
        if (kind == Kind::Noise)
            c = randomColour(random);
        else if (kind == Kind::Flat)
            c = colour(static_cast<int>(seed) * 70, static_cast<int>(seed) * 31, 200);
        else if (kind == Kind::Smooth)
            c = colour(x * 200 / w + 20, y * 180 / h + 30, 220 - (x + y) * 150 / (w + h));
        else if ((x / 3 + y / 5) % 4 != 0)
            c = (x * 7 + y * 3) % 11 == 0 ? colour(30, 40, 230) : colour(255, 255, 255);
        const std::uint8_t bytes[] = {c.blue, c.green, c.red};
        const auto row = context.BytesPerScanLine() * static_cast<std::size_t>(height - 1 - y);
        std::copy_n(bytes, 3, context.DIBits() + row + 3 * x);
    }
    return context;
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

Bgr colourAt(const BitmapView& view, int x, int y)
{
    const int bits = view.bitCount;
    const std::uint8_t* pixel =
        view.bits + static_cast<std::size_t>(view.height - 1 - y) * view.rowBytes + x * bits / 8;
    return bits < 24 ? view.table[(*pixel >> (8 - bits - x * bits % 8)) & ((1 << bits) - 1)]
                     : colour(pixel[0], pixel[1], pixel[2]);
}

std::string difference(const BitmapView& found, int width, int height, const ColourOf& expected)
{
    if (found.width != width || found.height != height)
        return "size " + std::to_string(found.width) + "x" + std::to_string(found.height);
    for (int i = 0; i < width * height; ++i)
        if (colourAt(found, i % width, i / width) != expected(i % width, i / width))
            return "at " + std::to_string(i % width) + ", " + std::to_string(i / width);
    return {};
}

} // namespace varnholt::test
