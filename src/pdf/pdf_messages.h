#pragma once

#include <QByteArray>
#include <QRectF>
#include <QSize>
#include <QString>

#include <cstdint>

// What the program and its reader of PDF files say to each other. The reader is a process of its
// own: a file made to harm or a fault in the library behind it ends the reader and nothing else,
// it can be stopped at any moment, and the program starts without that library. Requests are
// strings of bytes by `QDataStream`, each answered in turn by an `Answer` and its content.

namespace varnholt::pdf {

enum class Ask : std::uint32_t
{
    /// path, password -> a `QSizeF` for each page, in points
    Open,
    /// page, size in pixels, whether in grey -> rows of pixels
    Render,
    /// page -> a `LineStart` for each line of text with a digit near its start
    Lines
};

enum class Fault : std::uint32_t
{
    None,
    CannotRead,
    NoPdf,
    Locked,
    UnknownLock,
    NoPages,
    TooManyPages,
    CannotDraw,
    /// Said by nobody: the reader is no more.
    Stopped,
    TooSlow
};

/// Precedes the content of an answer, as it lies in memory: both ends are one build.
struct Answer
{
    Fault fault = Fault::None;
    std::uint32_t size = 0;
};

/// The first letters of a line and where they stand, in points from the page's top left corner.
struct LineStart
{
    QString text;
    QRectF place;
};

inline constexpr int mostPages = 2000;
/// Of a page that is drawn: that of an A3 page at 400 dots to the inch, and some.
inline constexpr std::int64_t mostPixels = 40'000'000;

} // namespace varnholt::pdf
