#pragma once

#include "store/errors.h"

#include <QByteArray>
#include <QSize>
#include <QSizeF>
#include <QString>

#include <atomic>

class QImage;

namespace varnholt {

/// Why a picture cannot be shown.
enum class PictureFault
{
    None,
    /// There is no file of that name.
    Missing,
    /// There is one, but it cannot be opened or read.
    Unreadable,
    /// Cut off, damaged, or no picture of the four kinds.
    Damaged,
    /// Whole as far as can be seen, but larger than anything a slide can show.
    TooLarge
};

class PictureError : public Error
{
public:
    PictureError(PictureFault fault, const QString& message)
        : Error(message)
        , fault_(fault)
    {}

    [[nodiscard]] PictureFault fault() const { return fault_; }

private:
    PictureFault fault_;
};

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

/// The one judgement whether a picture can be shown, for slides as for the screen. Looks at the
/// structure of the whole file without decoding it. Only what structure cannot tell (GIF and
/// BMP, and a turned photo, which has to be turned) is decoded, once. Throws `PictureError`.
[[nodiscard]] PictureInfo readPictureInfo(const QString& path);

/// A picture file that has passed the look at its structure.
struct CheckedPicture
{
    QByteArray bytes;
    /// Without `uprightJpeg`, and the sizes as the file gives them.
    PictureInfo info;
    /// As Exif counts: 1 upright, 2 to 8 mirrored and turned, 5 to 8 with the sides swapped.
    int orientation = 1;
    /// What decoding costs: pixels times the rounds through the picture.
    qint64 work = 0;
};

/// The look at a file's structure alone. Throws `PictureError`.
[[nodiscard]] CheckedPicture checkPicture(const QString& path);

/// The picture upright, shrunk where a side is longer than `longestSide`, as 32-bit RGB or
/// premultiplied ARGB. Throws `PictureError` when the decoder refuses what had passed. Once
/// `stop` is true the rest is not decoded and the result worth nothing.
[[nodiscard]] QImage decodePicture(const CheckedPicture& picture, int longestSide,
                                   const QString& path, const std::atomic<bool>* stop = nullptr);

/// Lets Qt decode pictures up to `largestPictureArea`; its own limit stands far below.
void AllowLargePictures();

inline constexpr int largestPictureSide = 20'000;
inline constexpr qint64 largestPictureArea = 150'000'000;
/// The same for pictures that a decoder can only hold in memory whole.
inline constexpr qint64 largestWholeArea = 64'000'000;
inline constexpr qint64 largestDecodingWork = 1'200'000'000;
inline constexpr qint64 largestPictureFile = 512LL * 1024 * 1024;

} // namespace varnholt
