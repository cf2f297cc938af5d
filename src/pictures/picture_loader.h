#pragma once

#include <QDateTime>
#include <QImage>
#include <QString>

#include <future>
#include <vector>

namespace varnholt {

/// Decodes picture files for the screen, those that will be wanted next ahead of time on a
/// thread of the pool, so that showing one never waits. Pictures beyond what a screen can
/// show are decoded smaller.
class PictureLoader
{
public:
    /// Null when the file is missing, unreadable or not a picture. What was decoded ahead is
    /// used only while the file is still the same.
    [[nodiscard]] QImage load(const QString& path);

    /// Starts decoding. A few pictures are kept; the oldest goes first.
    void prefetch(const QString& path);

private:
    struct Ahead
    {
        QString path;
        qint64 size = 0;
        QDateTime modified;
        std::shared_future<QImage> picture;
    };

    [[nodiscard]] const Ahead* find(const QString& path) const;

    std::vector<Ahead> ahead_;
};

} // namespace varnholt
