#include "pictures/picture_info.h"

#include "pictures/jpeg_structure.h"
#include "pictures/stoppable_bytes.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>
#include <QtEndian>

#include <algorithm>
#include <mutex>
#include <optional>

#include <zlib.h>

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(Picture)
};

constexpr double defaultDotsPerInch = 96;
constexpr double pointsPerInch = 72;
/// More than any of the four formats can express in a byte.
constexpr qint64 mostPixelsPerByte = 10'000;

constexpr auto noPicture =
    QT_TRANSLATE_NOOP("Picture", "The picture \"%1\" is not a JPEG, PNG, GIF or BMP picture.");

/// The sentence has %1 for the picture's name.
[[noreturn]] void fail(PictureFault fault, const QString& path, const QString& sentence)
{
    throw PictureError(fault, sentence.arg(QDir::toNativeSeparators(path)));
}

QByteArray readWhole(const QString& path)
{
    // Opening a pipe or a device of that name could wait for ever.
    const QFileInfo info(path);
    if (!info.exists()) {
        fail(PictureFault::Missing, path, Words::tr("The picture \"%1\" does not exist."));
    }
    QFile file(path);
    if (!info.isFile() || !file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        fail(PictureFault::Unreadable, path, Words::tr("The picture \"%1\" cannot be read."));
    }
    if (file.size() > largestPictureFile) {
        fail(PictureFault::TooLarge, path, Words::tr("The picture \"%1\" is too large a file."));
    }
    if (file.size() == 0) {
        fail(PictureFault::Damaged, path, Words::tr("The picture \"%1\" is empty."));
    }
    QByteArray bytes = file.readAll();
    if (bytes.size() != file.size()) {
        fail(PictureFault::Unreadable, path,
             Words::tr("The picture \"%1\" cannot be read to its end."));
    }
    return bytes;
}

struct Header
{
    QByteArray format;
    QSize pixels;
    /// Dots per inch; not above 0 where the file gives none.
    double densityX = 0;
    double densityY = 0;
    /// As Exif counts: 1 upright, 2 to 8 mirrored and turned, 5 to 8 with the sides swapped.
    int orientation = 1;
    /// Rounds through the picture that decoding takes.
    int scans = 1;
};

/// The few entries of a TIFF directory that matter here (TIFF 6.0 section 2; Exif 2.32 4.6).
class ExifReader
{
public:
    explicit ExifReader(QByteArrayView tiff)
        : tiff_(tiff)
        , bigEndian_(tiff.startsWith("MM"))
    {}

    void readInto(Header& header) const
    {
        const auto directory = u32(4);
        const auto count = directory ? u16(*directory) : std::nullopt;
        double unit = 2;
        double x = 0;
        double y = 0;
        for (quint32 i = 0; count && i < *count; ++i) {
            const quint32 entry = *directory + 2 + 12 * i;
            const auto tag = u16(entry);
            if (!tag) {
                return;
            }
            switch (*tag) {
            case 0x0112:
                header.orientation = u16(entry + 8).value_or(1);
                break;
            case 0x011A:
                x = rational(entry);
                break;
            case 0x011B:
                y = rational(entry);
                break;
            case 0x0128:
                unit = u16(entry + 8).value_or(2);
                break;
            default:
                break;
            }
        }
        if (header.orientation < 1 || header.orientation > 8) {
            header.orientation = 1;
        }
        if (header.densityX <= 0 && (unit == 2 || unit == 3)) {
            const double perInch = unit == 3 ? 2.54 : 1;
            header.densityX = x * perInch;
            header.densityY = y * perInch;
        }
    }

private:
    [[nodiscard]] std::optional<quint16> u16(quint32 position) const
    {
        if (qint64(position) + 2 > tiff_.size()) {
            return std::nullopt;
        }
        const char* p = tiff_.data() + position;
        return bigEndian_ ? qFromBigEndian<quint16>(p) : qFromLittleEndian<quint16>(p);
    }
    [[nodiscard]] std::optional<quint32> u32(quint32 position) const
    {
        if (qint64(position) + 4 > tiff_.size()) {
            return std::nullopt;
        }
        const char* p = tiff_.data() + position;
        return bigEndian_ ? qFromBigEndian<quint32>(p) : qFromLittleEndian<quint32>(p);
    }
    [[nodiscard]] double rational(quint32 entry) const
    {
        const quint32 position = u32(entry + 8).value_or(0);
        const quint32 divisor = u32(position + 4).value_or(0);
        return divisor == 0 ? 0 : double(u32(position).value_or(0)) / divisor;
    }

    QByteArrayView tiff_;
    bool bigEndian_;
};

/// The numbers of a file that may end too early.
class Fields
{
public:
    explicit Fields(QByteArrayView bytes)
        : bytes_(bytes)
    {}

    QByteArrayView at(qint64 position, qint64 count) const
    {
        if (position < 0 || position + count > bytes_.size()) {
            throw BadStructure(BadStructure::cutOff);
        }
        return bytes_.sliced(position, count);
    }
    quint8 byte(qint64 position) const { return quint8(at(position, 1)[0]); }
    quint32 big32(qint64 position) const { return qFromBigEndian<quint32>(at(position, 4).data()); }
    quint16 little16(qint64 position) const
    {
        return qFromLittleEndian<quint16>(at(position, 2).data());
    }
    quint32 little32(qint64 position) const
    {
        return qFromLittleEndian<quint32>(at(position, 4).data());
    }

private:
    QByteArrayView bytes_;
};

Header readJpegHeader(QByteArrayView bytes)
{
    const JpegStructure structure = readJpegStructure(bytes);
    Header header;
    header.format = "jpeg";
    header.pixels = structure.pixels;
    header.scans = structure.scans;
    if (!structure.jfif.isEmpty()) {
        const Fields jfif(structure.jfif);
        const int unit = jfif.byte(7);
        const double perInch = unit == 1 ? 1 : unit == 2 ? 2.54 : 0;
        header.densityX = qFromBigEndian<quint16>(jfif.at(8, 2).data()) * perInch;
        header.densityY = qFromBigEndian<quint16>(jfif.at(10, 2).data()) * perInch;
    }
    if (!structure.exif.isEmpty()) {
        ExifReader(structure.exif.sliced(6)).readInto(header);
    }
    return header;
}

/// PNG (ISO/IEC 15948) 11.2.2: the bit depths that go with a colour type.
bool isPngKind(int colourType, int depth)
{
    switch (colourType) {
    case 0:
        return depth == 1 || depth == 2 || depth == 4 || depth == 8 || depth == 16;
    case 3:
        return depth == 1 || depth == 2 || depth == 4 || depth == 8;
    case 2:
    case 4:
    case 6:
        return depth == 8 || depth == 16;
    default:
        return false;
    }
}

Header readPngHeader(QByteArrayView bytes)
{
    const Fields file(bytes);
    Header header;
    header.format = "png";
    bool palette = false;
    bool data = false;
    for (qint64 chunk = 8;;) {
        const qint64 length = file.big32(chunk);
        const QByteArrayView name = file.at(chunk + 4, 4);
        const qint64 content = chunk + 8;
        const QByteArrayView summed = file.at(chunk + 4, length + 4);
        const bool critical = (name[0] & 0x20) == 0;
        const bool named = std::all_of(name.begin(), name.end(), [](char letter) {
            return (letter >= 'A' && letter <= 'Z') || (letter >= 'a' && letter <= 'z');
        });
        if (!named) {
            throw BadStructure(BadStructure::damaged);
        }
        if (critical && crc32_z(0, reinterpret_cast<const Bytef*>(summed.data()),
                                size_t(summed.size())) != file.big32(content + length)) {
            throw BadStructure(BadStructure::damaged);
        }
        if (chunk == 8) {
            if (name != "IHDR" || length != 13 ||
                !isPngKind(file.byte(content + 9), file.byte(content + 8)) ||
                file.byte(content + 10) != 0 || file.byte(content + 11) != 0 ||
                file.byte(content + 12) > 1) {
                throw BadStructure(BadStructure::damaged);
            }
            header.pixels = QSize(int(std::min(file.big32(content), 0x7FFFFFFFu)),
                                  int(std::min(file.big32(content + 4), 0x7FFFFFFFu)));
        } else if (name == "pHYs" && length == 9 && file.byte(content + 8) == 1) {
            constexpr double inchesPerMetre = 1 / 0.0254;
            header.densityX = file.big32(content) / inchesPerMetre;
            header.densityY = file.big32(content + 4) / inchesPerMetre;
        } else if (name == "PLTE") {
            palette = true;
        } else if (name == "IDAT") {
            data = data || palette || file.byte(25) != 3;
        } else if (name == "IEND") {
            if (!data) {
                throw BadStructure(BadStructure::damaged);
            }
            return header;
        } else if (critical) {
            throw BadStructure(BadStructure::damaged);
        }
        chunk = content + length + 4;
    }
}

Header readGifHeader(QByteArrayView bytes)
{
    const Fields file(bytes);
    Header header;
    header.format = "gif";
    header.pixels = QSize(file.little16(6), file.little16(8));
    if (file.byte(bytes.size() - 1) != 0x3B) {
        throw BadStructure(BadStructure::cutOff);
    }
    return header;
}

Header readBmpHeader(QByteArrayView bytes)
{
    const Fields file(bytes);
    Header header;
    header.format = "bmp";
    // Rows from the top downwards are marked by a negative height.
    const qint64 height = qint32(file.little32(22));
    header.pixels =
        QSize(qint32(file.little32(18)), int(std::min<qint64>(std::abs(height), 0x7FFFFFFF)));
    header.densityX = qint32(file.little32(38)) * 0.0254;
    header.densityY = qint32(file.little32(42)) * 0.0254;
    if (bytes.size() < qint64(file.little32(2))) {
        throw BadStructure(BadStructure::cutOff);
    }
    return header;
}

Header readHeader(QByteArrayView bytes)
{
    if (bytes.startsWith("\xFF\xD8\xFF")) {
        return readJpegHeader(bytes);
    }
    if (bytes.startsWith("\x89PNG\r\n\x1A\n")) {
        return readPngHeader(bytes);
    }
    if (bytes.startsWith("GIF8")) {
        return readGifHeader(bytes);
    }
    if (bytes.startsWith("BM") && bytes.size() > 54 && Fields(bytes).little32(14) >= 40) {
        return readBmpHeader(bytes);
    }
    throw BadStructure(noPicture);
}

/// Outside of this it is a slip of the program that wrote the file, not a density.
bool isDensity(double dotsPerInch)
{
    return dotsPerInch >= 1 && dotsPerInch <= 200'000;
}

QImage read(const CheckedPicture& picture, int longestSide, const QString& path,
            const std::atomic<bool>* stop = nullptr)
{
    AllowLargePictures();
    StoppableBytes device(picture.bytes, stop);
    QImageReader reader(&device, picture.info.format);
    reader.setAutoTransform(true);
    const QSize size = picture.info.pixels;
    if (size.width() > longestSide || size.height() > longestSide) {
        reader.setScaledSize(
            size.scaled(longestSide, longestSide, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
    }
    QImage image = reader.read();
    if (image.isNull()) {
        fail(PictureFault::Damaged, path, Words::tr("The picture \"%1\" cannot be decoded."));
    }
    return image;
}

} // namespace

void AllowLargePictures()
{
    static std::once_flag done;
    std::call_once(done, [] {
        constexpr qint64 bytesPerPixel = 4;
        constexpr qint64 megabyte = 1024 * 1024;
        QImageReader::setAllocationLimit(int(largestPictureArea * bytesPerPixel / megabyte) + 1);
    });
}

CheckedPicture checkPicture(const QString& path)
{
    CheckedPicture picture;
    picture.bytes = readWhole(path);
    Header header;
    try {
        header = readHeader(picture.bytes);
        if (header.pixels.isEmpty()) {
            throw BadStructure(noPicture);
        }
    } catch (const BadStructure& fault) {
        fail(PictureFault::Damaged, path, Words::tr(fault.what()));
    }
    const QSize pixels = header.pixels;
    const qint64 area = qint64(pixels.width()) * pixels.height();
    if (area / mostPixelsPerByte > picture.bytes.size()) {
        fail(PictureFault::Damaged, path, Words::tr(BadStructure::damaged));
    }
    // A progressive JPEG is kept whole while its scans refine it.
    const bool wholeInMemory = header.format != "jpeg" || header.scans > 1;
    picture.work = area * header.scans;
    if (std::max(pixels.width(), pixels.height()) > largestPictureSide ||
        area > (wholeInMemory ? largestWholeArea : largestPictureArea) ||
        picture.work > largestDecodingWork) {
        fail(PictureFault::TooLarge, path,
             Words::tr("The picture \"%1\" is too large for a slide (%2 × %3 pixels).")
                 .arg(QStringLiteral("%1"), QString::number(pixels.width()),
                      QString::number(pixels.height())));
    }
    const bool given = isDensity(header.densityX) && isDensity(header.densityY);
    const double x = given ? header.densityX : defaultDotsPerInch;
    const double y = given ? header.densityY : defaultDotsPerInch;
    picture.orientation = header.orientation;
    picture.info.format = header.format;
    picture.info.pixels = pixels;
    picture.info.points = QSizeF(pixels.width() / x, pixels.height() / y) * pointsPerInch;
    return picture;
}

QImage decodePicture(const CheckedPicture& picture, int longestSide, const QString& path,
                     const std::atomic<bool>* stop)
{
    const QImage image = read(picture, longestSide, path, stop);
    return image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                         : QImage::Format_RGB32);
}

PictureInfo readPictureInfo(const QString& path)
{
    const CheckedPicture picture = checkPicture(path);
    PictureInfo info = picture.info;
    if (picture.orientation != 1) {
        QBuffer buffer(&info.uprightJpeg);
        QImageWriter writer(&buffer, "jpeg");
        writer.setQuality(95);
        if (!writer.write(read(picture, largestPictureSide, path))) {
            fail(PictureFault::Damaged, path,
                 Words::tr("The picture \"%1\" cannot be turned upright."));
        }
        if (picture.orientation >= 5) {
            info.pixels.transpose();
            info.points.transpose();
        }
    } else if (info.format == "gif" || info.format == "bmp") {
        static_cast<void>(read(picture, largestPictureSide, path));
    }
    return info;
}

} // namespace varnholt
