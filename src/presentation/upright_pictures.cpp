#include "presentation/upright_pictures.h"

#include "pictures/picture_info.h"
#include "store/errors.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(Presentation)
};

} // namespace

QString UprightPictures::file(const QString& path, const PictureInfo& info)
{
    const QByteArray& bytes = info.uprightJpeg;
    if (bytes.isEmpty()) {
        return QFileInfo(path).absoluteFilePath();
    }
    if (!folder_) {
        folder_ = std::make_unique<QTemporaryDir>();
    }
    QFile file(folder_->filePath(Words::tr("%1.jpg").arg(++count_)));
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.flush()) {
        throw Error(Words::tr("A turned picture could not be written to \"%1\": %2.")
                        .arg(file.fileName(), file.errorString()));
    }
    return file.fileName();
}

} // namespace varnholt
