#pragma once

#include <QImage>
#include <QRegion>

#include <cstdint>

class QFont;

namespace varnholt {

/// A white drawing surface that keeps what is drawn on it. It has two faces: `picture`, what
/// was put into it or fixed (null at first and after clearing), and `image`, the picture at
/// the top left on white plus everything drawn since. Both are 32-bit RGB; coordinates are
/// image pixels counted from the top left corner, whatever the screen's scale.
///
/// The inner size is the image's; the outer size adds the border on both sides.
///
/// Drawing is clipped to the image. Memory: 4 bytes a pixel, faces that are equal share it.
/// Running out of memory throws `std::bad_alloc`.
class PictureSurface
{
public:
    explicit PictureSurface(QSize innerSize, int border = 0);

    [[nodiscard]] int innerWidth() const { return image_.width(); }
    [[nodiscard]] int innerHeight() const { return image_.height(); }
    [[nodiscard]] int outerWidth() const { return image_.width() + 2 * border_; }
    [[nodiscard]] int outerHeight() const { return image_.height() + 2 * border_; }

    [[nodiscard]] bool hasPicture() const { return !picture_.isNull(); }
    [[nodiscard]] const QImage& picture() const { return picture_; }
    [[nodiscard]] const QImage& image() const { return image_; }

    /// Replaces both faces and takes the picture's size. What is transparent becomes white; a
    /// device pixel ratio is dropped. A null picture clears.
    void setPicture(const QImage& picture);
    /// No picture, a white image; the size stays.
    void clearPicture();
    /// Makes the image the picture.
    void fixImage();
    /// A white image of another inner size (1 x 1 at least), no picture.
    void reset(QSize innerSize);
    /// Widens and heightens to at least this outer size. Both faces keep their pixels.
    void growOuter(int width, int height);

    /// Inverts the outline of the rectangle between two opposite corners, both included: each
    /// pixel once, also where the rectangle is only a line. Between equal corners the outline
    /// has no length and no pixel. A second call restores what was there.
    void drawFrame(std::int32_t x1, std::int32_t y1, std::int32_t x2, std::int32_t y2);

    /// Draws the region (sourceX, sourceY, width, height) of `source` at (x, y). Where the
    /// source has no pixels the image stays. Nothing is drawn for a size of 0 or less.
    void drawRegion(const QImage& source, std::int32_t sourceX, std::int32_t sourceY,
                    std::int32_t width, std::int32_t height, std::int32_t x, std::int32_t y);

    /// Fills a region with the background.
    void blankRegion(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height);

    /// Prints one line in black on what is there; (x, y) is the text's top left corner.
    void printText(std::int32_t x, std::int32_t y, const QString& text, const QFont& font);

    /// What has changed since the last call, for whoever shows the image.
    [[nodiscard]] QRegion takeChanged();

private:
    void invert(const QRect& strip);
    void changed(const QRect& area);

    /// To be called before writing to `image_`, whose pixels may be shared with `picture_`: the
    /// copy that the first write makes by itself fails without a word.
    void ownPixels();

    QImage picture_;
    QImage image_;
    QRegion changed_;
    int border_;
};

} // namespace varnholt
