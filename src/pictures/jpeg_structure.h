#pragma once

#include <QByteArrayView>
#include <QSize>

#include <stdexcept>

namespace varnholt {

/// Why bytes are no whole picture that decoders take: a sentence for the translator, in the
/// context "Picture", with %1 for the picture's name.
class BadStructure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;

    /// What may be wrong, for the translator (context "Picture").
    static constexpr auto cutOff = QT_TRANSLATE_NOOP("Picture", "The picture \"%1\" is cut off.");
    static constexpr auto damaged = QT_TRANSLATE_NOOP("Picture", "The picture \"%1\" is damaged.");
};

/// What the markers of a JPEG file say (ITU-T T.81 annex B).
struct JpegStructure
{
    QSize pixels;
    /// How often the decoder has to go through the whole picture.
    int scans = 0;
    /// Contents of the JFIF and of the Exif segment; empty where there is none.
    QByteArrayView jfif;
    QByteArrayView exif;
};

/// Goes through all markers, in the coded data too, and checks whatever would make a decoder
/// give up: tables, frame and scan headers, and a missing end. Decodes nothing, so damage that
/// leaves every marker whole goes unnoticed, as it does in decoders. More than
/// `largestJpegScans` scans are a fault: each costs a decoder as much time as the whole picture
/// and the file a few bytes. Throws `BadStructure`. The views last as long as `bytes`.
[[nodiscard]] JpegStructure readJpegStructure(QByteArrayView bytes);

inline constexpr int largestJpegScans = 100;

} // namespace varnholt
