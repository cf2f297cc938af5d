#pragma once

#include <QString>

namespace varnholt {

/// What a person who helps from afar needs to know: versions, screens, where the library lies and
/// how large it is, and the end of the program's log. Nothing of a question stands in it.
[[nodiscard]] QString Diagnostics(const QString& programFolder);

} // namespace varnholt
