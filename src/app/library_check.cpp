#include "app/library_check.h"

#include "pictures/picture_files.h"
#include "store/connection.h"
#include "store/library_file.h"
#include "store/statements.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace varnholt {

namespace {

constexpr QDir::Filters plainFiles = QDir::Files | QDir::Hidden | QDir::System | QDir::NoSymLinks;

QStringList filesIn(const QString& folder, const QString& pattern)
{
    const QRegularExpression ours(QRegularExpression::anchoredPattern(pattern));
    QStringList found;
    QDirIterator files(folder, plainFiles);
    while (files.hasNext()) {
        files.next();
        if (ours.match(files.fileName()).hasMatch()) {
            found.append(files.filePath());
        }
    }
    return found;
}

bool haveSameBytes(const QString& one, const QString& other)
{
    QFile first(one);
    QFile second(other);
    return first.open(QIODevice::ReadOnly) && second.open(QIODevice::ReadOnly) &&
           first.size() == second.size() && first.readAll() == second.readAll();
}

void takeBack(const QString& aside, const QString& programFolder, Connection& connection)
{
    const QString name = QFileInfo(aside).fileName();
    const std::int32_t key = name.section(u'.', 0, 0).toInt();
    const QString picture = FindPictureFile(programFolder, key);
    if (QFileInfo::exists(picture)) {
        if (haveSameBytes(aside, picture)) {
            QFile::remove(aside);
        }
    } else if (!connection.read(statements::SelectQuestionWithKey(key)).next()) {
        QFile::rename(aside, aside.left(aside.lastIndexOf(QStringLiteral(".bak"))));
    }
}

} // namespace

void TidyLibraryFolder(const QString& programFolder, Connection& connection)
{
    const QString pictures = QFileInfo(NewPictureFile(programFolder, 0)).path();
    for (const QString& path :
         filesIn(pictures, QStringLiteral(R"(\.new-[0-9]+\.part|[0-9]+\.jpg\.part)")) +
             filesIn(programFolder, QStringLiteral(R"(\.varnholt-[A-Za-z]{6})"))) {
        QFile::remove(path);
    }
    for (const QString& aside :
         filesIn(pictures, QStringLiteral(R"([0-9]{1,9}\.[jJ][pP][gG]\.bak[0-9]*)"))) {
        takeBack(aside, programFolder, connection);
    }
}

LibraryCheck::~LibraryCheck()
{
    stop_ = true;
    if (thread_.joinable()) {
        thread_.join();
    }
}

void LibraryCheck::start(const QString& programFolder, bool mayTidy)
{
    thread_ = std::thread([this, programFolder, mayTidy] { run(programFolder, mayTidy); });
}

void LibraryCheck::run(const QString& programFolder, bool mayTidy)
{
    try {
        Connection connection;
        OpenLibraryDatabase(connection, programFolder, Connection::Access::ReadOnly);
        if (mayTidy) {
            TidyLibraryFolder(programFolder, connection);
        }
        if (!connection.isSound(stop_)) {
            Q_EMIT damaged();
        }
    } catch (const LibraryBusy&) {
        // At the next start.
    } catch (const DatabaseError&) {
        // The window's own connection could open it.
        Q_EMIT damaged();
    }
}

} // namespace varnholt
