#include "pictures/ThumbnailLoader.h"

#include "pictures/picture_info.h"

#include <new>

namespace varnholt {

namespace {

constexpr int threadCount = 2;
/// More rows than a list shows at a time.
constexpr std::size_t mostWaiting = 100;

QImage thumbnail(const QString& path, int longestSide, const std::atomic<bool>& stop)
{
    try {
        QImage picture = decodePicture(checkPicture(path), longestSide, path, &stop);
        return picture;
    } catch (const PictureError&) {
    } catch (const std::bad_alloc&) {
    }
    return {};
}

} // namespace

ThumbnailLoader::ThumbnailLoader(int longestSide)
    : longestSide_(longestSide)
{
    threads_.setMaxThreadCount(threadCount);
}

ThumbnailLoader::~ThumbnailLoader()
{
    stop_ = true;
    threads_.waitForDone();
}

void ThumbnailLoader::load(std::int32_t key, const QString& path)
{
    if (!awaited_.insert(key).second) {
        return;
    }
    waiting_.push_back({key, path});
    if (waiting_.size() > mostWaiting) {
        awaited_.erase(waiting_.front().key);
        waiting_.pop_front();
    }
    startNext();
}

void ThumbnailLoader::startNext()
{
    if (running_ == threadCount || waiting_.empty()) {
        return;
    }
    const Wanted next = waiting_.back();
    waiting_.pop_back();
    ++running_;
    threads_.start([this, next] {
        const QImage picture = stop_ ? QImage() : thumbnail(next.path, longestSide_, stop_);
        QMetaObject::invokeMethod(
            this, [this, key = next.key, picture] { finish(key, picture); }, Qt::QueuedConnection);
    });
}

void ThumbnailLoader::finish(std::int32_t key, const QImage& picture)
{
    --running_;
    awaited_.erase(key);
    startNext();
    Q_EMIT came(key, picture);
}

} // namespace varnholt
