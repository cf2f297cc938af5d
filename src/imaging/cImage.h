#pragma once

#include "imaging/DeviceContext.h"

#include <memory>

namespace varnholt {

/// A device-independent bitmap in memory together with the drawing context it is selected
/// onto: 1, 4, 8 or 24 bits a pixel, rows bottom-up and padded to 4 bytes.
///
/// Empty at first. Create, directly or through a copy, makes it valid and replaces what was
/// there. Failure is reported by results alone; a failed Create leaves the image empty.
class cImage
{
public:
    std::int32_t Width() const { return m_context.Width(); }
    std::int32_t Height() const { return m_context.Height(); }
    std::int16_t BitCount() const { return static_cast<std::int16_t>(m_context.BitCount()); }
    /// The image's own drawing context; null when empty.
    DeviceContext* hDC() { return m_context.DIBits() ? &m_context : nullptr; }
    const DeviceContext* hDC() const { return m_context.DIBits() ? &m_context : nullptr; }
    /// First byte of the lowest row; valid until the next Create; null when empty.
    std::uint8_t* DIBitsPtr() { return m_context.DIBits(); }
    std::int32_t BytesPerScanLine() const
    {
        return static_cast<std::int32_t>(m_context.BytesPerScanLine());
    }

    bool Create(std::int32_t lWidth, std::int32_t lHeight, std::int16_t iBitCount);

    /// With iBitCount 0 the picture's own bit count (16 becomes 24) and colour table. False
    /// too for a picture whose pixels are fewer than its size says.
    bool CopyStdPicture(const Picture& TheStdPicture, std::int16_t iBitCount = 0);

    /// With iBitCount 0 the smallest that holds the source's colour table, 24 without one.
    /// Returns whether Create succeeded; where the source has no pixels the image is black.
    bool CopyHDC(const DeviceContext* lHDC, std::int32_t lWidth, std::int32_t lHeight,
                 std::int16_t iBitCount = 0, std::int32_t lSrcLeft = 0, std::int32_t lSrcTop = 0);

    /// Takes over the source's colour table, as many entries as the image can use.
    bool CopyPalletHDC(const DeviceContext* lHDC);

    void PaintHDC(DeviceContext* lHDC, std::int32_t lDestLeft = 0, std::int32_t lDestTop = 0,
                  RasterOp eRop = RasterOp::SrcCopy) const;

    /// These return a new image, an empty one when it could not be created.
    std::unique_ptr<cImage> Greyscale() const;
    std::unique_ptr<cImage> Resample(std::int32_t lWidth, std::int32_t lHeight) const;
    std::unique_ptr<cImage> Mirror(bool Vertical) const;

    /// Any multiple of 90 degrees that is a turn at all; null for every other angle.
    std::unique_ptr<cImage> Rotate(std::int32_t Degrees) const;

private:
    void DestroyDIB();
    std::unique_ptr<cImage> carriedTo(std::int32_t width, std::int32_t height,
                                      const PixelPoint (&points)[3]) const;

    DeviceContext m_context;
};

} // namespace varnholt
