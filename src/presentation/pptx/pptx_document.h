#pragma once

#include "presentation/presentation_program.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <vector>

namespace varnholt {

/// The unit of Office Open XML: 12,700 to the point, so that points, pixels and millimetres
/// are all whole numbers of it.
using Emu = std::int64_t;

inline constexpr Emu emuPerPoint = 12'700;
inline constexpr Emu pptxSlideWidth = 960 * emuPerPoint;
inline constexpr Emu pptxSlideHeight = 540 * emuPerPoint;

/// A picture in the package; shapes on any number of slides may show it.
struct PptxMedia
{
    /// Where the bytes are read from when the file is written...
    QString path;
    /// ...unless they stand here.
    QByteArray bytes;
    /// "jpeg", "png", "gif" or "bmp": the name's extension and the second half of the
    /// content type.
    QByteArray format;
    Emu width = 0;
    Emu height = 0;
};

/// A text box, or a picture when `media` is not 0.
struct PptxShape
{
    Emu left = 0;
    Emu top = 0;
    Emu width = 0;
    Emu height = 0;
    QString text;
    LongLines longLines = LongLines::Wrap;
    /// Position in `PptxDocument::media`, from 1.
    int media = 0;
    /// Alternative text of a picture.
    QString description;
};

struct PptxSlide
{
    std::vector<PptxShape> shapes;
};

struct PptxDocument
{
    QString title;
    std::vector<PptxSlide> slides;
    std::vector<PptxMedia> media;
};

} // namespace varnholt
