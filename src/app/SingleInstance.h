#pragma once

#include <QLocalServer>
#include <QObject>
#include <QString>

namespace varnholt {

/// One running program per library: the first start listens, a second one asks it to come
/// to the front and ends.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    /// `libraryPath` tells libraries apart; links to the same file count as the same.
    explicit SingleInstance(const QString& libraryPath);

    /// True when another program serves this library already; it has been asked to show
    /// itself. False when this one is the first and listens from now on.
    [[nodiscard]] bool handOver();

Q_SIGNALS:
    /// Another start asks for this program's window.
    void activationRequested();

private:
    QString name_;
    QLocalServer server_;
};

} // namespace varnholt
