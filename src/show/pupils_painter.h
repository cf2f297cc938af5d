#pragma once

#include "show/Show.h"

#include <QImage>

class QPainter;

namespace varnholt {

/// A picture of a question, ready to be painted; both are null while there is none.
struct ShowPicture
{
    QImage whole;
    /// The same at the size in device pixels at which all of it is seen.
    QImage fitted;
};

/// Where the picture of a question stands in the pupils' window, or a smaller copy of it, of a
/// size: what is not used for the line above and the answer below.
[[nodiscard]] QRectF PupilsPictureRoom(const QSizeF& size);

/// Where all of a picture of a size in pixels would be painted, parts outside the window included.
[[nodiscard]] QRectF PupilsPictureRect(const QSizeF& size, QSize picture, const QRectF& zoom);

/// Paints what the pupils see, and nothing else, on a window, or a smaller copy of it, of a size.
/// Everything but the picture's own pixels keeps its proportions.
void PaintPupilsView(QPainter& painter, const QSizeF& size, const PupilsView& view,
                     const ShowPicture& picture);

} // namespace varnholt
