#pragma once

#include <QString>

namespace varnholt {

struct Services;

/// For a library that cannot be opened, for this reason: offers the newest good backup in its
/// place. True when that stands there now. Throws `Error`.
[[nodiscard]] bool RescueLibrary(const Services& services, const QString& reason);

} // namespace varnholt
