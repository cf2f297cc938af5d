#include "presentation/impress/office_process.h"

#include "store/errors.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#include <rtl/ustring.h>

#include <csignal>
#include <dlfcn.h>
#include <unistd.h>

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(Presentation)
};

constexpr int pollEveryMs = 50;
/// How long an office that is told to end may take.
constexpr int endMs = 500;

/// A process that has ended, but that nobody has asked about yet, does not run either.
bool processRuns(qint64 pid)
{
    QFile status(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!status.open(QIODevice::ReadOnly)) {
        return kill(pid_t(pid), 0) == 0 && !QFile::exists(QStringLiteral("/proc/self/stat"));
    }
    const QByteArray text = status.readAll();
    return text.mid(text.lastIndexOf(')') + 2, 1) != "Z";
}

} // namespace

QString officeFolder()
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&rtl_uString_acquire), &info) == 0) {
        return {};
    }
    return QFileInfo(QString::fromLocal8Bit(info.dli_fname)).canonicalPath();
}

OfficeLock::OfficeLock(const ImpressSettings& settings)
    : file_(QDir::temp().filePath(QStringLiteral("varnholt-office-%1.lock").arg(getuid())))
{
    // Nobody holds it for longer than a start takes.
    file_.setStaleLockTime(settings.startLimitMs);
}

bool OfficeLock::tryLock()
{
    // Where nothing can be written nobody can be kept out.
    return file_.tryLock(pollEveryMs) || file_.error() != QLockFile::LockFailedError;
}

OfficeProcess::OfficeProcess(const ImpressSettings& settings, const QString& pipe)
    : handOverMs_(settings.handOverMs)
{
    process_.setProgram(settings.program.isEmpty() ? officeFolder() + QStringLiteral("/soffice")
                                                   : settings.program);
    process_.setArguments(settings.arguments +
                          QStringList{QStringLiteral("--nologo"), QStringLiteral("--norestore"),
                                      QStringLiteral("--nodefault"),
                                      QStringLiteral("--nofirststartwizard"),
                                      QStringLiteral("--accept=pipe,name=%1;urp;").arg(pipe)});
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString& entry : settings.environment) {
        environment.insert(entry.section(u'=', 0, 0), entry.section(u'=', 1));
    }
    process_.setProcessEnvironment(environment);
    process_.setStandardInputFile(QProcess::nullDevice());
    process_.setStandardOutputFile(QProcess::nullDevice());
    process_.setStandardErrorFile(QProcess::nullDevice());
}

void OfficeProcess::start()
{
    if (!process_.startDetached(&pid_)) {
        throw Error(Words::tr("\"%1\" could not be started: %2.")
                        .arg(process_.program(), process_.errorString()));
    }
    group_ = getpgid(pid_t(pid_));
    sinceEnd_.invalidate();
}

bool OfficeProcess::isSpent()
{
    if (!sinceEnd_.isValid()) {
        if (!processRuns(pid_)) {
            sinceEnd_.start();
        }
        return false;
    }
    return sinceEnd_.hasExpired(handOverMs_);
}

bool OfficeProcess::isRunning() const
{
    return group_ > 1 && kill(-group_, 0) == 0;
}

void OfficeProcess::end()
{
    if (group_ <= 1 || group_ == getpgrp()) {
        return;
    }
    kill(-group_, SIGTERM);
    for (int waited = 0; waited < endMs && isRunning(); waited += pollEveryMs) {
        QThread::msleep(pollEveryMs);
    }
    kill(-group_, SIGKILL);
}

} // namespace varnholt
