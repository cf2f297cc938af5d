#include "library/question_picture.h"

#include "files/placing.h"
#include "pictures/picture_files.h"
#include "store/errors.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace varnholt {

namespace {

bool isTaken(const QString& path)
{
    const QFileInfo file(path);
    return file.exists() || file.isSymLink();
}

} // namespace

bool HasPictureFile(const QString& programFolder, std::int32_t key)
{
    return isTaken(FindPictureFile(programFolder, key));
}

void SetOldPictureAside(const QString& programFolder, std::int32_t key)
{
    // More than one when the extension is there in several spellings.
    while (HasPictureFile(programFolder, key)) {
        const QString path = FindPictureFile(programFolder, key);
        QString aside = path + QStringLiteral(".bak");
        for (int i = 2; isTaken(aside); ++i) {
            aside = path + QStringLiteral(".bak%1").arg(i);
        }
        if (RenameFile(QFileInfo(path).filesystemFilePath(),
                       QFileInfo(aside).filesystemFilePath())) {
            throw Error(QCoreApplication::translate(
                            "Library", "An old picture is in the way and cannot be renamed: %1")
                            .arg(QDir::toNativeSeparators(path)));
        }
    }
}

} // namespace varnholt
