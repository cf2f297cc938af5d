#include "presentation/upright_pictures.h"

#include "pictures/picture_info.h"
#include "store/errors.h"
#include "store/save_file.h"

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

const UprightPictures::Picture& UprightPictures::of(const QString& path)
{
    if (lastPath_.isEmpty() || path != lastPath_) {
        lastPath_.clear();
        const PictureInfo info = readPictureInfo(path);
        last_ = {info.uprightJpeg.isEmpty() ? QFileInfo(path).absoluteFilePath()
                                            : turned(info.uprightJpeg),
                 info.points};
        lastPath_ = path;
    }
    return last_;
}

QString UprightPictures::turned(const QByteArray& jpeg)
{
    if (!folder_) {
        folder_ = std::make_unique<QTemporaryDir>();
    }
    QFile file(folder_->filePath(QStringLiteral("%1.jpg").arg(++count_)));
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered) || !WriteAll(file, jpeg)) {
        throw Error(Words::tr("A turned picture could not be written to \"%1\": %2.")
                        .arg(file.fileName(), file.errorString()));
    }
    return file.fileName();
}

} // namespace varnholt
