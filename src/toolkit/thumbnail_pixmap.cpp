#include "toolkit/thumbnail_pixmap.h"

#include <QPainter>

namespace varnholt {

QPixmap ThumbnailPixmap(const QImage& picture, QSize place, qreal pixelRatio)
{
    QPixmap pixmap(place * pixelRatio);
    pixmap.setDevicePixelRatio(pixelRatio);
    pixmap.fill(Qt::transparent);
    if (!picture.isNull()) {
        const QSizeF size = QSizeF(picture.size()).scaled(place, Qt::KeepAspectRatio);
        const QRectF middle(
            QPointF((place.width() - size.width()) / 2, (place.height() - size.height()) / 2),
            size);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.fillRect(middle, Qt::white);
        painter.drawImage(middle, picture);
    }
    return pixmap;
}

} // namespace varnholt
