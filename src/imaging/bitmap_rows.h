#pragma once

#include <cstddef>
#include <cstdint>

namespace varnholt {

/// One colour-table entry, in the byte order of a bitmap file.
struct Bgr
{
    std::uint8_t blue = 0;
    std::uint8_t green = 0;
    std::uint8_t red = 0;
    std::uint8_t reserved = 0;

    bool operator==(const Bgr&) const = default;
};

/// A borrowed look at a device-independent bitmap: rows bottom-up, each padded to a multiple
/// of 4 bytes; 24 and 32 bits are blue-green-red(-unused), 16 bits are 5-5-5. Bit counts 1, 4
/// and 8 index `table`, which has 2^bitCount entries.
struct BitmapView
{
    const std::uint8_t* bits = nullptr;
    std::int32_t width = 0;
    std::int32_t height = 0;
    int bitCount = 0;
    std::size_t rowBytes = 0;
    const Bgr* table = nullptr;

    /// The row `y` counted from the top.
    const std::uint8_t* row(std::int32_t y) const
    {
        return bits + rowBytes * static_cast<std::size_t>(height - 1 - y);
    }
};

/// Row length in bytes of a bitmap of `width` pixels (1 or more), padded to 4 bytes.
std::uint64_t paddedRowBytes(std::int32_t width, int bitCount);

/// Colour-table indexes of `count` pixels from pixel `x` on, one byte each (1, 4, 8 bits).
void readIndexes(const std::uint8_t* row, int bitCount, std::int32_t x, std::int32_t count,
                 std::uint8_t* out);

/// The reverse of readIndexes; neighbouring pixels in shared bytes stay as they are.
void writeIndexes(std::uint8_t* row, int bitCount, std::int32_t x, std::int32_t count,
                  const std::uint8_t* in);

/// Colours of `count` pixels of row `y` (from the top) from pixel `x` on, as blue, green, red
/// bytes. Every bit count of BitmapView.
void readColours(const BitmapView& view, std::int32_t y, std::int32_t x, std::int32_t count,
                 std::uint8_t* out);

} // namespace varnholt
