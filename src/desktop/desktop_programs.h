#pragma once

#include <QString>

namespace varnholt {

/// False only when the desktop says that no program is registered for files of that MIME type:
/// what opens files starts anyway then and fails unseen.
[[nodiscard]] bool ProgramIsRegistered(const QString& mimeType);

} // namespace varnholt
