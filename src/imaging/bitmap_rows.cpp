#include "imaging/bitmap_rows.h"

#include <cstring>

namespace varnholt {

std::uint64_t paddedRowBytes(std::int32_t width, int bitCount)
{
    return (static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(bitCount) + 31) / 32 * 4;
}

void readIndexes(const std::uint8_t* row, int bitCount, std::int32_t x, std::int32_t count,
                 std::uint8_t* out)
{
    if (bitCount == 8) {
        std::memcpy(out, row + x, static_cast<std::size_t>(count));
        return;
    }
    const int perByte = 8 / bitCount;
    const int mask = (1 << bitCount) - 1;
    for (std::int32_t i = 0; i < count; ++i, ++x) {
        const int shift = (perByte - 1 - x % perByte) * bitCount;
        out[i] = static_cast<std::uint8_t>((row[x / perByte] >> shift) & mask);
    }
}

void writeIndexes(std::uint8_t* row, int bitCount, std::int32_t x, std::int32_t count,
                  const std::uint8_t* in)
{
    if (bitCount == 8) {
        std::memcpy(row + x, in, static_cast<std::size_t>(count));
        return;
    }
    const int perByte = 8 / bitCount;
    const int mask = (1 << bitCount) - 1;
    for (std::int32_t i = 0; i < count; ++i, ++x) {
        const int shift = (perByte - 1 - x % perByte) * bitCount;
        std::uint8_t& cell = row[x / perByte];
        cell = static_cast<std::uint8_t>((cell & ~(mask << shift)) | ((in[i] & mask) << shift));
    }
}

namespace {

std::uint8_t widen5(int value)
{
    return static_cast<std::uint8_t>((value << 3) | (value >> 2));
}

void readHighColours(const std::uint8_t* in, std::int32_t count, std::uint8_t* out)
{
    for (std::int32_t i = 0; i < count; ++i, in += 2, out += 3) {
        const int pixel = in[0] | (in[1] << 8);
        out[0] = widen5(pixel & 31);
        out[1] = widen5((pixel >> 5) & 31);
        out[2] = widen5((pixel >> 10) & 31);
    }
}

void readTableColours(const BitmapView& view, const std::uint8_t* row, std::int32_t x,
                      std::int32_t count, std::uint8_t* out)
{
    constexpr std::int32_t kStep = 256;
    std::uint8_t indexes[kStep];
    while (count > 0) {
        const std::int32_t n = count < kStep ? count : kStep;
        readIndexes(row, view.bitCount, x, n, indexes);
        for (std::int32_t i = 0; i < n; ++i, out += 3) {
            const Bgr colour = view.table[indexes[i]];
            out[0] = colour.blue;
            out[1] = colour.green;
            out[2] = colour.red;
        }
        x += n;
        count -= n;
    }
}

} // namespace

void readColours(const BitmapView& view, std::int32_t y, std::int32_t x, std::int32_t count,
                 std::uint8_t* out)
{
    const std::uint8_t* row = view.row(y);
    const auto first = static_cast<std::size_t>(x);
    switch (view.bitCount) {
    case 32:
        row += first * 4;
        for (std::int32_t i = 0; i < count; ++i, row += 4, out += 3)
            std::memcpy(out, row, 3);
        break;
    case 24:
        std::memcpy(out, row + first * 3, static_cast<std::size_t>(count) * 3);
        break;
    case 16:
        readHighColours(row + first * 2, count, out);
        break;
    default:
        readTableColours(view, row, x, count, out);
    }
}

} // namespace varnholt
