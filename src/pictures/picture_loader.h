#pragma once

#include "pictures/picture_info.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QImage>
#include <QObject>
#include <QString>
#include <QTimer>

#include <functional>
#include <memory>
#include <vector>

namespace varnholt {

/// A picture for the screen, or why there is none.
struct LoadedPicture
{
    QImage picture;
    PictureFault fault = PictureFault::None;
};

/// Decodes picture files for the screen on threads of its own, those that will be wanted next
/// ahead of time, so that no window stands still over a picture. Pictures beyond what a screen
/// can show are decoded smaller. One picture is wanted at a time; a decoder that needs longer
/// than `patienceMs` is given up and the picture counts as damaged.
class PictureLoader : public QObject
{
    Q_OBJECT

public:
    using Done = std::function<void(const LoadedPicture&)>;

    PictureLoader();
    ~PictureLoader() override;

    /// Calls `done` with the file's picture: before it returns (then it returns true) where that
    /// takes a moment only, as it does for nearly every picture and for every fault found in a
    /// file's structure; otherwise later from the event loop. Whatever was wanted before and has
    /// not come is dropped. What was decoded ahead is used only while the file is still the same.
    bool load(const QString& path, Done done);

    /// Nothing is wanted any more.
    void drop();

    /// Starts decoding. A few pictures are kept; the oldest goes first.
    void prefetch(const QString& path);

    static constexpr int patienceMs = 10'000;

private:
    struct Job;

    std::shared_ptr<Job> jobFor(const QString& path);
    void look();

    std::vector<std::shared_ptr<Job>> ahead_;
    std::shared_ptr<Job> wanted_;
    Done done_;
    QElapsedTimer waiting_;
    QTimer poll_;
};

} // namespace varnholt
