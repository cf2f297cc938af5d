#include "pictures/picture_loader.h"

#include <QFileInfo>
#include <QThreadPool>

#include <algorithm>
#include <future>
#include <utility>

namespace varnholt {

namespace {

constexpr std::size_t keptPictures = 4;
/// Longer sides than this no screen shows; decoding them whole costs time and memory.
constexpr int longestSide = 4096;

// A picture that takes a moment only is waited for, or it would flicker; the limit is for a
// machine that is busy otherwise.
constexpr qint64 quickFile = 8'000'000;
constexpr qint64 quickWork = 4'000'000;
constexpr std::chrono::milliseconds moment{40};
constexpr std::chrono::milliseconds busyMoment{500};
constexpr int pollMs = 15;

QThreadPool& decoders()
{
    // More than processors: a few slow pictures must not hold up the one that is wanted.
    static QThreadPool pool;
    static const bool sized = [] {
        pool.setMaxThreadCount(4);
        return true;
    }();
    Q_UNUSED(sized)
    return pool;
}

} // namespace

struct PictureLoader::Job
{
    explicit Job(const QFileInfo& file)
        : path(file.filePath())
        , size(file.size())
        , modified(file.lastModified())
    {}

    void run()
    {
        LoadedPicture loaded{{}, PictureFault::Damaged};
        if (stop) {
            work_.set_value(0);
            picture_.set_value(std::move(loaded));
            return;
        }
        bool looked = false;
        try {
            const CheckedPicture checked = checkPicture(path);
            work_.set_value(checked.work);
            looked = true;
            loaded = {decodePicture(checked, longestSide, path, &stop), PictureFault::None};
        } catch (const PictureError& error) {
            loaded.fault = error.fault();
        } catch (const std::bad_alloc&) {
            loaded.fault = PictureFault::TooLarge;
        }
        if (!looked) {
            work_.set_value(0);
        }
        picture_.set_value(std::move(loaded));
    }

    [[nodiscard]] bool readyWithin(std::chrono::milliseconds time) const
    {
        return picture.wait_for(time) == std::future_status::ready;
    }

    /// Whether it is there, or comes in a moment.
    [[nodiscard]] bool readyInAMoment() const
    {
        const bool known =
            work.wait_for(size <= quickFile ? busyMoment : moment) == std::future_status::ready;
        return known && readyWithin(work.get() <= quickWork ? busyMoment : moment);
    }

    const QString path;
    const qint64 size;
    const QDateTime modified;
    /// Nobody will ask any more: its thread is wanted for others, and closing the program waits
    /// for all threads.
    std::atomic<bool> stop = false;

private:
    std::promise<qint64> work_;
    std::promise<LoadedPicture> picture_;

public:
    std::shared_future<qint64> work = work_.get_future().share();
    std::shared_future<LoadedPicture> picture = picture_.get_future().share();
};

std::shared_ptr<PictureLoader::Job> PictureLoader::jobFor(const QString& path)
{
    const QFileInfo file(path);
    const auto found = std::find_if(ahead_.begin(), ahead_.end(), [&](const auto& ahead) {
        return ahead->path == path && ahead->size == file.size() &&
               ahead->modified == file.lastModified();
    });
    if (found != ahead_.end() && file.isFile()) {
        return *found;
    }
    if (ahead_.size() == keptPictures) {
        const auto oldest = std::find_if(ahead_.begin(), ahead_.end(),
                                         [&](const auto& ahead) { return ahead != wanted_; });
        (*oldest)->stop = true;
        ahead_.erase(oldest);
    }
    ahead_.push_back(std::make_shared<Job>(file));
    decoders().start([job = ahead_.back()] { job->run(); });
    return ahead_.back();
}

PictureLoader::PictureLoader()
{
    poll_.setInterval(pollMs);
    poll_.callOnTimeout(this, &PictureLoader::look);
}

PictureLoader::~PictureLoader()
{
    for (const auto& job : ahead_) {
        job->stop = true;
    }
}

bool PictureLoader::load(const QString& path, Done done)
{
    drop();
    const std::shared_ptr<Job> job = jobFor(path);
    if (job->readyInAMoment()) {
        const LoadedPicture loaded = job->picture.get();
        done(loaded);
        return true;
    }
    wanted_ = job;
    done_ = std::move(done);
    waiting_.start();
    poll_.start();
    return false;
}

void PictureLoader::drop()
{
    poll_.stop();
    wanted_.reset();
    done_ = nullptr;
}

void PictureLoader::prefetch(const QString& path)
{
    if (QFileInfo(path).isFile()) {
        static_cast<void>(jobFor(path));
    }
}

void PictureLoader::look()
{
    if (!wanted_) {
        return;
    }
    const bool ready = wanted_->readyWithin(std::chrono::milliseconds(0));
    if (!ready && !waiting_.hasExpired(patienceMs)) {
        return;
    }
    if (!ready) {
        wanted_->stop = true;
        std::erase(ahead_, wanted_);
    }
    // What is called may ask for the next picture, or show a message and wait.
    const LoadedPicture loaded =
        ready ? wanted_->picture.get() : LoadedPicture{{}, PictureFault::Damaged};
    const Done done = std::exchange(done_, nullptr);
    drop();
    done(loaded);
}

} // namespace varnholt
