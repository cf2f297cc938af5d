#pragma once

#include "presentation/presentation_program.h"

#include <QByteArray>
#include <QString>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace varnholt {

/// The unit of Office Open XML: 12,700 to the point, so that points, pixels and millimetres
/// are all whole numbers of it.
using Emu = std::int64_t;

inline constexpr Emu emuPerPoint = 12'700;
inline constexpr Emu emuPerHundredthMm = 360;
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
    /// The slide's title, a placeholder.
    bool title = false;
    /// Bold on white in a frame.
    bool framed = false;
    /// In points; 0 for the size that text has by itself.
    double textSize = 0;
};

struct PptxSlide
{
    std::vector<PptxShape> shapes;
    /// Empty for a slide without notes.
    QString notes;
    /// Seconds after which the next slide comes; 0 for never.
    int advance = 0;
};

struct PptxDocument
{
    QString title;
    /// Of all texts, such as "en-GB"; empty when it is not told.
    QString language;
    /// Shapes have no names, and texts neither font, colour nor language but what they are given
    /// here: the program that opens it gives them its own.
    bool bare = false;
    /// Slides with the answers repeat the questions.
    bool answerSlides = false;
    std::vector<PptxSlide> slides;
    std::vector<PptxMedia> media;

    [[nodiscard]] bool hasTitles() const
    {
        return std::any_of(slides.begin(), slides.end(), [](const PptxSlide& slide) {
            return !slide.shapes.empty() && slide.shapes.front().title;
        });
    }
    [[nodiscard]] bool hasNotes() const
    {
        return std::any_of(slides.begin(), slides.end(),
                           [](const PptxSlide& slide) { return !slide.notes.isEmpty(); });
    }
};

} // namespace varnholt
