#pragma once

#include <QImage>
#include <QObject>
#include <QString>
#include <QThreadPool>

#include <atomic>
#include <cstdint>
#include <deque>
#include <set>

namespace varnholt {

/// Decodes small pictures for the rows of a list on threads of its own. What was asked for last
/// comes first, since it is what the user looks at now; what was asked for long ago is dropped and
/// may be asked for again.
class ThumbnailLoader : public QObject
{
    Q_OBJECT

public:
    /// No side becomes longer than `longestSide` pixels.
    explicit ThumbnailLoader(int longestSide);
    /// Stops what is not finished.
    ~ThumbnailLoader() override;

    /// `came` tells of the picture later. Asking again while it is awaited does nothing.
    void load(std::int32_t key, const QString& path);

Q_SIGNALS:
    /// Null for a picture that cannot be shown.
    void came(std::int32_t key, const QImage& picture);

private:
    struct Wanted
    {
        std::int32_t key;
        QString path;
    };

    void startNext();
    void finish(std::int32_t key, const QImage& picture);

    int longestSide_;
    std::deque<Wanted> waiting_;
    /// Keys that wait or are being decoded.
    std::set<std::int32_t> awaited_;
    int running_ = 0;
    std::atomic<bool> stop_ = false;
    QThreadPool threads_;
};

} // namespace varnholt
