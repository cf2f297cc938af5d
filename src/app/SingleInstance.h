#pragma once

#include <QFileSystemWatcher>
#include <QLockFile>
#include <QObject>
#include <QString>

#include <memory>

namespace varnholt {

/// One running program per library: the first start holds a lock, a second one leaves it a
/// note to come to the front and ends. A lock whose program was killed does not count.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    /// `libraryPath` tells libraries apart; links to the same file count as the same.
    explicit SingleInstance(const QString& libraryPath);

    /// True when another program serves this library already; it has been asked to show
    /// itself. False when this one is the first.
    [[nodiscard]] bool handOver();

    /// Begins to listen for other starts; call it once the window stands.
    void listen();

Q_SIGNALS:
    /// Another start asks for this program's window.
    void activationRequested();

private:
    void takeNote();

    /// Lies in the user's own runtime or temporary folder, because the library's folder may
    /// not be writable.
    QString notePath_;
    QLockFile lock_;
    std::unique_ptr<QFileSystemWatcher> watcher_;
};

} // namespace varnholt
