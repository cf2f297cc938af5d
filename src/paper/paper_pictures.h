#pragma once

#include "paper/PaperLayout.h"

#include <QByteArray>
#include <QSize>

namespace varnholt {

/// A question's picture as it goes into a PDF.
struct PaperPicture
{
    /// The file's own bytes where it is a JPEG that stands upright, else the picture made into one.
    QByteArray jpeg;
    PaperPictureSize size;
    /// Why there is none, as a sentence; empty when there is one.
    QString fault;
};

/// Reads one picture; a missing or damaged one becomes a `fault`.
[[nodiscard]] PaperPicture ReadPaperPicture(const QString& path);

/// The sizes that the layout needs, without keeping the bytes.
[[nodiscard]] std::vector<PaperPictureSize> ReadPaperPictureSizes(const PaperTest& test);

} // namespace varnholt
