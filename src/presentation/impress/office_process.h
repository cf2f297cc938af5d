#pragma once

#include "presentation/impress/impress_settings.h"

#include <QElapsedTimer>
#include <QLockFile>
#include <QProcess>
#include <QString>

#include <sys/types.h>

namespace varnholt {

/// The folder the office's own libraries were loaded from.
[[nodiscard]] QString officeFolder();

/// Held by whoever starts or ends an office: two starts at once on one profile can leave one that
/// hangs, and one that is ending still answers.
class OfficeLock
{
public:
    explicit OfficeLock(const ImpressSettings& settings);

    /// Waits a moment.
    [[nodiscard]] bool tryLock();

private:
    QLockFile file_;
};

/// The process of the command that starts the office, or hands over to one that runs.
class OfficeProcess
{
public:
    /// The office will accept connections to `pipe`.
    OfficeProcess(const ImpressSettings& settings, const QString& pipe);

    /// The process gets a session of its own and outlives this program. Throws `Error`.
    void start();

    /// Whether it ended a while ago, so that nothing is to be expected from it any more.
    bool isSpent();

    /// Whether any process of what was started is still there.
    [[nodiscard]] bool isRunning() const;

    /// Ends what was started and has not answered, or has promised to end and does not. An office
    /// that runs already is no process of ours: the one that handed over to it has ended by itself.
    void end();

private:
    const int handOverMs_;
    QProcess process_;
    qint64 pid_ = 0;
    /// Of processes: the office is a child of the command that starts it.
    pid_t group_ = 0;
    QElapsedTimer sinceEnd_;
};

} // namespace varnholt
