#include "pictures/picture_files.h"

#include <QDir>
#include <QFileInfo>

namespace varnholt {

namespace {

QString filesFolder(const QString& programFolder)
{
    const QString usual = programFolder + QStringLiteral("/Files");
    if (QFileInfo::exists(usual)) {
        return usual;
    }
    // Name filters match without regard to case.
    const QStringList folders =
        QDir(programFolder).entryList({QStringLiteral("files")}, QDir::Dirs);
    return folders.isEmpty() ? usual : programFolder + u'/' + folders.first();
}

} // namespace

QString NewPictureFile(const QString& programFolder, std::int32_t pictureIndex)
{
    return filesFolder(programFolder) + u'/' + QString::number(pictureIndex) +
           QStringLiteral(".jpg");
}

QString FindPictureFile(const QString& programFolder, std::int32_t pictureIndex)
{
    const QString usual = NewPictureFile(programFolder, pictureIndex);
    const QString stem = usual.chopped(3);
    // Listing a folder of many thousand pictures is slow; the eight spellings are not.
    for (const char* extension : {"jpg", "JPG", "Jpg", "jPg", "jpG", "JPg", "JpG", "jPG"}) {
        const QString path = stem + QLatin1String(extension);
        if (QFileInfo::exists(path)) {
            return path;
        }
    }
    return usual;
}

} // namespace varnholt
