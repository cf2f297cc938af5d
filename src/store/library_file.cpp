#include "store/library_file.h"

#include "files/placing.h"
#include "files/sync.h"
#include "store/errors.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>

#include <filesystem>
#include <vector>

namespace varnholt {

namespace {

struct Words
{
    Q_DECLARE_TR_FUNCTIONS(LibraryFile)
};

bool canWrite(const QString& folder)
{
    // Permission bits do not tell about read-only file systems; a try does.
    QTemporaryFile probe(folder + QStringLiteral("/.varnholt-XXXXXX"));
    return probe.open();
}

void copyFile(const QString& from, const QString& to)
{
    const std::error_code error = PlaceFile(QFileInfo(from).filesystemFilePath(),
                                            QFileInfo(to).filesystemFilePath(), Placing::Copy);
    if (error || !QFile::setPermissions(to, QFile::permissions(to) | QFile::WriteOwner)) {
        throw Error(
            Words::tr("The supplied question library could not be copied to\n%1\n\n(%2)")
                .arg(QDir::toNativeSeparators(to), QString::fromStdString(error.message())));
    }
}

void copyLibrary(const QString& from, const QString& to)
{
    const QDir pictures(from + QStringLiteral("/Files"));
    if (!QDir().mkpath(to + QStringLiteral("/Files"))) {
        throw Error(Words::tr("The folder for your question library could not be made:\n%1")
                        .arg(QDir::toNativeSeparators(to)));
    }
    std::vector<std::filesystem::path> copied;
    for (const QString& name : pictures.entryList(QDir::Files)) {
        const QString picture = to + QStringLiteral("/Files/") + name;
        copyFile(pictures.filePath(name), picture);
        copied.push_back(QFileInfo(picture).filesystemFilePath());
    }
    // Changes that were not brought into the file belong to it. What is on the disk before the
    // file itself cannot be missing from a library that is there.
    const QString original = LibraryPath(from);
    const QString copy = LibraryPath(to);
    for (const QString& ending : {QStringLiteral("-wal"), QStringLiteral("-journal"), QString()}) {
        QFile::remove(copy + ending);
        if (ending.isEmpty()) {
            (void)SyncFiles(copied);
        }
        if (QFileInfo::exists(original + ending)) {
            copyFile(original + ending, copy + ending);
            copied.push_back(QFileInfo(copy + ending).filesystemFilePath());
        }
    }
}

} // namespace

QString LibraryPath(const QString& programFolder)
{
    const QString usual = programFolder + QStringLiteral("/Varnholt.mdb");
    if (QFileInfo(usual).isFile()) {
        return usual;
    }
    // Name filters match without regard to case.
    const QStringList spellings =
        QDir(programFolder)
            .entryList({QStringLiteral("Varnholt.mdb")}, QDir::Files | QDir::Hidden, QDir::Name);
    return spellings.isEmpty() ? usual : programFolder + u'/' + spellings.first();
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

void OpenLibraryDatabase(Connection& connection, const QString& programFolder,
                         Connection::Access access)
{
    connection.open(LibraryPath(programFolder), access);
}

void CloseLibraryDatabase(Connection& connection)
{
    connection.close();
}

} // namespace varnholt
