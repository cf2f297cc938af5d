#pragma once

#include "paper/PaperLayout.h"

#include <functional>

class QImage;
class QPainter;

namespace varnholt {

/// A question's picture for the screen or the printer; null while there is none.
using PaperImages = std::function<QImage(std::size_t question)>;

/// Paints a page with a painter whose unit is a point and whose origin the page's upper left
/// corner. What is hidden in the layout is left out.
void PaintPaperPage(QPainter& painter, const PaperLayout::Page& page, const QString& fontFamily,
                    const PaperImages& imageOf);

} // namespace varnholt
