#pragma once

#include <QImage>

#include <cstdint>

class QFont;

namespace varnholt {

// What the canvas does with pixels. Images are 32-bit RGB at a device pixel ratio of 1, at least
// one pixel in size; what is drawn is clipped to the image. Running out of memory throws
// `std::bad_alloc`.

/// A white image.
[[nodiscard]] QImage BlankImage(QSize size);

/// Any picture as 32-bit RGB, what is transparent on white.
[[nodiscard]] QImage OpaqueImage(const QImage& picture);

/// Draws the region (sourceX, sourceY, width, height) of `source` at (x, y). Where the source has
/// no pixels the image stays. Nothing is drawn for a size of 0 or less.
void DrawRegion(QImage& image, const QImage& source, std::int32_t sourceX, std::int32_t sourceY,
                std::int32_t width, std::int32_t height, std::int32_t x, std::int32_t y);

/// Fills a region with white.
void BlankRegion(QImage& image, std::int32_t x, std::int32_t y, std::int32_t width,
                 std::int32_t height);

/// Prints one line in black on what is there; (x, y) is the text's top left corner.
void PrintLine(QImage& image, std::int32_t x, std::int32_t y, const QString& text,
               const QFont& font);

/// A part of an image in another size: each pixel the exact average of the area that it covers
/// where that is more than one, interpolated where it is less. `area` lies inside the image.
[[nodiscard]] QImage ScaledByArea(const QImage& image, const QRect& area, QSize size);

/// The smallest rectangle that holds every pixel in which two images of one size differ.
[[nodiscard]] QRect ChangedArea(const QImage& before, const QImage& after);

} // namespace varnholt
