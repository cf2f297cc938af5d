#pragma once

#include <QSizeF>
#include <QString>
#include <QTemporaryDir>

#include <memory>

namespace varnholt {

/// Picture files as another program is given them. One that had to be turned upright is written
/// to a temporary folder, which goes with this object.
class UprightPictures
{
public:
    struct Picture
    {
        /// The absolute path of the file, or of its upright copy.
        QString file;
        /// The own size, upright.
        QSizeF points;
    };

    /// The last one is remembered: a question and its answer show the same. Throws `Error` when the
    /// picture cannot be shown, or its copy cannot be written.
    const Picture& of(const QString& path);

private:
    QString turned(const QByteArray& jpeg);

    std::unique_ptr<QTemporaryDir> folder_;
    int count_ = 0;
    QString lastPath_;
    Picture last_;
};

} // namespace varnholt
