#include "pictures/picture_info.h"

#include "store/errors.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QImageReader>
#include <QImageWriter>
#include <QtEndian>

#include <algorithm>
#include <mutex>
#include <optional>

namespace varnholt {

namespace {

constexpr double defaultDotsPerInch = 96;
constexpr double pointsPerInch = 72;

[[noreturn]] void fail(const QString& path, const QString& why)
{
    throw Error(QStringLiteral("The picture \"%1\" %2.").arg(QDir::toNativeSeparators(path), why));
}

/// Random access to a file through one small window, so that headers are read in few calls
/// and the pixels between them not at all.
class FileWindow
{
public:
    explicit FileWindow(const QString& path)
        : path_(path)
        , file_(path)
    {
        if (!file_.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
            fail(path, file_.exists() ? QStringLiteral("cannot be read")
                                      : QStringLiteral("does not exist"));
        }
        size_ = file_.size();
        if (size_ == 0) {
            fail(path, QStringLiteral("is empty"));
        }
    }

    [[nodiscard]] qint64 size() const { return size_; }

    /// `count` bytes from `position`, valid until the next call. A file that ends before
    /// that is cut off.
    const uchar* bytes(qint64 position, qint64 count)
    {
        if (position < start_ || position + count > start_ + window_.size()) {
            start_ = position;
            if (position + count > size_ || !file_.seek(position)) {
                failCutOff();
            }
            window_ = file_.read(std::max(count, windowSize));
            if (window_.size() < count) {
                failCutOff();
            }
        }
        return reinterpret_cast<const uchar*>(window_.constData()) + (position - start_);
    }

    quint16 big16(qint64 position) { return qFromBigEndian<quint16>(bytes(position, 2)); }
    quint32 big32(qint64 position) { return qFromBigEndian<quint32>(bytes(position, 4)); }
    quint16 little16(qint64 position) { return qFromLittleEndian<quint16>(bytes(position, 2)); }
    quint32 little32(qint64 position) { return qFromLittleEndian<quint32>(bytes(position, 4)); }

    bool startsWith(QByteArrayView magic)
    {
        return size_ >= magic.size() && at(0, magic.size()) == magic;
    }
    QByteArrayView at(qint64 position, qint64 count) { return {bytes(position, count), count}; }

    /// Whether `mark` stands anywhere from `from` on. Looks at the end first, where it is in
    /// every whole file that nothing was appended to.
    bool containsNearEnd(QByteArrayView mark, qint64 from)
    {
        qint64 last = size_;
        while (last - from >= mark.size()) {
            const qint64 first = std::max(from, last - windowSize);
            if (at(first, last - first).contains(mark)) {
                return true;
            }
            if (first == from) {
                break;
            }
            last = first + mark.size() - 1;
        }
        return false;
    }

    [[noreturn]] void failCutOff() const { fail(path_, QStringLiteral("is cut off")); }
    [[noreturn]] void failNoPicture() const
    {
        fail(path_, QStringLiteral("is not a JPEG, PNG, GIF or BMP picture"));
    }

private:
    static constexpr qint64 windowSize = 4096;

    QString path_;
    QFile file_;
    qint64 size_ = 0;
    qint64 start_ = 0;
    QByteArray window_;
};

struct Header
{
    QByteArray format;
    QSize pixels;
    /// Dots per inch; not above 0 where the file gives none.
    double densityX = 0;
    double densityY = 0;
    /// As Exif counts: 1 upright, 2 to 8 mirrored and turned, 5 to 8 with the sides swapped.
    int orientation = 1;
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

/// A frame header of any coding process (ITU-T T.81 table B.1).
bool isFrameMarker(int marker)
{
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

Header readJpegHeader(FileWindow& file)
{
    Header header;
    header.format = "jpeg";
    qint64 position = 2;
    for (;;) {
        if (*file.bytes(position, 1) != 0xFF) {
            file.failNoPicture();
        }
        const int marker = *file.bytes(position + 1, 1);
        if (marker == 0xFF) {
            ++position;
            continue;
        }
        const qint64 length = file.big16(position + 2);
        const qint64 data = position + 4;
        if (marker == 0xE0 && length >= 14 && file.at(data, 5) == QByteArrayView("JFIF\0", 5)) {
            const int unit = *file.bytes(data + 7, 1);
            const double perInch = unit == 1 ? 1 : unit == 2 ? 2.54 : 0;
            if (perInch > 0) {
                header.densityX = file.big16(data + 8) * perInch;
                header.densityY = file.big16(data + 10) * perInch;
            }
        } else if (marker == 0xE1 && length >= 16 &&
                   file.at(data, 6) == QByteArrayView("Exif\0\0", 6)) {
            ExifReader(file.at(data + 6, length - 8)).readInto(header);
        } else if (isFrameMarker(marker) && length >= 8) {
            header.pixels = QSize(file.big16(data + 3), file.big16(data + 1));
        } else if (marker == 0xDA) {
            break;
        }
        position = data - 2 + length;
    }
    if (header.pixels.isEmpty()) {
        file.failNoPicture();
    }
    if (!file.containsNearEnd("\xFF\xD9", position)) {
        file.failCutOff();
    }
    return header;
}

Header readPngHeader(FileWindow& file)
{
    Header header;
    header.format = "png";
    header.pixels = QSize(int(std::min(file.big32(16), 0x7FFFFFFFu)),
                          int(std::min(file.big32(20), 0x7FFFFFFFu)));
    for (qint64 chunk = 8; file.at(chunk + 4, 4) != "IDAT";) {
        if (file.at(chunk + 4, 4) == "pHYs" && *file.bytes(chunk + 16, 1) == 1) {
            constexpr double inchesPerMetre = 1 / 0.0254;
            header.densityX = file.big32(chunk + 8) / inchesPerMetre;
            header.densityY = file.big32(chunk + 12) / inchesPerMetre;
        }
        chunk += 12 + qint64(file.big32(chunk));
    }
    if (!file.containsNearEnd("IEND\xAE\x42\x60\x82", 8)) {
        file.failCutOff();
    }
    return header;
}

Header readGifHeader(FileWindow& file)
{
    Header header;
    header.format = "gif";
    header.pixels = QSize(file.little16(6), file.little16(8));
    if (*file.bytes(file.size() - 1, 1) != 0x3B) {
        file.failCutOff();
    }
    return header;
}

Header readBmpHeader(FileWindow& file)
{
    Header header;
    header.format = "bmp";
    // Rows from the top downwards are marked by a negative height.
    const qint64 height = qint32(file.little32(22));
    header.pixels =
        QSize(qint32(file.little32(18)), int(std::min<qint64>(std::abs(height), 0x7FFFFFFF)));
    header.densityX = qint32(file.little32(38)) * 0.0254;
    header.densityY = qint32(file.little32(42)) * 0.0254;
    if (file.size() < qint64(file.little32(2))) {
        file.failCutOff();
    }
    return header;
}

Header readHeader(FileWindow& file)
{
    if (file.startsWith("\xFF\xD8\xFF")) {
        return readJpegHeader(file);
    }
    if (file.startsWith("\x89PNG\r\n\x1A\n")) {
        return readPngHeader(file);
    }
    if (file.startsWith("GIF8")) {
        return readGifHeader(file);
    }
    if (file.startsWith("BM") && file.size() > 54 && file.little32(14) >= 40) {
        return readBmpHeader(file);
    }
    file.failNoPicture();
}

/// Outside of this it is a slip of the program that wrote the file, not a density.
bool isDensity(double dotsPerInch)
{
    return dotsPerInch >= 1 && dotsPerInch <= 200'000;
}

QByteArray turnedUpright(const QString& path)
{
    QImageReader reader(path);
    reader.setAutoTransform(true);
    reader.setDecideFormatFromContent(true);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    QImageWriter writer(&buffer, "jpeg");
    writer.setQuality(95);
    if (!writer.write(reader.read())) {
        fail(path, QStringLiteral("cannot be decoded"));
    }
    return bytes;
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

PictureInfo readPictureInfo(const QString& path)
{
    FileWindow file(path);
    Header header = readHeader(file);
    const QSize pixels = header.pixels;
    if (pixels.isEmpty()) {
        file.failNoPicture();
    }
    if (std::max(pixels.width(), pixels.height()) > largestPictureSide ||
        qint64(pixels.width()) * pixels.height() > largestPictureArea) {
        fail(path, QStringLiteral("is too large for a slide (%1 × %2 pixels)")
                       .arg(pixels.width())
                       .arg(pixels.height()));
    }
    AllowLargePictures();
    // Rare kinds whose headers say little: decoded once rather than judged by four numbers.
    if ((header.format == "gif" || header.format == "bmp") &&
        QImageReader(path, header.format).read().isNull()) {
        fail(path, QStringLiteral("cannot be decoded"));
    }
    const bool given = isDensity(header.densityX) && isDensity(header.densityY);
    const double x = given ? header.densityX : defaultDotsPerInch;
    const double y = given ? header.densityY : defaultDotsPerInch;
    PictureInfo info;
    info.format = header.format;
    info.pixels = pixels;
    info.points = QSizeF(pixels.width() / x, pixels.height() / y) * pointsPerInch;
    if (header.orientation != 1) {
        info.uprightJpeg = turnedUpright(path);
        if (header.orientation >= 5) {
            info.pixels.transpose();
            info.points.transpose();
        }
    }
    return info;
}

} // namespace varnholt
