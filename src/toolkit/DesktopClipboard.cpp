#include "toolkit/DesktopClipboard.h"

#include "pictures/picture_info.h"
#include "store/errors.h"
#include "toolkit/clipboard_probe.h"

#include <QBuffer>
#include <QClipboard>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QGuiApplication>
#include <QImageReader>
#include <QMimeData>
#include <QUrl>

#include <algorithm>

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(DesktopClipboard)
};

/// How long all formats together are waited for once the first has brought nothing.
constexpr int patienceMs = 2000;
constexpr qint64 maxFileBytes = 512LL * 1024 * 1024;

void checkSize(QSize size)
{
    if (qint64{size.width()} * size.height() > maxClipboardPixels) {
        throw Error(Words::tr("The copied picture is too large: %1 by %2 pixels. Please copy a "
                              "smaller part of it.")
                        .arg(size.width())
                        .arg(size.height()));
    }
}

quint32 littleEndian32(const QByteArray& bytes, int position)
{
    quint32 value = 0;
    for (int i = 3; i >= 0; --i) {
        value = value << 8 | static_cast<quint8>(bytes[position + i]);
    }
    return value;
}

/// The decoders draw the missing part of a cut-off file grey or black and report success, so
/// the end is looked for first.
bool endsAsItShould(const QByteArray& bytes)
{
    if (bytes.startsWith("\x89PNG")) {
        return bytes.lastIndexOf("IEND") > 0;
    }
    if (bytes.startsWith("\xFF\xD8")) {
        return bytes.lastIndexOf("\xFF\xD9") > 0;
    }
    if (bytes.startsWith("BM") && bytes.size() >= 6) {
        return littleEndian32(bytes, 2) <= static_cast<quint32>(bytes.size());
    }
    return true;
}

QImage unscaled(QImage image)
{
    checkSize(image.size());
    image.setDevicePixelRatio(1);
    return image;
}

QImage decoded(const QByteArray& bytes)
{
    if (bytes.isEmpty() || !endsAsItShould(bytes)) {
        return {};
    }
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    reader.setAutoTransform(true);
    checkSize(reader.size());
    AllowLargePictures();
    return unscaled(reader.read());
}

QImage fromFiles(const QMimeData& data)
{
    const QList<QUrl> urls = data.urls();
    for (const QUrl& url : urls) {
        QFile file(url.toLocalFile());
        if (url.isLocalFile() && file.size() <= maxFileBytes && file.open(QIODevice::ReadOnly)) {
            const QImage image = decoded(file.readAll());
            if (!image.isNull()) {
                return image;
            }
        }
    }
    return {};
}

/// Offered picture formats; those that lose nothing and are quickest to read come first.
QStringList pictureFormats(const QMimeData& data)
{
    QStringList formats = data.formats().filter(QStringLiteral("image/"));
    const auto rank = [](const QString& format) {
        return format.endsWith(QStringLiteral("/png"))    ? 0
               : format.contains(QStringLiteral("bmp"))   ? 1
               : format.endsWith(QStringLiteral("/tiff")) ? 2
               : format.endsWith(QStringLiteral("/jpeg")) ? 4
                                                          : 3;
    };
    std::stable_sort(formats.begin(), formats.end(),
                     [rank](const QString& a, const QString& b) { return rank(a) < rank(b); });
    return formats;
}

} // namespace

bool mayHoldPicture(const QMimeData& data)
{
    return data.hasImage() || !pictureFormats(data).isEmpty() || data.hasUrls();
}

QImage pictureFrom(const QMimeData& data)
{
    // Raw bytes before the toolkit's own conversion, which takes half a picture for a whole.
    const QStringList formats = pictureFormats(data);
    QElapsedTimer waiting;
    waiting.start();
    for (const QString& format : formats) {
        const QImage image = decoded(data.data(format));
        if (!image.isNull()) {
            return image;
        }
        // A program that hangs would be waited for again with each further format.
        if (waiting.hasExpired(patienceMs)) {
            return {};
        }
    }
    if (formats.isEmpty() && data.hasImage()) {
        return unscaled(qvariant_cast<QImage>(data.imageData()));
    }
    return fromFiles(data);
}

bool DesktopClipboard::answers() const
{
    return ClipboardAnswers();
}

bool DesktopClipboard::hasImage() const
{
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    return data && mayHoldPicture(*data);
}

QImage DesktopClipboard::image() const
{
    const QMimeData* data = QGuiApplication::clipboard()->mimeData();
    return data ? pictureFrom(*data) : QImage();
}

} // namespace varnholt
