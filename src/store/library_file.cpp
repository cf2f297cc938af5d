#include "store/library_file.h"

#include "store/connection.h"
#include "store/errors.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTemporaryFile>

namespace varnholt {

namespace {

bool canWrite(const QString& folder)
{
    // Permission bits do not tell about read-only file systems; a try does.
    QTemporaryFile probe(folder + QStringLiteral("/.varnholt-XXXXXX"));
    return probe.open();
}

void copyFile(const QString& from, const QString& to)
{
    QFile source(from);
    QSaveFile target(to);
    bool done = source.open(QIODevice::ReadOnly) && target.open(QIODevice::WriteOnly);
    while (done && !source.atEnd()) {
        const QByteArray block = source.read(1 << 20);
        done = !block.isEmpty() && target.write(block) == block.size();
    }
    if (!done || !target.commit()) {
        throw Error(
            QStringLiteral("The supplied question library could not be copied to\n%1\n\n(%2)")
                .arg(QDir::toNativeSeparators(to), source.error() != QFile::NoError
                                                       ? source.errorString()
                                                       : target.errorString()));
    }
}

void copyLibrary(const QString& from, const QString& to)
{
    const QDir pictures(from + QStringLiteral("/Files"));
    if (!QDir().mkpath(to + QStringLiteral("/Files"))) {
        throw Error(QStringLiteral("The folder for your question library could not be made:\n%1")
                        .arg(QDir::toNativeSeparators(to)));
    }
    for (const QString& name : pictures.entryList(QDir::Files)) {
        copyFile(pictures.filePath(name), to + QStringLiteral("/Files/") + name);
    }
    copyFile(LibraryPath(from), LibraryPath(to));
}

} // namespace

QString LibraryPath(const QString& programFolder)
{
    return programFolder + QStringLiteral("/Varnholt.mdb");
}

QString ChooseProgramFolder(const FolderChoice& choice)
{
    const QString& own = choice.executableFolder;
    const bool ownLibrary = QFileInfo::exists(LibraryPath(own));
    const bool supplied =
        !choice.suppliedFolder.isEmpty() && QFileInfo::exists(LibraryPath(choice.suppliedFolder));
    // A folder of pictures without its library is a lost library, not an installed program.
    const bool installed =
        !ownLibrary && supplied && !QFileInfo::exists(own + QStringLiteral("/Files"));
    if (!installed && canWrite(own)) {
        return own;
    }
    if (!ownLibrary && !supplied) {
        return own;
    }
    if (!QFileInfo::exists(LibraryPath(choice.userDataFolder))) {
        copyLibrary(ownLibrary ? own : choice.suppliedFolder, choice.userDataFolder);
    }
    return choice.userDataFolder;
}

void OpenLibraryDatabase(Connection& connection, const QString& programFolder)
{
    connection.open(LibraryPath(programFolder));
}

void CloseLibraryDatabase(Connection& connection)
{
    connection.close();
}

} // namespace varnholt
