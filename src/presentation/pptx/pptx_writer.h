#pragma once

#include "presentation/pptx/pptx_document.h"
#include "store/services.h"

#include <QDateTime>
#include <QString>

namespace varnholt {

/// Writes the document as a .pptx to `path`, where no file may stand yet. Pictures are read
/// one after the other in small pieces and stored as they are, so that memory does not grow
/// with them. With answer slides the parts of the slides are deflated, so that the file is hardly
/// larger than without.
///
/// Throws `Error` when something cannot be read or written and `Cancelled` when `keepGoing` (may
/// be empty) says so; then there is no file at `path`.
void writePptx(const QString& path, const PptxDocument& document, const QDateTime& now,
               const KeepGoing& keepGoing);

} // namespace varnholt
