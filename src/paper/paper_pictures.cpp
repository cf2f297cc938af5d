#include "paper/paper_pictures.h"

#include "pictures/picture_info.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QImage>
#include <QPainter>

#include <new>

namespace varnholt {

namespace {

constexpr int jpegQuality = 92;

PaperPictureSize uprightSize(const CheckedPicture& picture)
{
    const bool turned = picture.orientation > 4;
    const QSizeF points = turned ? picture.info.points.transposed() : picture.info.points;
    return {points.width(), points.height()};
}

QByteArray asJpeg(const CheckedPicture& picture, const QString& path)
{
    QImage image = decodePicture(picture, largestPictureSide, path);
    if (image.hasAlphaChannel()) {
        QImage white(image.size(), QImage::Format_RGB32);
        white.fill(Qt::white);
        QPainter(&white).drawImage(0, 0, image);
        image = white;
    }
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "jpeg", jpegQuality);
    return bytes;
}

} // namespace

PaperPicture ReadPaperPicture(const QString& path)
{
    PaperPicture result;
    try {
        CheckedPicture picture = checkPicture(path);
        const PaperPictureSize size = uprightSize(picture);
        result.jpeg = picture.info.format == "jpeg" && picture.orientation == 1
                          ? std::move(picture.bytes)
                          : asJpeg(picture, path);
        result.size = size;
    } catch (const PictureError& error) {
        result.fault = error.message();
    } catch (const std::bad_alloc&) {
        result.fault = QCoreApplication::translate("PaperPictures",
                                                   "There is not enough memory for the picture %1.")
                           .arg(path);
    }
    return result;
}

std::vector<PaperPictureSize> ReadPaperPictureSizes(const PaperTest& test)
{
    std::vector<PaperPictureSize> sizes;
    sizes.reserve(test.questions.size());
    for (const PaperTest::Question& question : test.questions) {
        PaperPictureSize size;
        try {
            const CheckedPicture picture = checkPicture(question.picturePath);
            size = uprightSize(picture);
        } catch (const PictureError&) {
        }
        sizes.push_back(size);
    }
    return sizes;
}

} // namespace varnholt
