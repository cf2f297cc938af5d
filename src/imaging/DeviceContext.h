#pragma once

#include "imaging/bitmap_rows.h"
#include "imaging/colour_match.h"

#include <cstdlib>
#include <memory>
#include <optional>
#include <vector>

namespace varnholt {

/// How BitBlt and its companions combine source and destination: ternary raster operation
/// codes. Any code that does not need a brush pattern works; these are the named ones.
enum class RasterOp : std::uint32_t
{
    Blackness = 0x00000042,
    NotSrcErase = 0x001100A6,
    NotSrcCopy = 0x00330008,
    SrcErase = 0x00440328,
    DstInvert = 0x00550009,
    SrcInvert = 0x00660046,
    SrcAnd = 0x008800C6,
    MergePaint = 0x00BB0226,
    SrcCopy = 0x00CC0020,
    SrcPaint = 0x00EE0086,
    Whiteness = 0x00FF0062,
};

/// Stretch modes of StretchBlt, by their numbers.
enum StretchMode : int
{
    ColourOnColour = 3, ///< the nearest source pixel
    Halftone = 4,       ///< exact area average when shrinking, linear interpolation when growing
};

struct PixelPoint
{
    std::int32_t x = 0;
    std::int32_t y = 0;
};

/// What a picture file decodes to. Rows bottom-up, padded to 4 bytes, blue-green-red; bit
/// counts 1, 4 and 8 (with a colour table), 16 (5-5-5), 24 and 32.
struct Picture
{
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::int16_t bitCount = 0;
    std::vector<Bgr> colourTable; ///< entries missing at the end count as black
    std::vector<std::uint8_t> pixels;
};

/// A drawing context in memory with a device-independent bitmap selected onto it: 1, 4, 8 or
/// 24 bits a pixel, rows bottom-up and padded to 4 bytes, blue-green-red, black at first.
/// Coordinates count from the top left corner. Drawing is clipped to the bitmaps: pixels
/// outside the destination are dropped, and where the source has none the destination stays.
/// Colours are matched by the nearest entry of the destination's colour table.
///
/// Every operation returns false, and draws nothing, when it cannot be done: no bitmap, an
/// unknown raster code or mode, not enough memory.
class DeviceContext
{
public:
    /// Width and height from 1; false for another bit count, for a bitmap of 2 GiB or more,
    /// and when memory is short; the context is then empty. The colour table below 24 bits
    /// is a ramp of greys.
    bool Create(std::int32_t width, std::int32_t height, int bitCount);
    void Release();

    std::int32_t Width() const { return m_width; }
    std::int32_t Height() const { return m_height; }
    int BitCount() const { return m_bitCount; }
    std::size_t BytesPerScanLine() const { return m_rowBytes; }
    /// First byte of the lowest row; null when empty. Valid until Create or Release.
    std::uint8_t* DIBits() { return m_bits.get(); }
    const std::uint8_t* DIBits() const { return m_bits.get(); }
    BitmapView view() const;

    /// Both return the number of entries copied: 0 without a colour table (24 bits, empty).
    int GetDIBColorTable(int first, int count, Bgr* out) const;
    int SetDIBColorTable(int first, int count, const Bgr* in);

    /// The previous mode; 0, with nothing changed, for an unknown one.
    int SetStretchBltMode(int mode);

    bool BitBlt(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height,
                const DeviceContext& source, std::int32_t sourceX, std::int32_t sourceY,
                RasterOp op = RasterOp::SrcCopy);
    /// The same from any bitmap.
    bool CopyFrom(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height,
                  const BitmapView& source, std::int32_t sourceX, std::int32_t sourceY,
                  RasterOp op = RasterOp::SrcCopy);
    /// The source rectangle must lie inside the source, and every size be 1 to 8,388,608.
    bool StretchBlt(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height,
                    const DeviceContext& source, std::int32_t sourceX, std::int32_t sourceY,
                    std::int32_t sourceWidth, std::int32_t sourceHeight,
                    RasterOp op = RasterOp::SrcCopy);
    /// Carries the source rectangle to the parallelogram whose corners `points` say where the
    /// rectangle's top left, top right and bottom left corners go (corners lie between
    /// pixels). Each destination pixel takes the source pixel its centre falls in. The source
    /// rectangle must lie inside another context.
    bool PlgBlt(const PixelPoint (&points)[3], const DeviceContext& source, std::int32_t sourceX,
                std::int32_t sourceY, std::int32_t sourceWidth, std::int32_t sourceHeight);

private:
    struct FreeDeleter
    {
        void operator()(std::uint8_t* p) const { std::free(p); }
    };

    ColourMatcher& matcher();
    bool holds(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height) const;
    bool sameColoursAs(const BitmapView& other) const;
    void combineRows(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height,
                     const BitmapView& source, std::int32_t sourceX, std::int32_t sourceY,
                     unsigned truthTable);
    std::uint8_t* row(std::int32_t y)
    {
        return m_bits.get() + m_rowBytes * static_cast<std::size_t>(m_height - 1 - y);
    }

    std::int32_t m_width = 0;
    std::int32_t m_height = 0;
    int m_bitCount = 0;
    int m_stretchMode = ColourOnColour;
    std::size_t m_rowBytes = 0;
    std::vector<Bgr> m_table;
    std::optional<ColourMatcher> m_matcher; ///< made when first needed for the present table
    std::unique_ptr<std::uint8_t[], FreeDeleter> m_bits;
};

} // namespace varnholt
