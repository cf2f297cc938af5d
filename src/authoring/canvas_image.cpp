#include "authoring/canvas_image.h"

#include "imaging/row_scaler.h"

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

/// Before writing to pixels that may be shared: the copy that the first write makes by itself
/// fails without a word.
void ownPixels(QImage& image)
{
    if (image.isDetached()) {
        return;
    }
    QImage own = image.copy();
    if (own.isNull()) {
        throw std::bad_alloc();
    }
    image = std::move(own);
}

/// Start and length of the part of [start, start + length) inside [0, size).
std::pair<int, int> clipped(std::int64_t start, std::int64_t length, int size)
{
    const std::int64_t first = std::clamp<std::int64_t>(start, 0, size);
    const std::int64_t end = std::clamp<std::int64_t>(start + length, first, size);
    return {static_cast<int>(first), static_cast<int>(end - first)};
}

} // namespace

QImage BlankImage(QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    if (image.isNull()) {
        throw std::bad_alloc();
    }
    image.fill(background);
    return image;
}

QImage OpaqueImage(const QImage& picture)
{
    QImage plain;
    if (picture.hasAlphaChannel()) {
        plain = BlankImage(picture.size());
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

void DrawRegion(QImage& image, const QImage& source, std::int32_t sourceX, std::int32_t sourceY,
                std::int32_t width, std::int32_t height, std::int32_t x, std::int32_t y)
{
    // First what the source has of the region, then what of that falls on the image.
    const auto overlap = [](std::int64_t from, std::int64_t length, int sourceSize, std::int64_t to,
                            int size) {
        const auto [inSource, available] =
            clipped(from, std::max<std::int64_t>(length, 0), sourceSize);
        const auto [start, count] = clipped(to + (inSource - from), available, size);
        return std::array<int, 3>{static_cast<int>(start - to + from), start, count};
    };
    const auto [fromX, toX, columns] = overlap(sourceX, width, source.width(), x, image.width());
    const auto [fromY, toY, rows] = overlap(sourceY, height, source.height(), y, image.height());
    if (columns <= 0 || rows <= 0) {
        return;
    }
    Q_ASSERT(source.format() == QImage::Format_RGB32);
    // Held so that drawing an image onto itself reads what was there before.
    // NOLINTNEXTLINE(performance-unnecessary-copy-initialization)
    const QImage kept = source;
    ownPixels(image);
    for (int row = 0; row < rows; ++row) {
        std::memcpy(image.scanLine(toY + row) + 4 * static_cast<std::ptrdiff_t>(toX),
                    kept.constScanLine(fromY + row) + 4 * static_cast<std::ptrdiff_t>(fromX),
                    4 * static_cast<std::size_t>(columns));
    }
}

void BlankRegion(QImage& image, std::int32_t x, std::int32_t y, std::int32_t width,
                 std::int32_t height)
{
    const auto [left, columns] = clipped(x, width, image.width());
    const auto [top, rows] = clipped(y, height, image.height());
    if (columns == 0 || rows == 0) {
        return;
    }
    ownPixels(image);
    for (int row = top; row < top + rows; ++row) {
        std::fill_n(reinterpret_cast<QRgb*>(image.scanLine(row)) + left, columns, background);
    }
}

void PrintLine(QImage& image, std::int32_t x, std::int32_t y, const QString& text,
               const QFont& font)
{
    ownPixels(image);
    QPainter painter(&image);
    painter.setFont(font);
    painter.setPen(Qt::black);
    painter.drawText(QPointF(x, y + QFontMetricsF(font, &image).ascent()), text);
}

QImage ScaledByArea(const QImage& image, const QRect& area, QSize size)
{
    Q_ASSERT(image.format() == QImage::Format_RGB32 && image.rect().contains(area));
    QImage scaled = BlankImage(size);
    // The rows of a view are counted from the lowest one: what the scaler sees stands on its head,
    // and so it gets put back.
    const BitmapView view{image.constBits(),
                          image.width(),
                          image.height(),
                          32,
                          static_cast<std::size_t>(image.bytesPerLine()),
                          nullptr};
    const PixelRect turned{area.x(), image.height() - area.y() - area.height(), area.width(),
                           area.height()};
    RowScaler scaler(view, turned, size.width(), size.height(), Scaling::AreaOrLinear);
    std::vector<std::uint8_t> line(3 * static_cast<std::size_t>(size.width()));
    for (int y = 0; y < size.height(); ++y) {
        scaler.row(y, line.data());
        auto* out = reinterpret_cast<QRgb*>(scaled.scanLine(size.height() - 1 - y));
        const std::uint8_t* in = line.data();
        for (int x = 0; x < size.width(); ++x, in += 3) {
            out[x] = qRgb(in[2], in[1], in[0]);
        }
    }
    return scaled;
}

QRect ChangedArea(const QImage& before, const QImage& after)
{
    const int width = before.width();
    int top = 0;
    int bottom = before.height() - 1;
    const auto row = [](const QImage& image, int y) {
        return reinterpret_cast<const QRgb*>(image.constScanLine(y));
    };
    const auto same = [&](int y) {
        return std::equal(row(before, y), row(before, y) + width, row(after, y));
    };
    while (top <= bottom && same(top)) {
        ++top;
    }
    while (bottom > top && same(bottom)) {
        --bottom;
    }
    int left = width;
    int right = -1;
    for (int y = top; y <= bottom; ++y) {
        const QRgb* a = row(before, y);
        const QRgb* b = row(after, y);
        left = static_cast<int>(std::mismatch(a, a + left, b).first - a);
        int last = width - 1;
        while (last > right && a[last] == b[last]) {
            --last;
        }
        right = std::max(right, last);
    }
    return {left, top, std::max(right - left + 1, 0), std::max(bottom - top + 1, 0)};
}

} // namespace varnholt
