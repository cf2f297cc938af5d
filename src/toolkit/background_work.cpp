#include "toolkit/background_work.h"

#include "store/errors.h"

#include <QDeadlineTimer>
#include <QThread>

#include <atomic>
#include <exception>
#include <memory>

namespace varnholt {

void RunInBackground(QWidget* window, const QString& label, LongWork::Cancel cancel,
                     const std::function<void(const WorkProgress& progress)>& work)
{
    constexpr int waitMs = 10;
    std::atomic<bool> stop = false;
    std::atomic<std::size_t> done = 0;
    std::atomic<std::size_t> all = 0;
    std::exception_ptr failure;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        try {
            work([&](std::size_t doneNow, std::size_t allNow) {
                if (stop) {
                    throw Cancelled();
                }
                done = doneNow;
                all = allNow;
            });
        } catch (...) {
            failure = std::current_exception();
        }
    }));
    LongWork longWork(window, label, cancel);
    thread->start();
    while (!thread->wait(QDeadlineTimer(waitMs))) {
        const auto steps = static_cast<int>(all);
        try {
            if (steps > 0 && !stop) {
                longWork.progress(static_cast<int>(done) + 1, steps);
            } else if (!longWork.goOn()) {
                stop = true;
            }
        } catch (const Cancelled&) {
            stop = true;
        }
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
}

} // namespace varnholt
