#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

namespace varnholt {

/// How the text files of a package are encoded.
enum class TextEncoding
{
    /// Code page 1252; its five unused bytes stand for the control characters of the same
    /// value, as on Windows.
    Windows1252,
    Utf8
};

[[nodiscard]] bool fitsWindows1252(QStringView text);

/// A character that the code page lacks becomes '?'; ask `fitsWindows1252` beforehand.
[[nodiscard]] QByteArray encodeText(QStringView text, TextEncoding encoding);

/// Throws `Error` when the bytes are not valid UTF-8.
[[nodiscard]] QString decodeText(const QByteArray& bytes, TextEncoding encoding);

} // namespace varnholt
