#include "app/SingleInstance.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSysInfo>

#ifdef Q_OS_WIN
#include <windows.h>
#endif

namespace varnholt {

namespace {

/// Where the lock lies when it cannot lie beside the library.
QString ownPlace(const QString& libraryPath)
{
    const QByteArray hash =
        QCryptographicHash::hash((libraryPath + u'\n' + QDir::homePath()).toUtf8(),
                                 QCryptographicHash::Sha1)
            .toHex();
    QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (folder.isEmpty() || !QFileInfo(folder).isWritable()) {
        folder = QDir::tempPath();
    }
    return folder + QStringLiteral("/varnholt-") + QString::fromLatin1(hash.left(16)) +
           QStringLiteral(".lock");
}

QString userName()
{
    for (const char* variable : {"USER", "LOGNAME", "USERNAME"}) {
        QString name = qEnvironmentVariable(variable);
        if (!name.isEmpty()) {
            return name;
        }
    }
    return QDir::home().dirName();
}

/// What the holder writes into its lock, a line each: user, machine, and what tells both from
/// others of the same names.
QByteArray identity()
{
    return (userName() + u'\n' + QSysInfo::machineHostName() + u'\n' + QDir::homePath() + u' ')
               .toUtf8() +
           QSysInfo::machineUniqueId() + '\n';
}

} // namespace

SingleInstance::SingleInstance(const QString& libraryPath)
    : libraryPath_(QFileInfo(libraryPath).canonicalFilePath())
{
    if (libraryPath_.isEmpty()) {
        libraryPath_ = libraryPath;
    }
}

SingleInstance::Start SingleInstance::start()
{
    for (const QString& path : {libraryPath_ + QStringLiteral(".lock"), ownPlace(libraryPath_)}) {
        lockPath_ = path;
        switch (lock_.take(QFileInfo(path).filesystemFilePath(),
                           QFileInfo(libraryPath_).filesystemFilePath())) {
        case LockFile::Outcome::Taken:
            lock_.setText(identity().toStdString());
            return Start::First;
        case LockFile::Outcome::HeldByAnother:
            return leaveNote();
        case LockFile::Outcome::NotPossible:
            break;
        }
    }
    // Without a place for locks the program still runs.
    return Start::First;
}

SingleInstance::Start SingleInstance::leaveNote()
{
    QFile note(lockPath_);
    QByteArray text;
    if (note.open(QIODevice::ReadOnly)) {
        text = note.readAll();
        note.close();
    }
#ifdef Q_OS_WIN
    // Only who was started last may come to the front, or let others.
    AllowSetForegroundWindow(ASFW_ANY);
#endif
    if (text.startsWith(identity()) && note.open(QIODevice::Append) && note.write("show\n") > 0) {
        return Start::HandedOver;
    }
    const QStringList lines = QString::fromUtf8(text).split(u'\n');
    if (lines.size() > 2) {
        holder_ = {lines.at(0), lines.at(1)};
    }
    return Start::ReadOnly;
}

void SingleInstance::listen()
{
    watcher_ = std::make_unique<QFileSystemWatcher>(QStringList{lockPath_});
    connect(watcher_.get(), &QFileSystemWatcher::fileChanged, this, &SingleInstance::takeNote);
    takeNote();
}

void SingleInstance::takeNote()
{
    const QByteArray own = identity();
    if (QFileInfo(lockPath_).size() > own.size()) {
        lock_.setText(own.toStdString());
        Q_EMIT activationRequested();
    }
}

} // namespace varnholt
