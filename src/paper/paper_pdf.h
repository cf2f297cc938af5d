#pragma once

#include "paper/PaperFont.h"
#include "paper/paper_pictures.h"

#include <QByteArray>

namespace varnholt {

/// Called with the pages done and all of them; may throw `Cancelled`.
using PaperProgress = std::function<void(int page, int pages)>;

/// The layout as a PDF with embedded fonts. Each picture is in it once, a JPEG with the bytes of
/// its file. Throws `Error`.
[[nodiscard]] QByteArray MakePaperPdf(const PaperTest& test, const PaperLayout& layout,
                                      const PaperFont& font, const PaperProgress& progress = {});

/// Makes the PDF and puts it on the disk under that name whole or not at all; an older file of the
/// name is replaced. Throws `Error`.
void SavePaperPdf(const QString& path, const PaperTest& test, const PaperLayout& layout,
                  const PaperFont& font, const PaperProgress& progress = {});

} // namespace varnholt
