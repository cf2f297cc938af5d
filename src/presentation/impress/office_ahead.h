#pragma once

#include "presentation/impress/impress_settings.h"

#include <memory>

namespace varnholt {

/// Starts the office unseen, in the background: a program of its own does that, so that nothing
/// here waits. An office that runs already, or that a build starts meanwhile, is left as it is.
///
/// When the result goes, or this program does, however that comes about, an office that was
/// started so and has nothing open in it is ended. A failure is not told: a build that needs the
/// office tries again itself. Null where the program that does it is not installed. Belongs on the
/// thread of the windows.
[[nodiscard]] std::shared_ptr<void> StartOfficeAhead(const ImpressSettings& settings);

} // namespace varnholt
