#include "imaging/jpeg_sampler.h"

#include "imaging/jpeg_kernels.h"
#include "imaging/row_scaler.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace varnholt {

namespace {

/// How a component's samples come from the region's rows.
enum class Method
{
    Full,     ///< one sample for each pixel
    HalfWide, ///< means of two pixels in a row
    Half,     ///< means of two by two pixels
    Scaled,
};

/// Collects the rows of a plane and stores them as blocks, eight at a time.
class PlaneWriter
{
public:
    explicit PlaneWriter(const ComponentPlane& plane)
        : m_plane(plane)
        , m_stride(static_cast<std::size_t>(plane.blocksWide) * 8)
        , m_band(std::make_unique_for_overwrite<std::int8_t[]>(m_stride * 8))
    {}

    std::int32_t width() const { return m_plane.width; }

    /// Where the plane's width of samples goes; then call rowDone.
    std::int8_t* row() { return m_band.get() + m_stride * m_rows; }

    void rowDone()
    {
        std::int8_t* samples = row();
        std::fill(samples + m_plane.width, samples + m_stride, samples[m_plane.width - 1]);
        ++m_rows;
        ++m_done;
        if (m_done == m_plane.height) {
            for (; m_rows < 8; ++m_rows)
                std::memcpy(row(), row() - m_stride, m_stride);
        }
        if (m_rows == 8)
            storeBlocks();
    }

private:
    void storeBlocks()
    {
        jpeg::kernels().storeBlocks(m_band.get(), m_plane.blocksWide,
                                    m_plane.blockRow((m_done - 1) / 8));
        m_rows = 0;
    }

    const ComponentPlane& m_plane;
    std::size_t m_stride;
    std::unique_ptr<std::int8_t[]> m_band;
    std::size_t m_rows = 0; // in the band
    std::int32_t m_done = 0;
};

class Sampler
{
public:
    Sampler(const BitmapView& view, const PixelRect& area, const SampledPicture& picture)
        : m_view(view)
        , m_area(area)
        , m_picture(picture)
    {}

    void run()
    {
        const std::vector<ComponentPlane>& planes = m_picture.components;
        // Cb and Cr come from the same pixels: where they are of one size, in one go, and
        // together with Y while the rows are at hand.
        const bool fullLuma = methodFor(planes[0]) == Method::Full;
        const bool coloured = planes.size() > 1;
        const bool paired = coloured && planes[1].factors == planes[2].factors;
        const Method chroma = paired ? methodFor(planes[1]) : Method::Scaled;
        if (fullLuma || chroma != Method::Scaled)
            convertRows(fullLuma, chroma);
        if (!fullLuma)
            scaleLuma();
        if (coloured && chroma == Method::Scaled)
            scaleChroma(paired);
    }

private:
    Method methodFor(const ComponentPlane& plane) const
    {
        const int across = m_picture.most.h / plane.factors.h;
        const int down = m_picture.most.v / plane.factors.v;
        const bool whole = across * plane.factors.h == m_picture.most.h &&
                           down * plane.factors.v == m_picture.most.v;
        if (whole && across == 1 && down == 1)
            return Method::Full;
        if (whole && across == 2 && down <= 2)
            return down == 1 ? Method::HalfWide : Method::Half;
        return Method::Scaled;
    }

    const std::uint8_t* pixels(std::int32_t y) const
    {
        return m_view.row(m_area.y + y) + static_cast<std::size_t>(m_area.x) * 3;
    }

    void convertRows(bool withLuma, Method chroma)
    {
        std::vector<PlaneWriter> writers;
        for (const ComponentPlane& plane : m_picture.components)
            writers.emplace_back(plane);
        for (std::int32_t y = 0; y < m_area.height; ++y) {
            if (withLuma) {
                m_kernels.lumaRow(pixels(y), m_area.width, writers[0].row());
                writers[0].rowDone();
            }
            const bool complete = y % 2 != 0 || y == m_area.height - 1;
            if (chroma == Method::Scaled || (chroma == Method::Half && !complete))
                continue;
            if (chroma == Method::Full)
                m_kernels.chromaRow(pixels(y), m_area.width, writers[1].row(), writers[2].row());
            else
                halveRows(pixels(chroma == Method::Half ? y - y % 2 : y), pixels(y), writers);
            writers[1].rowDone();
            writers[2].rowDone();
        }
    }

    void halveRows(const std::uint8_t* upper, const std::uint8_t* lower,
                   std::vector<PlaneWriter>& writers)
    {
        std::int8_t* cb = writers[1].row();
        std::int8_t* cr = writers[2].row();
        const std::int32_t pairs = m_area.width / 2;
        m_kernels.chromaRow2x2(upper, lower, pairs, cb, cr);
        if (m_area.width % 2 == 0)
            return;
        const auto last = static_cast<std::size_t>(m_area.width - 1) * 3;
        std::uint8_t twice[2][6];
        for (std::size_t i = 0; i < 6; ++i) {
            twice[0][i] = upper[last + i % 3];
            twice[1][i] = lower[last + i % 3];
        }
        m_kernels.chromaRow2x2(twice[0], twice[1], 1, cb + pairs, cr + pairs);
    }

    template <class Convert>
    void scale(const ComponentPlane& plane, Convert convert)
    {
        RowScaler scaler(m_view, m_area, plane.width, plane.height,
                         {m_picture.most.h, plane.factors.h}, {m_picture.most.v, plane.factors.v});
        std::vector<std::uint8_t> colours(static_cast<std::size_t>(plane.width) * 3);
        for (std::int32_t row = 0; row < plane.height; ++row) {
            scaler.row(row, colours.data());
            convert(colours.data());
        }
    }

    void scaleLuma()
    {
        PlaneWriter luma(m_picture.components[0]);
        scale(m_picture.components[0], [&](const std::uint8_t* colours) {
            m_kernels.lumaRow(colours, luma.width(), luma.row());
            luma.rowDone();
        });
    }

    void scaleChroma(bool paired)
    {
        PlaneWriter cb(m_picture.components[1]);
        PlaneWriter cr(m_picture.components[2]);
        if (paired) {
            scale(m_picture.components[1], [&](const std::uint8_t* colours) {
                m_kernels.chromaRow(colours, cb.width(), cb.row(), cr.row());
                cb.rowDone();
                cr.rowDone();
            });
            return;
        }
        std::vector<std::int8_t> unused(static_cast<std::size_t>(m_area.width));
        scale(m_picture.components[1], [&](const std::uint8_t* colours) {
            m_kernels.chromaRow(colours, cb.width(), cb.row(), unused.data());
            cb.rowDone();
        });
        scale(m_picture.components[2], [&](const std::uint8_t* colours) {
            m_kernels.chromaRow(colours, cr.width(), unused.data(), cr.row());
            cr.rowDone();
        });
    }

    const jpeg::Kernels& m_kernels = jpeg::kernels();
    BitmapView m_view;
    PixelRect m_area;
    const SampledPicture& m_picture;
};

std::int32_t proportion(std::int32_t size, int factor, int most)
{
    return static_cast<std::int32_t>((std::int64_t{size} * factor + most - 1) / most);
}

} // namespace

SampledPicture sampleContext(const DeviceContext& source, std::int32_t left, std::int32_t top,
                             std::int32_t width, std::int32_t height,
                             const std::vector<SamplingFactors>& factors)
{
    SampledPicture picture;
    picture.width = width;
    picture.height = height;
    for (const SamplingFactors& f : factors) {
        picture.most.h = std::max(picture.most.h, f.h);
        picture.most.v = std::max(picture.most.v, f.v);
    }
    for (const SamplingFactors& f : factors) {
        ComponentPlane plane;
        plane.factors = f;
        plane.width = proportion(width, f.h, picture.most.h);
        plane.height = proportion(height, f.v, picture.most.v);
        plane.blocksWide = (plane.width + 7) / 8;
        plane.blocksHigh = (plane.height + 7) / 8;
        const auto blocks = static_cast<std::uint64_t>(plane.blocksWide) *
                            static_cast<std::uint64_t>(plane.blocksHigh);
        if (blocks > SIZE_MAX / 64)
            throw std::bad_alloc();
        plane.samples.reset(static_cast<std::int8_t*>(
            ::operator new[](static_cast<std::size_t>(blocks) * 64, ComponentPlane::kAlignment)));
        picture.components.push_back(std::move(plane));
    }

    BitmapView view = source.view();
    PixelRect area{left, top, width, height};
    DeviceContext scratch;
    const bool inside =
        left >= 0 && top >= 0 && left <= view.width - width && top <= view.height - height;
    if (!inside || view.bitCount != 24) {
        if (!scratch.Create(width, height, 24) ||
            !scratch.BitBlt(0, 0, width, height, source, left, top))
            throw std::bad_alloc();
        view = scratch.view();
        area.x = 0;
        area.y = 0;
    }
    Sampler(view, area, picture).run();
    return picture;
}

} // namespace varnholt
