#pragma once

#include "imaging/bitmap_rows.h"

#include <vector>

namespace varnholt {

struct PixelRect
{
    std::int32_t x = 0;
    std::int32_t y = 0;
    std::int32_t width = 0;
    std::int32_t height = 0;
};

enum class Scaling
{
    Nearest,
    AreaOrLinear,
};

/// `from` source pixels become `to` destination pixels.
struct ScaleRatio
{
    std::int32_t from = 1;
    std::int32_t to = 1;
};

/// Scales a rectangle of a bitmap to `width` by `height` pixels, one row at a time, without
/// a bitmap in between. Each axis is treated by itself. Shrinking: a destination pixel is the
/// exact average of the area it covers, source pixels at its border counting by their covered
/// part, and pixels beyond the last repeating it. Growing: linear interpolation between pixel
/// centres. Sums are kept in whole numbers and divided once, halves rounded up, so the result is
/// the same everywhere.
class RowScaler
{
public:
    /// No side may be longer, so that the sums fit their types.
    static constexpr std::int32_t kLongestSide = 1 << 23;

    /// `area` must lie inside the bitmap, which must outlive the scaler.
    RowScaler(const BitmapView& source, const PixelRect& area, std::int32_t width,
              std::int32_t height, Scaling scaling);
    /// Shrinks by ratios of which the sizes are only the rounded-up result.
    RowScaler(const BitmapView& source, const PixelRect& area, std::int32_t width,
              std::int32_t height, ScaleRatio across, ScaleRatio down);

    /// Row `y` from the top as 3·width bytes blue, green, red.
    void row(std::int32_t y, std::uint8_t* out);

private:
    /// For each destination pixel the source pixels it draws on, with weights adding to `total`.
    struct Axis
    {
        struct Taps
        {
            std::int32_t first;
            std::int32_t count;
            std::size_t weights; // index into `weights`
        };
        std::vector<Taps> taps;
        std::vector<std::uint32_t> weights;
        std::uint64_t total = 1;

        Axis(std::int32_t sourceSize, std::int32_t size, ScaleRatio ratio, Scaling scaling);

    private:
        void begin(std::int64_t first);
        void weigh(std::int64_t weight);
        void pickNearest(std::int64_t size, std::int64_t from, std::int64_t to);
        void averageAreas(std::int64_t size, std::int64_t from, std::int64_t to,
                          std::int64_t sourceSize);
        void interpolate(std::int64_t size, std::int64_t from, std::int64_t to,
                         std::int64_t sourceSize);
    };

    RowScaler(const BitmapView& source, const PixelRect& area, Axis across, Axis down);

    BitmapView m_source;
    PixelRect m_area;
    Axis m_across;
    Axis m_down;
    std::vector<std::uint8_t> m_line;  // one source row
    std::vector<std::uint32_t> m_sums; // weighted sums of source rows
};

} // namespace varnholt
