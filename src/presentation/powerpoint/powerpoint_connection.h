#pragma once

#include "presentation/office_worker.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>

namespace varnholt {

class PowerPointDocument;

/// The connection to PowerPoint, from the first build to the end of the program, and the thread
/// all calls are made on. What automation throws becomes `Error` here.
class PowerPointConnection
{
public:
    /// `busyLimit` is how long a single call may be turned away.
    explicit PowerPointConnection(std::chrono::milliseconds busyLimit);
    /// Lets go of PowerPoint, which runs on.
    ~PowerPointConnection();
    PowerPointConnection(const PowerPointConnection&) = delete;
    PowerPointConnection& operator=(const PowerPointConnection&) = delete;

    /// Starts PowerPoint, or attaches to it, anew. `keepGoing` is asked during this and the calls
    /// that follow.
    void connect(const KeepGoing& keepGoing);
    /// From now on `keepGoing` is not asked any more.
    void endBuild() { *keepGoing_ = nullptr; }
    /// Runs a task with the calls of a build, which it must own all arguments of. Only after
    /// `connect`.
    void run(std::function<void(PowerPointDocument&)> task);
    /// Whether the user has stopped waiting; nothing can be run any more.
    [[nodiscard]] bool isGivenUp() const { return *givenUp_; }

private:
    /// Shared with the thread, which outlives the connection when PowerPoint hangs.
    std::shared_ptr<std::unique_ptr<PowerPointDocument>> document_;
    std::shared_ptr<std::atomic<bool>> givenUp_;
    std::shared_ptr<KeepGoing> keepGoing_;
    std::chrono::milliseconds busyLimit_;
    OfficeWorker worker_;
};

} // namespace varnholt
