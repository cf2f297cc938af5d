#pragma once

#include "store/services.h"

#include <functional>
#include <memory>
#include <thread>

namespace varnholt {

/// A thread that calls into another program, an office, so that one that never answers blocks
/// it and not the caller. One task at a time; the caller waits, but with its windows alive.
class OfficeWorker
{
public:
    /// `keepGoing` is called about 50 times a second while a task runs; false gives up. It may be
    /// empty. `breakOff` must make a call that hangs return soon; it is called from the caller's
    /// thread when waiting is given up.
    OfficeWorker(KeepGoing keepGoing, std::function<void()> breakOff);
    /// Waits a few seconds for the thread and leaves it behind when it hangs even so.
    ~OfficeWorker();
    OfficeWorker(const OfficeWorker&) = delete;
    OfficeWorker& operator=(const OfficeWorker&) = delete;

    /// Runs the task on the thread and passes on what it throws. Throws `Cancelled` when
    /// `keepGoing` says no, and from then on always. A task that is given up may still be
    /// running when this returns, so it must own all it touches.
    void run(std::function<void()> task);

    /// Runs a last task without asking anybody, unless one that was given up hangs still; what
    /// it throws is dropped. Gives up, and breaks off, after `limitMs`.
    void runLast(std::function<void()> task, int limitMs);

private:
    struct Shared;
    static void work(const std::shared_ptr<Shared>& shared);

    void give(std::function<void()> task);
    bool wait(int limitMs);
    void giveUp();

    KeepGoing keepGoing_;
    std::function<void()> breakOff_;
    std::shared_ptr<Shared> shared_;
    std::thread thread_;
    bool givenUp_ = false;
};

} // namespace varnholt
