#pragma once

#include <QString>

namespace varnholt {

/// `text` as the name of a file on any system: what one of them refuses is replaced, and it is no
/// longer than any of them allows, its last `kept` characters staying. Never empty, never hidden,
/// never a device of Windows, also with an ending behind it.
[[nodiscard]] QString PortableFileName(const QString& text, qsizetype kept = 0);

/// `text` as the name of a file on this system, as near to it as can be.
[[nodiscard]] QString FileNameHere(const QString& text);

} // namespace varnholt
