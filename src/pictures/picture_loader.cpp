#include "pictures/picture_loader.h"

#include "pictures/picture_info.h"
#include "store/errors.h"

#include <QFileInfo>
#include <QImageReader>
#include <QThreadPool>

#include <algorithm>
#include <memory>

namespace varnholt {

namespace {

constexpr std::size_t keptPictures = 4;
/// Longer sides than this no screen shows; decoding them whole costs time and memory.
constexpr int longestSide = 4096;

QImage decode(const QString& path)
{
    // Opening a pipe or a device of that name could wait for ever. What a slide cannot show
    // is not shown before either: half a picture would pass for a whole one.
    if (!QFileInfo(path).isFile()) {
        return {};
    }
    try {
        static_cast<void>(readPictureInfo(path));
    } catch (const Error&) {
        return {};
    }
    QImageReader reader(path);
    reader.setAutoTransform(true);
    reader.setDecideFormatFromContent(true);
    const QSize size = reader.size();
    if (size.width() > longestSide || size.height() > longestSide) {
        reader.setScaledSize(
            size.scaled(longestSide, longestSide, Qt::KeepAspectRatio).expandedTo(QSize(1, 1)));
    }
    const QImage picture = reader.read();
    return picture.convertToFormat(picture.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied
                                                             : QImage::Format_RGB32);
}

} // namespace

const PictureLoader::Ahead* PictureLoader::find(const QString& path) const
{
    const QFileInfo file(path);
    const auto found = std::find_if(ahead_.begin(), ahead_.end(), [&](const Ahead& ahead) {
        return ahead.path == path && ahead.size == file.size() &&
               ahead.modified == file.lastModified();
    });
    return found == ahead_.end() || !file.isFile() ? nullptr : &*found;
}

QImage PictureLoader::load(const QString& path)
{
    const Ahead* ahead = find(path);
    return ahead ? ahead->picture.get() : decode(path);
}

void PictureLoader::prefetch(const QString& path)
{
    const QFileInfo file(path);
    if (find(path) || !file.isFile()) {
        return;
    }
    const auto task =
        std::make_shared<std::packaged_task<QImage()>>([path] { return decode(path); });
    if (ahead_.size() == keptPictures) {
        ahead_.erase(ahead_.begin());
    }
    ahead_.push_back({path, file.size(), file.lastModified(), task->get_future().share()});
    QThreadPool::globalInstance()->start([task] { (*task)(); });
}

} // namespace varnholt
