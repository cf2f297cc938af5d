#include "app/SingleInstance.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace varnholt {

namespace {

QString basePath(const QString& libraryPath)
{
    QString path = QFileInfo(libraryPath).canonicalFilePath();
    if (path.isEmpty()) {
        path = libraryPath;
    }
    const QByteArray hash = QCryptographicHash::hash((path + u'\n' + QDir::homePath()).toUtf8(),
                                                     QCryptographicHash::Sha1)
                                .toHex();
    QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (folder.isEmpty() || !QFileInfo(folder).isWritable()) {
        folder = QDir::tempPath();
    }
    return folder + QStringLiteral("/varnholt-") + QString::fromLatin1(hash.left(16));
}

} // namespace

SingleInstance::SingleInstance(const QString& libraryPath)
    : notePath_(basePath(libraryPath) + QStringLiteral(".show"))
    , lock_(basePath(libraryPath) + QStringLiteral(".lock"))
{
    // However long it runs, a program that lives is not stale.
    lock_.setStaleLockTime(0);
}

bool SingleInstance::handOver()
{
    if (lock_.tryLock() || lock_.error() != QLockFile::LockFailedError) {
        // Without a place for locks the program still runs; only the courtesy is lost.
        return false;
    }
    QFile note(notePath_);
    if (note.open(QIODevice::WriteOnly | QIODevice::Append)) {
        note.write("show\n");
    }
    return true;
}

void SingleInstance::listen()
{
    QFile::remove(notePath_);
    QFile note(notePath_);
    if (!note.open(QIODevice::WriteOnly)) {
        return;
    }
    note.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    note.close();
    watcher_ = std::make_unique<QFileSystemWatcher>(QStringList{notePath_});
    connect(watcher_.get(), &QFileSystemWatcher::fileChanged, this, &SingleInstance::takeNote);
}

void SingleInstance::takeNote()
{
    QFile note(notePath_);
    if (note.size() > 0 && note.open(QIODevice::ReadWrite)) {
        note.resize(0);
        Q_EMIT activationRequested();
    }
}

} // namespace varnholt
