#pragma once

#include <QString>
#include <QTemporaryDir>

#include <memory>

namespace varnholt {

struct PictureInfo;

/// Picture files as another program is given them. One that had to be turned upright is written
/// to a temporary folder, which goes with this object.
class UprightPictures
{
public:
    /// The absolute path of the picture at `path`, or of its upright copy. Throws `Error` when
    /// that cannot be written.
    QString file(const QString& path, const PictureInfo& info);

private:
    std::unique_ptr<QTemporaryDir> folder_;
    int count_ = 0;
};

} // namespace varnholt
