#include "imaging/test_pictures.h"

#include <algorithm>
#include <random>

namespace varnholt::test {

namespace {

void fill(DeviceContext& context, auto&& colourOf)
{
    for (int y = 0; y < context.Height(); ++y) {
        std::uint8_t* row =
            context.DIBits() +
            context.BytesPerScanLine() * static_cast<std::size_t>(context.Height() - 1 - y);
        for (int x = 0; x < context.Width(); ++x, row += 3) {
            const Bgr colour = colourOf(x, y);
            row[0] = colour.blue;
            row[1] = colour.green;
            row[2] = colour.red;
        }
    }
}

std::uint8_t byteOf(int value)
{
    return static_cast<std::uint8_t>(value);
}

} // namespace

DeviceContext makePicture(Kind kind, int width, int height, unsigned seed)
{
    DeviceContext context;
    if (!context.Create(width, height, 24))
        return context;
    std::mt19937 random(seed);
    switch (kind) {
    case Kind::Noise:
        fill(context, [&](int, int) {
            const auto bits = static_cast<int>(random() & 0xFFFFFF);
            return Bgr{byteOf(bits & 255), byteOf((bits >> 8) & 255), byteOf(bits >> 16)};
        });
        break;
    case Kind::Flat:
        fill(context, [shade = static_cast<int>(seed)](int, int) {
            return Bgr{byteOf(shade * 70), byteOf(shade * 31), 200};
        });
        break;
    case Kind::Smooth:
        fill(context, [w = std::max(width, 128), h = std::max(height, 128)](int x, int y) {
            return Bgr{byteOf(x * 200 / w + 20), byteOf(y * 180 / h + 30),
                       byteOf(220 - (x + y) * 150 / (w + h))};
        });
        break;
    case Kind::Drawn:
        fill(context, [&](int x, int y) {
            if ((x / 3 + y / 5) % 4 == 0)
                return Bgr{0, 0, 0};
            return (x * 7 + y * 3) % 11 == 0 ? Bgr{30, 40, 230} : Bgr{255, 255, 255};
        });
        break;
    }
    return context;
}

DeviceContext makeIndexed(int width, int height, int bitCount, unsigned seed)
{
    if (bitCount == 24)
        return makePicture(Kind::Noise, width, height, seed);
    DeviceContext context;
    context.Create(width, height, bitCount);
    std::mt19937 random(seed);
    for (std::size_t i = 0; i < context.BytesPerScanLine() * static_cast<std::size_t>(height); ++i)
        context.DIBits()[i] = byteOf(static_cast<int>(random() & 255));
    Bgr table[256];
    for (Bgr& entry : table)
        entry = {byteOf(static_cast<int>(random() & 255)), byteOf(static_cast<int>(random() & 255)),
                 byteOf(static_cast<int>(random() & 255))};
    context.SetDIBColorTable(0, 1 << bitCount, table);
    return context;
}

int indexAt(const BitmapView& view, int x, int y)
{
    const std::uint8_t* row =
        view.bits + static_cast<std::size_t>(view.height - 1 - y) * view.rowBytes;
    const int bit = x * view.bitCount;
    return (row[bit / 8] >> (8 - view.bitCount - bit % 8)) & ((1 << view.bitCount) - 1);
}

Bgr colourAt(const BitmapView& view, int x, int y)
{
    if (view.bitCount < 24)
        return view.table[indexAt(view, x, y)];
    const std::uint8_t* pixel = view.bits +
                                static_cast<std::size_t>(view.height - 1 - y) * view.rowBytes +
                                static_cast<std::size_t>(3 * x);
    return {pixel[0], pixel[1], pixel[2]};
}

} // namespace varnholt::test
