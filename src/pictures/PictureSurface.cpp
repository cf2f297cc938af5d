#include "pictures/PictureSurface.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <utility>

namespace varnholt {

namespace {

constexpr QRgb background = 0xFFFFFFFF;
/// Inverts the colour and leaves the unused byte alone.
constexpr QRgb inversion = 0x00FFFFFF;

QImage blank(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    if (image.isNull()) {
        throw std::bad_alloc();
    }
    image.fill(background);
    return image;
}

/// The picture as 32-bit RGB, transparent parts on white.
QImage opaque(const QImage& picture)
{
    QImage plain;
    if (picture.hasAlphaChannel()) {
        plain = blank(picture.size());
        QImage unscaled = picture;
        unscaled.setDevicePixelRatio(1);
        QPainter(&plain).drawImage(0, 0, unscaled);
    } else {
        plain = picture.convertToFormat(QImage::Format_RGB32);
        plain.setDevicePixelRatio(1);
    }
    if (plain.isNull()) {
        throw std::bad_alloc();
    }
    return plain;
}

/// Start and length of the part of [start, start + length) inside [0, size).
std::pair<int, int> clipped(std::int64_t start, std::int64_t length, int size)
{
    const std::int64_t first = std::clamp<std::int64_t>(start, 0, size);
    const std::int64_t end = std::clamp<std::int64_t>(start + length, first, size);
    return {static_cast<int>(first), static_cast<int>(end - first)};
}

} // namespace

PictureSurface::PictureSurface(QSize innerSize, int border)
    : border_(border)
{
    reset(innerSize);
}

void PictureSurface::setPicture(const QImage& picture)
{
    if (picture.isNull()) {
        clearPicture();
        return;
    }
    picture_ = opaque(picture);
    image_ = picture_;
    changed_ = image_.rect();
}

void PictureSurface::clearPicture()
{
    picture_ = QImage();
    image_ = blank(image_.size());
    changed_ = image_.rect();
}

void PictureSurface::fixImage()
{
    picture_ = image_;
}

void PictureSurface::reset(QSize innerSize)
{
    picture_ = QImage();
    image_ = blank(innerSize.expandedTo({1, 1}));
    changed_ = image_.rect();
}

void PictureSurface::growOuter(int width, int height)
{
    const QSize wanted = image_.size().expandedTo({width - 2 * border_, height - 2 * border_});
    if (wanted == image_.size()) {
        return;
    }
    const QImage before = std::exchange(image_, blank(wanted));
    drawRegion(before, 0, 0, before.width(), before.height(), 0, 0);
    changed_ = image_.rect();
}

void PictureSurface::drawFrame(std::int32_t x1, std::int32_t y1, std::int32_t x2, std::int32_t y2)
{
    // Clipping comes first: corners may lie anywhere in the 32-bit range.
    const auto strip = [this](std::int64_t left, std::int64_t top, std::int64_t right,
                              std::int64_t bottom) {
        const auto [x, width] = clipped(left, right - left + 1, innerWidth());
        const auto [y, height] = clipped(top, bottom - top + 1, innerHeight());
        invert({x, y, width, height});
    };
    const std::int64_t left = std::min(x1, x2);
    const std::int64_t right = std::max(x1, x2);
    const std::int64_t top = std::min(y1, y2);
    const std::int64_t bottom = std::max(y1, y2);
    if (left == right && top == bottom) {
        return;
    }
    strip(left, top, right, top);
    if (bottom > top) {
        strip(left, bottom, right, bottom);
        strip(left, top + 1, left, bottom - 1);
        if (right > left) {
            strip(right, top + 1, right, bottom - 1);
        }
    }
}

void PictureSurface::invert(const QRect& strip)
{
    if (strip.isEmpty()) {
        return;
    }
    ownPixels();
    for (int y = strip.top(); y <= strip.bottom(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image_.scanLine(y));
        for (int x = strip.left(); x <= strip.right(); ++x) {
            row[x] ^= inversion;
        }
    }
    changed(strip);
}

void PictureSurface::drawRegion(const QImage& source, std::int32_t sourceX, std::int32_t sourceY,
                                std::int32_t width, std::int32_t height, std::int32_t x,
                                std::int32_t y)
{
    // First what the source has of the region, then what of that falls on the image.
    const auto overlap = [](std::int64_t from, std::int64_t length, int sourceSize, std::int64_t to,
                            int size) {
        const auto [inSource, available] =
            clipped(from, std::max<std::int64_t>(length, 0), sourceSize);
        const auto [start, count] = clipped(to + (inSource - from), available, size);
        return std::array<int, 3>{static_cast<int>(start - to + from), start, count};
    };
    const auto [fromX, toX, columns] = overlap(sourceX, width, source.width(), x, innerWidth());
    const auto [fromY, toY, rows] = overlap(sourceY, height, source.height(), y, innerHeight());
    if (columns <= 0 || rows <= 0) {
        return;
    }
    Q_ASSERT(source.format() == QImage::Format_RGB32);
    // Held so that drawing a surface onto itself reads what was there before.
    const QImage kept = source;
    ownPixels();
    for (int row = 0; row < rows; ++row) {
        std::memcpy(image_.scanLine(toY + row) + 4 * static_cast<std::ptrdiff_t>(toX),
                    kept.constScanLine(fromY + row) + 4 * static_cast<std::ptrdiff_t>(fromX),
                    4 * static_cast<std::size_t>(columns));
    }
    changed({toX, toY, columns, rows});
}

void PictureSurface::blankRegion(std::int32_t x, std::int32_t y, std::int32_t width,
                                 std::int32_t height)
{
    const auto [left, columns] = clipped(x, width, innerWidth());
    const auto [top, rows] = clipped(y, height, innerHeight());
    if (columns == 0 || rows == 0) {
        return;
    }
    ownPixels();
    for (int row = top; row < top + rows; ++row) {
        auto* line = reinterpret_cast<QRgb*>(image_.scanLine(row));
        std::fill_n(line + left, columns, background);
    }
    changed({left, top, columns, rows});
}

void PictureSurface::printText(std::int32_t x, std::int32_t y, const QString& text,
                               const QFont& font)
{
    ownPixels();
    QPainter painter(&image_);
    painter.setFont(font);
    painter.setPen(Qt::black);
    painter.drawText(QPointF(x, y + QFontMetricsF(font, &image_).ascent()), text);
    changed(image_.rect());
}

void PictureSurface::ownPixels()
{
    if (image_.isDetached()) {
        return;
    }
    QImage own = image_.copy();
    if (own.isNull()) {
        throw std::bad_alloc();
    }
    image_ = std::move(own);
}

QRegion PictureSurface::takeChanged()
{
    return std::exchange(changed_, QRegion());
}

void PictureSurface::changed(const QRect& area)
{
    changed_ += area;
}

} // namespace varnholt
