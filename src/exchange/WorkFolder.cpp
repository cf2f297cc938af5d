#include "exchange/WorkFolder.h"

#include "exchange/package_fields.h"
#include "store/errors.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(Package)
};

/// Path of the folder, which is there afterwards and no link, if that can be had.
QString madeFolder(const QString& path)
{
    const QFileInfo folder(path);
    if (folder.isSymLink() || folder.isJunction()) {
        std::error_code ignored;
        std::filesystem::remove(folder.filesystemFilePath(), ignored);
    }
    QDir().mkpath(path);
    return path;
}

/// A file of a package, or one that was being put in its place when the program ended.
bool isOurs(QString name)
{
    const QString part = QStringLiteral(".part");
    if (name.endsWith(part)) {
        name.chop(part.size());
    }
    return !packageMember(name).isEmpty();
}

/// The last file that could not be deleted; empty when none stays.
QString deleteOurs(const QString& folder)
{
    QString stays;
    QDirIterator files(folder, QDir::Files | QDir::Hidden | QDir::System);
    while (files.hasNext()) {
        const QString path = files.next();
        if (isOurs(files.fileName()) && !QFile::remove(path)) {
            stays = path;
        }
    }
    return stays;
}

} // namespace

WorkFolder::WorkFolder(const QString& programFolder, const QString& name)
    : path_(madeFolder(programFolder + u'/' + name))
    , lock_(QFileInfo(path_).filesystemFilePath())
{
    if (lock_.isHeldByAnother()) {
        throw Error(Words::tr("Another program is exporting or importing in %1 just now. "
                              "Wait until it is done and try again.")
                        .arg(QDir::toNativeSeparators(path_)));
    }
}

void WorkFolder::empty() const
{
    static_cast<void>(deleteOurs(path_));
}

void WorkFolder::requireEmpty() const
{
    const QString stays = deleteOurs(path_);
    if (!stays.isEmpty()) {
        throw Error(Words::tr("An old file is in the way and cannot be deleted: %1")
                        .arg(QDir::toNativeSeparators(stays)));
    }
}

} // namespace varnholt
