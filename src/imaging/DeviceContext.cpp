#include "imaging/DeviceContext.h"

#include "imaging/row_scaler.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace varnholt {

namespace {

constexpr std::uint64_t kLargestBitmap = INT32_MAX;

/// The two-operand truth table of a raster code (bit 2·source + destination), or nothing for
/// a code that needs a pattern: the code's third byte lists the results for pattern 0, then 1.
std::optional<unsigned> truthTable(RasterOp op)
{
    const unsigned index = (static_cast<std::uint32_t>(op) >> 16) & 0xFF;
    if ((index & 15U) != index >> 4)
        return std::nullopt;
    return index & 15U;
}

std::uint8_t combine(unsigned table, unsigned source, unsigned destination)
{
    unsigned result = 0;
    if (table & 8U)
        result |= source & destination;
    if (table & 4U)
        result |= source & ~destination;
    if (table & 2U)
        result |= ~source & destination;
    if (table & 1U)
        result |= ~source & ~destination;
    return static_cast<std::uint8_t>(result);
}

constexpr unsigned kSourceOnly = 12;

/// Cuts a span of `length` at `to` and `from` so that it lies inside both; false when empty.
bool clipSpan(std::int32_t& to, std::int32_t toSize, std::int32_t& from, std::int32_t fromSize,
              std::int32_t& length)
{
    const std::int64_t skip = std::max<std::int64_t>({0, -std::int64_t{to}, -std::int64_t{from}});
    const std::int64_t room =
        std::min({std::int64_t{length}, std::int64_t{toSize} - to, std::int64_t{fromSize} - from}) -
        skip;
    if (room <= 0)
        return false;
    to = static_cast<std::int32_t>(to + skip);
    from = static_cast<std::int32_t>(from + skip);
    length = static_cast<std::int32_t>(room);
    return true;
}

} // namespace

bool DeviceContext::Create(std::int32_t width, std::int32_t height, int bitCount)
{
    Release();
    if (width < 1 || height < 1)
        return false;
    if (bitCount != 1 && bitCount != 4 && bitCount != 8 && bitCount != 24)
        return false;
    const std::uint64_t rowBytes = paddedRowBytes(width, bitCount);
    if (rowBytes > kLargestBitmap / static_cast<std::uint64_t>(height))
        return false;
    const auto size = static_cast<std::size_t>(rowBytes) * static_cast<std::size_t>(height);
    m_bits.reset(static_cast<std::uint8_t*>(std::calloc(size, 1)));
    if (!m_bits)
        return false;
    m_width = width;
    m_height = height;
    m_bitCount = bitCount;
    m_rowBytes = static_cast<std::size_t>(rowBytes);
    if (bitCount < 24) {
        const int entries = 1 << bitCount;
        m_table.resize(static_cast<std::size_t>(entries));
        for (int i = 0; i < entries; ++i) {
            const auto grey = static_cast<std::uint8_t>(i * 255 / (entries - 1));
            m_table[static_cast<std::size_t>(i)] = {grey, grey, grey, 0};
        }
    }
    return true;
}

void DeviceContext::Release()
{
    *this = DeviceContext();
}

BitmapView DeviceContext::view() const
{
    return {m_bits.get(), m_width, m_height, m_bitCount, m_rowBytes, m_table.data()};
}

int DeviceContext::GetDIBColorTable(int first, int count, Bgr* out) const
{
    const int entries = static_cast<int>(m_table.size());
    if (first < 0 || first >= entries || count < 1)
        return 0;
    const int n = std::min(count, entries - first);
    std::copy_n(m_table.begin() + first, n, out);
    return n;
}

int DeviceContext::SetDIBColorTable(int first, int count, const Bgr* in)
{
    const int entries = static_cast<int>(m_table.size());
    if (first < 0 || first >= entries || count < 1)
        return 0;
    const int n = std::min(count, entries - first);
    std::copy_n(in, n, m_table.begin() + first);
    m_matcher.reset();
    return n;
}

int DeviceContext::SetStretchBltMode(int mode)
{
    if (mode != ColourOnColour && mode != Halftone)
        return 0;
    return std::exchange(m_stretchMode, mode);
}

ColourMatcher& DeviceContext::matcher()
{
    if (!m_matcher)
        m_matcher.emplace(m_table.data(), static_cast<int>(m_table.size()));
    return *m_matcher;
}

bool DeviceContext::holds(std::int32_t x, std::int32_t y, std::int32_t width,
                          std::int32_t height) const
{
    return x >= 0 && y >= 0 && width >= 1 && height >= 1 && width <= m_width - x &&
           height <= m_height - y;
}

bool DeviceContext::sameColoursAs(const BitmapView& other) const
{
    return m_bitCount == other.bitCount &&
           (m_bitCount == 24 || std::equal(m_table.begin(), m_table.end(), other.table));
}

bool DeviceContext::BitBlt(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height,
                           const DeviceContext& source, std::int32_t sourceX, std::int32_t sourceY,
                           RasterOp op)
{
    BitmapView from = source.view();
    if (&source != this || !m_bits)
        return CopyFrom(x, y, width, height, from, sourceX, sourceY, op);
    try {
        const std::vector<std::uint8_t> copy(
            from.bits, from.bits + m_rowBytes * static_cast<std::size_t>(m_height));
        from.bits = copy.data();
        return CopyFrom(x, y, width, height, from, sourceX, sourceY, op);
    } catch (const std::bad_alloc&) {
        return false;
    }
}

bool DeviceContext::CopyFrom(std::int32_t x, std::int32_t y, std::int32_t width,
                             std::int32_t height, const BitmapView& source, std::int32_t sourceX,
                             std::int32_t sourceY, RasterOp op)
{
    const std::optional<unsigned> table = truthTable(op);
    if (!m_bits || !source.bits || !table)
        return false;
    if (!clipSpan(x, m_width, sourceX, source.width, width) ||
        !clipSpan(y, m_height, sourceY, source.height, height))
        return true;
    if (*table == kSourceOnly && m_bitCount >= 8 && sameColoursAs(source)) {
        const auto pixelBytes = static_cast<std::size_t>(m_bitCount / 8);
        for (std::int32_t i = 0; i < height; ++i)
            std::memcpy(row(y + i) + static_cast<std::size_t>(x) * pixelBytes,
                        source.row(sourceY + i) + static_cast<std::size_t>(sourceX) * pixelBytes,
                        static_cast<std::size_t>(width) * pixelBytes);
        return true;
    }
    try {
        combineRows(x, y, width, height, source, sourceX, sourceY, *table);
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

void DeviceContext::combineRows(std::int32_t x, std::int32_t y, std::int32_t width,
                                std::int32_t height, const BitmapView& source, std::int32_t sourceX,
                                std::int32_t sourceY, unsigned truthTable)
{
    const auto pixels = static_cast<std::size_t>(width);
    std::vector<std::uint8_t> colours(pixels * 3);
    if (m_bitCount == 24) {
        for (std::int32_t i = 0; i < height; ++i) {
            readColours(source, sourceY + i, sourceX, width, colours.data());
            std::uint8_t* to = row(y + i) + static_cast<std::size_t>(x) * 3;
            for (std::size_t k = 0; k < colours.size(); ++k)
                to[k] = combine(truthTable, colours[k], to[k]);
        }
        return;
    }
    const bool sameColours = sameColoursAs(source);
    std::vector<std::uint8_t> indexes(pixels);
    std::vector<std::uint8_t> present(pixels);
    for (std::int32_t i = 0; i < height; ++i) {
        if (sameColours) {
            readIndexes(source.row(sourceY + i), m_bitCount, sourceX, width, indexes.data());
        } else {
            readColours(source, sourceY + i, sourceX, width, colours.data());
            ColourMatcher& match = matcher();
            for (std::size_t k = 0; k < pixels; ++k)
                indexes[k] = match.nearest(colours[3 * k], colours[3 * k + 1], colours[3 * k + 2]);
        }
        if (truthTable != kSourceOnly) {
            readIndexes(row(y + i), m_bitCount, x, width, present.data());
            for (std::size_t k = 0; k < pixels; ++k)
                indexes[k] = combine(truthTable, indexes[k], present[k]);
        }
        writeIndexes(row(y + i), m_bitCount, x, width, indexes.data());
    }
}

bool DeviceContext::StretchBlt(std::int32_t x, std::int32_t y, std::int32_t width,
                               std::int32_t height, const DeviceContext& source,
                               std::int32_t sourceX, std::int32_t sourceY, std::int32_t sourceWidth,
                               std::int32_t sourceHeight, RasterOp op)
{
    const bool inside = source.holds(sourceX, sourceY, sourceWidth, sourceHeight);
    const std::int32_t longest = std::max({width, height, sourceWidth, sourceHeight});
    if (!m_bits || !source.m_bits || !inside || width < 1 || height < 1 ||
        longest > RowScaler::kLongestSide || !truthTable(op))
        return false;
    try {
        DeviceContext scaled;
        if (&source == this) {
            // Rows are read while others are written: onto itself it goes through a copy.
            scaled.m_stretchMode = m_stretchMode;
            return scaled.Create(width, height, 24) &&
                   scaled.StretchBlt(0, 0, width, height, source, sourceX, sourceY, sourceWidth,
                                     sourceHeight) &&
                   BitBlt(x, y, width, height, scaled, 0, 0, op);
        }
        RowScaler scaler(source.view(), {sourceX, sourceY, sourceWidth, sourceHeight}, width,
                         height,
                         m_stretchMode == Halftone ? Scaling::AreaOrLinear : Scaling::Nearest);
        if (!scaled.Create(width, 1, 24))
            return false;
        const auto firstRow =
            static_cast<std::int32_t>(std::clamp<std::int64_t>(-std::int64_t{y}, 0, height));
        const auto lastRow =
            static_cast<std::int32_t>(std::min<std::int64_t>(height, std::int64_t{m_height} - y));
        for (std::int32_t i = firstRow; i < lastRow; ++i) {
            scaler.row(i, scaled.DIBits());
            BitBlt(x, y + i, width, 1, scaled, 0, 0, op);
        }
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

bool DeviceContext::PlgBlt(const PixelPoint (&points)[3], const DeviceContext& source,
                           std::int32_t sourceX, std::int32_t sourceY, std::int32_t sourceWidth,
                           std::int32_t sourceHeight)
{
    const bool inside = source.holds(sourceX, sourceY, sourceWidth, sourceHeight);
    if (!m_bits || !source.m_bits || &source == this || !inside)
        return false;
    // The sides of the parallelogram span the plane: a destination point is
    // points[0] + a·across + b·down, and (a, b), by Cramer's rule, its place in the source.
    using Wide = std::int64_t;
    const Wide acrossX = Wide{points[1].x} - points[0].x;
    const Wide acrossY = Wide{points[1].y} - points[0].y;
    const Wide downX = Wide{points[2].x} - points[0].x;
    const Wide downY = Wide{points[2].y} - points[0].y;
    const Wide span = std::max({std::abs(acrossX), std::abs(acrossY), std::abs(downX),
                                std::abs(downY), Wide{m_width}, Wide{m_height},
                                std::abs(Wide{points[0].x}), std::abs(Wide{points[0].y})});
    if (span > (1 << 28) || span * span > INT64_MAX / 16 / std::max(sourceWidth, sourceHeight))
        return false;
    Wide area = acrossX * downY - acrossY * downX;
    if (area == 0)
        return true;
    const Wide sign = area < 0 ? -1 : 1;
    area *= 2 * sign;

    const BitmapView from = source.view();
    const bool byIndex = m_bitCount < 24 && sameColoursAs(from);
    const std::size_t cell = byIndex ? 1 : 3;
    try {
        std::vector<std::uint8_t> line(static_cast<std::size_t>(m_width) * 3);
        for (std::int32_t y = 0; y < m_height; ++y) {
            const Wide dy = 2 * (Wide{y} - points[0].y) + 1;
            std::int32_t first = 0;
            std::int32_t count = 0;
            for (std::int32_t x = 0; x < m_width; ++x) {
                const Wide dx = 2 * (Wide{x} - points[0].x) + 1;
                const Wide a = sign * (dx * downY - dy * downX);
                const Wide b = sign * (dy * acrossX - dx * acrossY);
                if (a < 0 || b < 0 || a >= area || b >= area)
                    continue;
                if (count == 0)
                    first = x;
                const auto px = static_cast<std::int32_t>(sourceX + a * sourceWidth / area);
                const auto py = static_cast<std::int32_t>(sourceY + b * sourceHeight / area);
                std::uint8_t* to = line.data() + static_cast<std::size_t>(count++) * cell;
                if (byIndex)
                    readIndexes(from.row(py), m_bitCount, px, 1, to);
                else
                    readColours(from, py, px, 1, to);
            }
            if (count == 0)
                continue;
            if (byIndex)
                writeIndexes(row(y), m_bitCount, first, count, line.data());
            else
                CopyFrom(first, y, count, 1, {line.data(), count, 1, 24, 0, nullptr}, 0, 0);
        }
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

} // namespace varnholt
