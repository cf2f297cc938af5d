#pragma once

#include <QImage>
#include <QPixmap>

namespace varnholt {

/// A small picture for a row of a list, in the middle of a place of `place` device-independent
/// pixels: white behind what is transparent, as on a slide. Without a picture the place is empty,
/// and kept, so that nothing moves when the picture comes.
[[nodiscard]] QPixmap ThumbnailPixmap(const QImage& picture, QSize place, qreal pixelRatio);

} // namespace varnholt
