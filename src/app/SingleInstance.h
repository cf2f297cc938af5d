#pragma once

#include "files/LockFile.h"

#include <QFileSystemWatcher>
#include <QObject>
#include <QString>

#include <memory>
#include <optional>

namespace varnholt {

/// One program at a time changes a library: the first start holds a lock beside the library file.
/// A second start of the same user on the same machine leaves a note there for the first to come
/// to the front, and ends; another user, or another machine on a network drive, may read.
/// Where the library's folder takes no lock it lies in the user's own runtime or temporary folder.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    enum class Start
    {
        First,      ///< this program has the library to itself
        HandedOver, ///< another one has been asked to show itself
        ReadOnly    ///< somebody else has the library
    };

    /// `libraryPath` tells libraries apart; links to the same file count as the same.
    explicit SingleInstance(const QString& libraryPath);

    /// Call it once.
    [[nodiscard]] Start start();

    struct Holder
    {
        QString user;
        QString machine;
    };
    /// Who has the library after `ReadOnly`; none where that program has not said so.
    [[nodiscard]] const std::optional<Holder>& holder() const { return holder_; }

    /// Begins to listen for other starts; for the first, once its window stands.
    void listen();

Q_SIGNALS:
    /// Another start asks for this program's window.
    void activationRequested();

private:
    Start leaveNote();
    void takeNote();

    QString libraryPath_;
    QString lockPath_;
    LockFile lock_;
    std::optional<Holder> holder_;
    std::unique_ptr<QFileSystemWatcher> watcher_;
};

} // namespace varnholt
