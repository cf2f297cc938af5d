#include "imaging/cImage.h"

#include <algorithm>
#include <utility>

namespace varnholt {

namespace {

constexpr int kMaxColours = 256;

bool isComplete(const Picture& picture)
{
    static constexpr int kBitCounts[] = {1, 4, 8, 16, 24, 32};
    if (picture.width < 1 || picture.height < 1 ||
        std::find(std::begin(kBitCounts), std::end(kBitCounts), picture.bitCount) ==
            std::end(kBitCounts))
        return false;
    return picture.pixels.size() / paddedRowBytes(picture.width, picture.bitCount) >=
           static_cast<std::uint64_t>(picture.height);
}

} // namespace

void cImage::DestroyDIB()
{
    m_context.Release();
}

bool cImage::Create(std::int32_t lWidth, std::int32_t lHeight, std::int16_t iBitCount)
{
    DestroyDIB();
    return m_context.Create(lWidth, lHeight, iBitCount);
}

bool cImage::CopyStdPicture(const Picture& TheStdPicture, std::int16_t iBitCount)
{
    const bool ownFormat = iBitCount == 0;
    if (ownFormat)
        iBitCount = TheStdPicture.bitCount == 16 ? std::int16_t{24} : TheStdPicture.bitCount;
    DestroyDIB();
    if (!isComplete(TheStdPicture) || !Create(TheStdPicture.width, TheStdPicture.height, iBitCount))
        return false;
    std::vector<Bgr> table = TheStdPicture.colourTable;
    table.resize(kMaxColours);
    if (ownFormat)
        m_context.SetDIBColorTable(0, kMaxColours, table.data());
    const auto rowBytes =
        static_cast<std::size_t>(paddedRowBytes(TheStdPicture.width, TheStdPicture.bitCount));
    const BitmapView view{TheStdPicture.pixels.data(),
                          TheStdPicture.width,
                          TheStdPicture.height,
                          TheStdPicture.bitCount,
                          rowBytes,
                          table.data()};
    return m_context.CopyFrom(0, 0, view.width, view.height, view, 0, 0);
}

bool cImage::CopyHDC(const DeviceContext* lHDC, std::int32_t lWidth, std::int32_t lHeight,
                     std::int16_t iBitCount, std::int32_t lSrcLeft, std::int32_t lSrcTop)
{
    if (lHDC == &m_context) {
        const DeviceContext own = std::move(m_context);
        return CopyHDC(&own, lWidth, lHeight, iBitCount, lSrcLeft, lSrcTop);
    }
    Bgr table[kMaxColours];
    int colours = 0;
    if (iBitCount == 0) {
        colours = lHDC ? lHDC->GetDIBColorTable(0, kMaxColours, table) : 0;
        if (colours == 0)
            iBitCount = 24;
        else if (colours <= 2)
            iBitCount = 1;
        else if (colours <= 16)
            iBitCount = 4;
        else
            iBitCount = 8;
    }
    if (!Create(lWidth, lHeight, iBitCount))
        return false;
    if (colours > 0)
        m_context.SetDIBColorTable(0, colours, table);
    if (lHDC)
        m_context.BitBlt(0, 0, lWidth, lHeight, *lHDC, lSrcLeft, lSrcTop);
    return true;
}

bool cImage::CopyPalletHDC(const DeviceContext* lHDC)
{
    Bgr table[kMaxColours];
    const int wanted = BitCount() < 24 ? 1 << BitCount() : kMaxColours;
    const int colours = lHDC ? lHDC->GetDIBColorTable(0, wanted, table) : 0;
    return colours > 0 && m_context.SetDIBColorTable(0, colours, table) == colours;
}

void cImage::PaintHDC(DeviceContext* lHDC, std::int32_t lDestLeft, std::int32_t lDestTop,
                      RasterOp eRop) const
{
    if (lHDC)
        lHDC->BitBlt(lDestLeft, lDestTop, Width(), Height(), m_context, 0, 0, eRop);
}

std::unique_ptr<cImage> cImage::Greyscale() const
{
    auto result = std::make_unique<cImage>();
    if (result->Create(Width(), Height(), 8))
        result->m_context.BitBlt(0, 0, Width(), Height(), m_context, 0, 0);
    return result;
}

std::unique_ptr<cImage> cImage::Resample(std::int32_t lWidth, std::int32_t lHeight) const
{
    auto result = std::make_unique<cImage>();
    if (!result->Create(lWidth, lHeight, BitCount()))
        return result;
    if (BitCount() < 24)
        result->CopyPalletHDC(&m_context);
    DeviceContext& target = result->m_context;
    if (lWidth == Width() && lHeight == Height()) {
        target.BitBlt(0, 0, lWidth, lHeight, m_context, 0, 0);
        return result;
    }
    if (target.SetStretchBltMode(Halftone) == 0)
        target.SetStretchBltMode(ColourOnColour);
    target.StretchBlt(0, 0, lWidth, lHeight, m_context, 0, 0, Width(), Height());
    return result;
}

std::unique_ptr<cImage> cImage::carriedTo(std::int32_t width, std::int32_t height,
                                          const PixelPoint (&points)[3]) const
{
    auto result = std::make_unique<cImage>();
    if (!result->Create(width, height, BitCount()))
        return result;
    if (BitCount() < 24)
        result->CopyPalletHDC(&m_context);
    result->m_context.PlgBlt(points, m_context, 0, 0, Width(), Height());
    return result;
}

std::unique_ptr<cImage> cImage::Mirror(bool Vertical) const
{
    const std::int32_t w = Width();
    const std::int32_t h = Height();
    if (Vertical)
        return carriedTo(w, h, {{0, h}, {w, h}, {0, 0}});
    return carriedTo(w, h, {{w, 0}, {0, 0}, {w, h}});
}

std::unique_ptr<cImage> cImage::Rotate(std::int32_t Degrees) const
{
    const std::int32_t w = Width();
    const std::int32_t h = Height();
    switch ((Degrees % 360 + 360) % 360) {
    case 90:
        return carriedTo(h, w, {{0, w}, {0, 0}, {h, w}});
    case 180:
        return carriedTo(w, h, {{w, h}, {0, h}, {w, 0}});
    case 270:
        return carriedTo(h, w, {{h, 0}, {h, w}, {0, 0}});
    default:
        return nullptr;
    }
}

} // namespace varnholt
