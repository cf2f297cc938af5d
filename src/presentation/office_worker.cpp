#include "presentation/office_worker.h"

#include "store/errors.h"

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stdexcept>

namespace varnholt {

namespace {

constexpr int aliveEveryMs = 20;
/// How long a call may take to notice that it was broken off.
constexpr int breakOffMs = 2000;

} // namespace

struct OfficeWorker::Shared
{
    std::mutex mutex;
    std::condition_variable given;
    std::condition_variable done;
    std::function<void()> task;
    std::exception_ptr error;
    bool busy = false;
    bool stop = false;
};

OfficeWorker::OfficeWorker(KeepGoing keepGoing, std::function<void()> breakOff)
    : keepGoing_(std::move(keepGoing))
    , breakOff_(std::move(breakOff))
    , shared_(std::make_shared<Shared>())
    , thread_([shared = shared_] { work(shared); })
{}

OfficeWorker::~OfficeWorker()
{
    {
        const std::lock_guard lock(shared_->mutex);
        shared_->stop = true;
    }
    shared_->given.notify_one();
    if (!wait(0) && !givenUp_) {
        giveUp();
    }
    if (wait(0)) {
        thread_.join();
    } else {
        thread_.detach();
    }
}

void OfficeWorker::work(const std::shared_ptr<Shared>& shared)
{
    std::unique_lock lock(shared->mutex);
    for (;;) {
        shared->given.wait(lock, [&] { return shared->busy || shared->stop; });
        if (!shared->busy) {
            return;
        }
        std::function<void()> task = std::move(shared->task);
        lock.unlock();
        std::exception_ptr error;
        try {
            task();
        } catch (...) {
            error = std::current_exception();
        }
        task = nullptr;
        lock.lock();
        shared->error = error;
        shared->busy = false;
        shared->done.notify_one();
    }
}

void OfficeWorker::give(std::function<void()> task)
{
    {
        const std::lock_guard lock(shared_->mutex);
        if (shared_->busy) {
            throw std::logic_error("the office is asked a second thing at once");
        }
        shared_->task = std::move(task);
        shared_->error = nullptr;
        shared_->busy = true;
    }
    shared_->given.notify_one();
}

bool OfficeWorker::wait(int limitMs)
{
    std::unique_lock lock(shared_->mutex);
    return shared_->done.wait_for(lock, std::chrono::milliseconds(limitMs),
                                  [this] { return !shared_->busy; });
}

void OfficeWorker::giveUp()
{
    givenUp_ = true;
    breakOff_();
    wait(breakOffMs);
}

void OfficeWorker::run(std::function<void()> task)
{
    if (givenUp_) {
        throw Cancelled();
    }
    give(std::move(task));
    while (!wait(aliveEveryMs)) {
        if (keepGoing_ && !keepGoing_()) {
            giveUp();
            throw Cancelled();
        }
    }
    if (const std::exception_ptr error = std::exchange(shared_->error, nullptr)) {
        std::rethrow_exception(error);
    }
}

void OfficeWorker::runLast(std::function<void()> task, int limitMs)
{
    if (!wait(0)) {
        return;
    }
    give(std::move(task));
    if (!wait(limitMs)) {
        giveUp();
    }
}

} // namespace varnholt
