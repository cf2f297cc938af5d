#include "many/normal_picture.h"

#include "authoring/canvas_image.h"
#include "authoring/question_save.h"
#include "files/NewFile.h"
#include "pictures/picture_info.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>

#include <span>

namespace varnholt {

namespace {

/// Darker than that in any colour is ink; scanners and JPEG leave paper a little grey.
constexpr int paper = 245;
/// A narrower margin is not worth a JPEG's being compressed a second time.
constexpr int narrowMargin = 8;

QString tr(const char* sentence)
{
    return QCoreApplication::translate("NormalPicture", sentence);
}

bool isInk(QRgb pixel)
{
    return qRed(pixel) < paper || qGreen(pixel) < paper || qBlue(pixel) < paper;
}

bool isLarge(QSize size)
{
    return size.width() > largestQuestionPicture.width() ||
           size.height() > largestQuestionPicture.height();
}

void writeBytes(const QByteArray& bytes, const QString& to)
{
    NewFile file(QFileInfo(to).filesystemFilePath());
    const std::span content(reinterpret_cast<const std::uint8_t*>(bytes.constData()),
                            static_cast<std::size_t>(bytes.size()));
    if (!file.isOpen() || !file.write(content) || file.finish() != NewFile::Outcome::Done) {
        throw Error(tr("The picture could not be written, because the disk is full or the folder "
                       "takes no files: %1")
                        .arg(QDir::toNativeSeparators(to)));
    }
}

/// Pictures of other kinds than those that slides know.
QImage readOther(const QString& from)
{
    QImageReader reader(from);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (!size.isValid() || qint64{size.width()} * size.height() > largestWholeArea) {
        return {};
    }
    return reader.read();
}

/// The kept segments that say how the colours are meant: JFIF, a colour profile, Adobe's.
bool isAboutColour(uchar marker, QByteArrayView content)
{
    return (marker == 0xE0 && content.startsWith("JFIF")) ||
           (marker == 0xE2 && content.startsWith("ICC_PROFILE")) ||
           (marker == 0xEE && content.startsWith("Adobe"));
}

} // namespace

QByteArray WithoutMetadata(const QByteArray& jpeg)
{
    const auto byte = [&](qsizetype at) { return static_cast<uchar>(jpeg[at]); };
    const qsizetype size = jpeg.size();
    if (size < 4 || byte(0) != 0xFF || byte(1) != 0xD8) {
        return jpeg;
    }
    QByteArray kept = jpeg.first(2);
    qsizetype at = 2;
    while (at + 4 <= size) {
        if (byte(at) != 0xFF) {
            return jpeg;
        }
        const uchar marker = byte(at + 1);
        if (marker == 0xFF) { // fill bytes before a marker
            ++at;
            continue;
        }
        if (marker == 0xD9) {
            break;
        }
        const qsizetype length = byte(at + 2) << 8 | byte(at + 3);
        qsizetype end = std::min(at + 2 + length, size);
        const bool application = (marker & 0xF0) == 0xE0;
        const bool drop =
            marker == 0xFE ||
            (application &&
             !isAboutColour(marker, QByteArrayView(jpeg).sliced(
                                        at + 4, std::max<qsizetype>(end - at - 4, 0))));
        if (marker == 0xDA) {
            // The coded data: up to a marker that is neither a stuffed byte nor a restart.
            while (end + 1 < size &&
                   (byte(end) != 0xFF || byte(end + 1) == 0 || (byte(end + 1) & 0xF8) == 0xD0)) {
                ++end;
            }
        }
        if (!drop) {
            kept += QByteArrayView(jpeg).sliced(at, end - at);
        }
        at = std::max(end, at + 2);
    }
    return kept + QByteArrayLiteral("\xFF\xD9");
}

QRect InkArea(const QImage& picture)
{
    const auto row = [&](int y) { return reinterpret_cast<const QRgb*>(picture.constScanLine(y)); };
    const int width = picture.width();
    const auto hasInk = [&](int y) { return std::any_of(row(y), row(y) + width, isInk); };
    int top = 0;
    int bottom = picture.height() - 1;
    while (top <= bottom && !hasInk(top)) {
        ++top;
    }
    if (top > bottom) {
        return picture.rect();
    }
    while (!hasInk(bottom)) {
        --bottom;
    }
    int left = width;
    int right = -1;
    for (int y = top; y <= bottom; ++y) {
        const QRgb* pixels = row(y);
        left = static_cast<int>(std::find_if(pixels, pixels + left, isInk) - pixels);
        int last = width - 1;
        while (last > right && !isInk(pixels[last])) {
            --last;
        }
        right = std::max(right, last);
    }
    return {QPoint(left, top), QPoint(right, bottom)};
}

void WriteNormalPicture(const QImage& picture, const QString& to, Margins margins, int quality)
{
    const QImage opaque = OpaqueImage(picture);
    const QRect part = margins == Margins::Trim ? InkArea(opaque) : opaque.rect();
    const QSize size =
        isLarge(part.size())
            ? part.size().scaled(largestQuestionPicture, Qt::KeepAspectRatio).expandedTo({1, 1})
            : part.size();
    WriteQuestionPicture(
        to, size == part.size() ? opaque.copy(part) : ScaledByArea(opaque, part, size), quality);
}

void WriteNormalPicture(const QString& from, const QString& to, Margins margins, int quality)
{
    QImage picture;
    try {
        const CheckedPicture checked = checkPicture(from);
        picture = decodePicture(checked, largestPictureSide, from);
        if (checked.info.format == "jpeg" && checked.orientation == 1 && !isLarge(picture.size())) {
            const QImage opaque = OpaqueImage(picture);
            const QRect ink = margins == Margins::Trim ? InkArea(opaque) : opaque.rect();
            const QMargins margin(ink.left(), ink.top(), opaque.width() - 1 - ink.right(),
                                  opaque.height() - 1 - ink.bottom());
            if (std::max({margin.left(), margin.top(), margin.right(), margin.bottom()}) <
                narrowMargin) {
                writeBytes(WithoutMetadata(checked.bytes), to);
                return;
            }
        }
    } catch (const PictureError& failure) {
        picture = failure.fault() == PictureFault::Damaged ? readOther(from) : QImage();
        if (picture.isNull()) {
            throw;
        }
    }
    WriteNormalPicture(picture, to, margins, quality);
}

} // namespace varnholt
