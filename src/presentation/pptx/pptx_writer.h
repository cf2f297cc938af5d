#pragma once

#include "presentation/pptx/pptx_document.h"

#include <QDateTime>
#include <QString>

#include <functional>

namespace varnholt {

/// Writes the document as a .pptx to `path`, where no file may stand yet. Pictures are read
/// one after the other in small pieces and stored as they are, so that memory does not grow
/// with them. `alive` (may be empty) is called now and then while bytes are written; it must
/// not throw.
///
/// Throws `Error` when something cannot be read or written; then there is no file at `path`.
void writePptx(const QString& path, const PptxDocument& document, const QDateTime& now,
               const std::function<void()>& alive);

} // namespace varnholt
