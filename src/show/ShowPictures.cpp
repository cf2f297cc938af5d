#include "show/ShowPictures.h"

#include <QPainter>

#include <algorithm>
#include <new>
#include <utility>

namespace varnholt {

namespace {

/// Longer sides no screen shows, and a part of a picture that is looked at closely not much more.
constexpr int longestSide = 4096;

/// Transparent parts are white, as on a slide.
QImage opaque(QImage picture)
{
    if (picture.hasAlphaChannel()) {
        QPainter painter(&picture);
        painter.setCompositionMode(QPainter::CompositionMode_DestinationOver);
        painter.fillRect(picture.rect(), Qt::white);
        painter.end();
        picture = picture.convertToFormat(QImage::Format_RGB32);
    }
    return picture;
}

} // namespace

struct ShowPictures::Job
{
    Job(QString file, QSize size)
        : path(std::move(file))
        , room(size)
    {}

    void run()
    {
        try {
            const CheckedPicture checked = checkPicture(path);
            loaded.picture.whole = opaque(decodePicture(checked, longestSide, path, &stop));
            if (!stop && !room.isEmpty()) {
                const QSize size = loaded.picture.whole.size()
                                       .scaled(room, Qt::KeepAspectRatio)
                                       .expandedTo(QSize(1, 1));
                loaded.picture.fitted = loaded.picture.whole.scaled(size, Qt::IgnoreAspectRatio,
                                                                    Qt::SmoothTransformation);
            }
        } catch (const PictureError& error) {
            loaded.fault = error.fault();
        } catch (const std::bad_alloc&) {
            loaded.fault = PictureFault::TooLarge;
        }
    }

    const QString path;
    const QSize room;
    std::atomic<bool> stop = false;
    /// The window's own from the moment that it is ready.
    Loaded loaded;
};

ShowPictures::ShowPictures()
{
    pool_.setMaxThreadCount(2);
}

ShowPictures::~ShowPictures()
{
    for (const auto& job : jobs_) {
        job->stop = true;
    }
    pool_.waitForDone();
}

void ShowPictures::setRoom(QSize devicePixels)
{
    if (devicePixels == std::exchange(room_, devicePixels)) {
        return;
    }
    QStringList paths;
    for (const auto& job : jobs_) {
        paths.append(job->path);
    }
    want({});
    want(paths);
}

void ShowPictures::want(const QStringList& paths)
{
    std::erase_if(jobs_, [&](const auto& job) {
        const bool gone = !paths.contains(job->path);
        job->stop = job->stop || gone;
        return gone;
    });
    for (const QString& path : paths.mid(0, mostPictures)) {
        start(path);
    }
}

void ShowPictures::start(const QString& path)
{
    if (std::any_of(jobs_.begin(), jobs_.end(),
                    [&](const auto& job) { return job->path == path; })) {
        return;
    }
    const auto job = std::make_shared<Job>(path, room_);
    jobs_.push_back(job);
    pool_.start([this, job] {
        if (!job->stop) {
            job->run();
        }
        QMetaObject::invokeMethod(
            this, [this, job] { finished(job); }, Qt::QueuedConnection);
    });
}

void ShowPictures::finished(const std::shared_ptr<Job>& job)
{
    if (!job->stop) {
        job->loaded.ready = true;
        Q_EMIT came(job->path);
    }
}

ShowPictures::Loaded ShowPictures::find(const QString& path) const
{
    for (const auto& job : jobs_) {
        if (job->path == path && job->loaded.ready) {
            return job->loaded;
        }
    }
    return {};
}

} // namespace varnholt
