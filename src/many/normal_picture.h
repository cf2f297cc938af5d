#pragma once

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>

namespace varnholt {

/// What becomes of a white margin round a picture.
enum class Margins
{
    Trim,
    Keep
};

/// JPEG qualities of pictures that are encoded anew: as everywhere in the program, and a finer one.
inline constexpr int usualQuality = 75;
inline constexpr int fineQuality = 90;

/// No question's picture taken from a file is larger.
inline constexpr QSize largestQuestionPicture{1920, 1080};

/// A JPEG with the very same picture and nothing of where, when and by whom it was made: no Exif,
/// comments or further pictures. What the colours need stays. Unchanged where it is no JPEG.
[[nodiscard]] QByteArray WithoutMetadata(const QByteArray& jpeg);

/// Where there is anything but white on a picture; all of it when there is nothing.
[[nodiscard]] QRect InkArea(const QImage& picture);

/// Writes a picture to the new file `to` as a question's picture should be: upright, opaque on
/// white, without a white margin if wished, shrunk to `largestQuestionPicture` where it is larger,
/// as a JPEG without metadata. A JPEG that is so already keeps its picture to the last bit. Throws
/// `Error`, a `PictureError` where the file holds no picture.
void WriteNormalPicture(const QString& from, const QString& to, Margins margins,
                        int quality = usualQuality);
void WriteNormalPicture(const QImage& picture, const QString& to, Margins margins,
                        int quality = usualQuality);

} // namespace varnholt
