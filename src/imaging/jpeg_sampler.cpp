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
    Stretched,
};

class Sampler
{
public:
    Sampler(const BitmapView& view, const PixelRect& area, SampledPicture& picture)
        : m_view(view)
        , m_area(area)
        , m_picture(picture)
    {}

    void run()
    {
        const std::vector<ComponentPlane>& planes = m_picture.components;
        const Method luma = methodFor(planes[0]);
        // Cb and Cr come from the same pixels: where they are of one size, in one go.
        const bool coloured = planes.size() > 1;
        const bool paired =
            coloured && planes[1].width == planes[2].width && planes[1].height == planes[2].height;
        const Method chroma = paired ? methodFor(planes[1]) : Method::Stretched;
        for (std::int32_t y = 0; y < m_area.height; ++y) {
            if (luma == Method::Full)
                finishRow(planes[0], y, [&](std::int8_t* out) {
                    m_kernels.lumaRow(pixels(y), m_area.width, out);
                });
            if (chroma != Method::Stretched)
                sampleChroma(chroma, y);
        }
        if (luma == Method::Stretched)
            stretch(planes[0], [&](const std::uint8_t* colours, std::int32_t row) {
                m_kernels.lumaRow(colours, planes[0].width, planes[0].row(row));
            });
        if (coloured && chroma == Method::Stretched)
            stretchChroma(paired);
        for (const ComponentPlane& plane : planes)
            repeatLastRow(plane);
    }

private:
    Method methodFor(const ComponentPlane& plane) const
    {
        const bool sameHeight = plane.height == m_area.height;
        if (plane.width == m_area.width && sameHeight)
            return Method::Full;
        if (&plane == m_picture.components.data() || plane.width * 2 != m_area.width)
            return Method::Stretched;
        if (sameHeight)
            return Method::HalfWide;
        return plane.height * 2 == m_area.height ? Method::Half : Method::Stretched;
    }

    const std::uint8_t* pixels(std::int32_t y) const
    {
        return m_view.row(m_area.y + y) + static_cast<std::size_t>(m_area.x) * 3;
    }

    void sampleChroma(Method method, std::int32_t y)
    {
        const ComponentPlane& cb = m_picture.components[1];
        const ComponentPlane& cr = m_picture.components[2];
        std::int32_t row = y;
        if (method == Method::Full) {
            m_kernels.chromaRow(pixels(y), cb.width, cb.row(y), cr.row(y));
        } else if (method == Method::HalfWide) {
            m_kernels.chromaRow2x2(pixels(y), pixels(y), cb.width, cb.row(y), cr.row(y));
        } else {
            if (y % 2 == 0)
                return;
            row = y / 2;
            m_kernels.chromaRow2x2(pixels(y - 1), pixels(y), cb.width, cb.row(row), cr.row(row));
        }
        repeatLastColumn(cb, row);
        repeatLastColumn(cr, row);
    }

    template <class Convert>
    void stretch(const ComponentPlane& plane, Convert convert)
    {
        RowScaler scaler(m_view, m_area, plane.width, plane.height, Scaling::AreaOrLinear);
        std::vector<std::uint8_t> colours(static_cast<std::size_t>(plane.width) * 3);
        for (std::int32_t row = 0; row < plane.height; ++row) {
            scaler.row(row, colours.data());
            convert(colours.data(), row);
            repeatLastColumn(plane, row);
        }
    }

    void stretchChroma(bool paired)
    {
        const ComponentPlane& cb = m_picture.components[1];
        const ComponentPlane& cr = m_picture.components[2];
        if (paired) {
            stretch(cb, [&](const std::uint8_t* colours, std::int32_t row) {
                m_kernels.chromaRow(colours, cb.width, cb.row(row), cr.row(row));
                repeatLastColumn(cr, row);
            });
            return;
        }
        std::vector<std::int8_t> unused(static_cast<std::size_t>(m_area.width));
        stretch(cb, [&](const std::uint8_t* colours, std::int32_t row) {
            m_kernels.chromaRow(colours, cb.width, cb.row(row), unused.data());
        });
        stretch(cr, [&](const std::uint8_t* colours, std::int32_t row) {
            m_kernels.chromaRow(colours, cr.width, unused.data(), cr.row(row));
        });
    }

    template <class Convert>
    static void finishRow(const ComponentPlane& plane, std::int32_t row, Convert convert)
    {
        convert(plane.row(row));
        repeatLastColumn(plane, row);
    }

    static void repeatLastColumn(const ComponentPlane& plane, std::int32_t row)
    {
        std::int8_t* samples = plane.row(row);
        std::fill(samples + plane.width, samples + plane.stride(), samples[plane.width - 1]);
    }

    static void repeatLastRow(const ComponentPlane& plane)
    {
        for (std::int32_t row = plane.height; row < plane.blocksHigh * 8; ++row)
            std::memcpy(plane.row(row), plane.row(row - 1), plane.stride());
    }

    const jpeg::Kernels& m_kernels = jpeg::kernels();
    BitmapView m_view;
    PixelRect m_area;
    SampledPicture& m_picture;
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
        plane.samples =
            std::make_unique_for_overwrite<std::int8_t[]>(static_cast<std::size_t>(blocks) * 64);
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
