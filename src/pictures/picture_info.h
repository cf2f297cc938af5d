#pragma once

#include <QByteArray>
#include <QSize>
#include <QSizeF>
#include <QString>

namespace varnholt {

/// What a presentation needs to know about a picture file before it takes it in.
struct PictureInfo
{
    /// What the bytes are, whatever the file is called: "jpeg", "png", "gif" or "bmp".
    QByteArray format;
    QSize pixels;
    /// The picture's own size in points: pixels at the density the file gives, at 96 dots an
    /// inch where it gives none.
    QSizeF points;
    /// Empty, or the picture turned upright as a JPEG: for a photo whose Exif orientation says
    /// that it was taken with the camera turned, which presentation programs ignore. `pixels`
    /// and `points` are those of the upright picture.
    QByteArray uprightJpeg;
};

/// Looks at headers and at the end of the file only, so a picture of any size costs a few
/// kilobytes of reading. Throws `Error` when there is no such file, it is empty, cut off, no
/// picture of the four kinds, or one that no presentation program should be asked to show:
/// more than `largestPictureSide` pixels in a direction or `largestPictureArea` in all.
[[nodiscard]] PictureInfo readPictureInfo(const QString& path);

/// Lets Qt decode pictures up to `largestPictureArea`; its own limit stands far below.
void AllowLargePictures();

inline constexpr int largestPictureSide = 20'000;
inline constexpr qint64 largestPictureArea = 150'000'000;

} // namespace varnholt
