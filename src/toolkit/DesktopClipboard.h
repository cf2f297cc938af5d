#pragma once

#include "store/services.h"

class QMimeData;

namespace varnholt {

/// The picture in what a program has put on the clipboard, at a device pixel ratio of 1:
/// image data in any format that can be read here, raw or decoded, or the first picture among
/// copied files. Null when there is none, and when what came is damaged or only half there.
/// Throws `Error` for a picture of more than `maxClipboardPixels`.
[[nodiscard]] QImage pictureFrom(const QMimeData& data);
[[nodiscard]] bool mayHoldPicture(const QMimeData& data);

/// Three screens of 7680 x 4320 fit; 400 MB as 32-bit pixels.
inline constexpr qint64 maxClipboardPixels = 100'000'000;

/// The desktop's clipboard. Reading it may wait a few seconds for a program that is slow to
/// hand its picture over.
class DesktopClipboard : public Clipboard
{
public:
    [[nodiscard]] bool answers() const override;
    [[nodiscard]] bool hasImage() const override;
    [[nodiscard]] QImage image() const override;
};

} // namespace varnholt
