#pragma once

#include "pictures/picture_info.h"
#include "show/pupils_painter.h"

#include <QObject>
#include <QStringList>
#include <QThreadPool>

#include <atomic>
#include <memory>
#include <vector>

namespace varnholt {

/// The pictures of a show: decoded and brought to the size of the pupils' window on threads, those
/// of the neighbours ahead. It holds no others than those that are wanted.
class ShowPictures : public QObject
{
    Q_OBJECT

public:
    struct Loaded
    {
        ShowPicture picture;
        PictureFault fault = PictureFault::None;
        /// False while it is still to come.
        bool ready = false;
    };

    ShowPictures();
    ~ShowPictures() override;

    /// The room for a picture, in device pixels. What does not fit it any more is made anew.
    void setRoom(QSize devicePixels);
    /// At most `mostPictures` files, the most urgent first.
    void want(const QStringList& paths);

    [[nodiscard]] Loaded find(const QString& path) const;

    static constexpr int mostPictures = 3;

Q_SIGNALS:
    /// A picture that is wanted has come, or what is wrong with it is known.
    void came(const QString& path);

private:
    struct Job;

    void start(const QString& path);
    void finished(const std::shared_ptr<Job>& job);

    QSize room_;
    std::vector<std::shared_ptr<Job>> jobs_;
    QThreadPool pool_;
};

} // namespace varnholt
