#include "imaging/row_scaler.h"

#include <algorithm>
#include <utility>

namespace varnholt {

RowScaler::Axis::Axis(std::int32_t sourceSize, std::int32_t size, ScaleRatio ratio, Scaling scaling)
{
    taps.reserve(static_cast<std::size_t>(size));
    if (scaling == Scaling::Nearest || ratio.from == ratio.to)
        pickNearest(size, ratio.from, ratio.to);
    else if (ratio.from > ratio.to)
        averageAreas(size, ratio.from, ratio.to, sourceSize);
    else
        interpolate(size, ratio.from, ratio.to, sourceSize);
}

void RowScaler::Axis::begin(std::int64_t first)
{
    taps.push_back({static_cast<std::int32_t>(first), 0, weights.size()});
}

void RowScaler::Axis::weigh(std::int64_t weight)
{
    weights.push_back(static_cast<std::uint32_t>(weight));
    ++taps.back().count;
}

void RowScaler::Axis::pickNearest(std::int64_t size, std::int64_t from, std::int64_t to)
{
    for (std::int64_t i = 0; i < size; ++i) {
        begin((2 * i + 1) * from / (2 * to));
        weigh(1);
    }
}

void RowScaler::Axis::averageAreas(std::int64_t size, std::int64_t from, std::int64_t to,
                                   std::int64_t sourceSize)
{
    // In units of 1/to: source pixel j covers [j·to, (j+1)·to), destination pixel i
    // [i·from, (i+1)·from).
    total = static_cast<std::uint64_t>(from);
    const std::int64_t last = sourceSize - 1;
    for (std::int64_t i = 0; i < size; ++i) {
        std::int64_t at = i * from;
        const std::int64_t end = at + from;
        begin(std::min(at / to, last));
        while (at < end) {
            const std::int64_t pixel = at / to;
            const std::int64_t next = pixel < last ? std::min(end, (pixel + 1) * to) : end;
            weigh(next - at);
            at = next;
        }
    }
}

void RowScaler::Axis::interpolate(std::int64_t size, std::int64_t from, std::int64_t to,
                                  std::int64_t sourceSize)
{
    // In units of 1/(2·to), counted from the centre of source pixel 0.
    total = 2 * static_cast<std::uint64_t>(to);
    const std::int64_t last = (sourceSize - 1) * 2 * to;
    for (std::int64_t i = 0; i < size; ++i) {
        const std::int64_t at = std::clamp<std::int64_t>((2 * i + 1) * from - to, 0, last);
        const std::int64_t part = at % (2 * to);
        begin(at / (2 * to));
        weigh(2 * to - part);
        if (part != 0)
            weigh(part);
    }
}

RowScaler::RowScaler(const BitmapView& source, const PixelRect& area, std::int32_t width,
                     std::int32_t height, Scaling scaling)
    : RowScaler(source, area, Axis(area.width, width, {area.width, width}, scaling),
                Axis(area.height, height, {area.height, height}, scaling))
{}

RowScaler::RowScaler(const BitmapView& source, const PixelRect& area, std::int32_t width,
                     std::int32_t height, ScaleRatio across, ScaleRatio down)
    : RowScaler(source, area, Axis(area.width, width, across, Scaling::AreaOrLinear),
                Axis(area.height, height, down, Scaling::AreaOrLinear))
{}

RowScaler::RowScaler(const BitmapView& source, const PixelRect& area, Axis across, Axis down)
    : m_source(source)
    , m_area(area)
    , m_across(std::move(across))
    , m_down(std::move(down))
    , m_line(static_cast<std::size_t>(area.width) * 3)
    , m_sums(m_line.size())
{}

void RowScaler::row(std::int32_t y, std::uint8_t* out)
{
    const Axis::Taps& down = m_down.taps[static_cast<std::size_t>(y)];
    std::fill(m_sums.begin(), m_sums.end(), 0U);
    for (std::int32_t k = 0; k < down.count; ++k) {
        const std::uint32_t weight = m_down.weights[down.weights + static_cast<std::size_t>(k)];
        const std::int32_t line = m_area.y + down.first + k;
        const std::uint8_t* pixels = m_line.data();
        if (m_source.bitCount == 24)
            pixels = m_source.row(line) + static_cast<std::size_t>(m_area.x) * 3;
        else
            readColours(m_source, line, m_area.x, m_area.width, m_line.data());
        for (std::size_t i = 0; i < m_sums.size(); ++i)
            m_sums[i] += weight * pixels[i];
    }

    const std::uint64_t total = m_across.total * m_down.total;
    // Quotients differ from a whole number by 1/(2·total) at least, or not at all: while that
    // is far above the error of a double, multiplying and cutting off gives the exact result.
    const bool inDoubles = total < (UINT64_C(1) << 32);
    const double reciprocal = 1.0 / static_cast<double>(total);
    for (const Axis::Taps& taps : m_across.taps) {
        const std::uint32_t* cell = m_sums.data() + static_cast<std::size_t>(taps.first) * 3;
        std::uint64_t sum[3] = {};
        for (std::int32_t k = 0; k < taps.count; ++k, cell += 3) {
            const std::uint64_t weight =
                m_across.weights[taps.weights + static_cast<std::size_t>(k)];
            for (int c = 0; c < 3; ++c)
                sum[c] += weight * cell[c];
        }
        for (int c = 0; c < 3; ++c) {
            const double mean =
                (static_cast<double>(sum[c]) + 0.5 * static_cast<double>(total)) * reciprocal;
            *out++ = inDoubles ? static_cast<std::uint8_t>(mean + 1e-11)
                               : static_cast<std::uint8_t>((sum[c] + total / 2) / total);
        }
    }
}

} // namespace varnholt
