#pragma once

#include "store/services.h"

#include <chrono>
#include <memory>

namespace varnholt {

/// PowerPoint, driven through its automation object model.
class PowerPoint
{
public:
    virtual ~PowerPoint() = default;

    /// Starts it for a build, or attaches to the one that runs. The reference to it is kept until
    /// the next build replaces it or this object goes, and it is never told to quit. Throws
    /// `Error` when it cannot be reached and `Cancelled` when `keepGoing`, which serves the
    /// program for all of its life, says so. One program at a time.
    [[nodiscard]] virtual std::unique_ptr<PresentationProgram>
    start(const KeepGoing& keepGoing) = 0;
};

/// The PowerPoint of this computer; null where there is none, which is everywhere but on Windows.
/// One that turns a single call away for `busyLimit`, because it is busy, fails it.
#ifdef _WIN32
[[nodiscard]] std::unique_ptr<PowerPoint>
FindPowerPoint(std::chrono::milliseconds busyLimit = std::chrono::minutes(1));
#else
[[nodiscard]] inline std::unique_ptr<PowerPoint> FindPowerPoint()
{
    return nullptr;
}
#endif

} // namespace varnholt
