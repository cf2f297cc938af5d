#include "presentation/impress/office_connection.h"

#include "store/errors.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QLockFile>
#include <QProcess>
#include <QScopeGuard>
#include <QThread>
#include <QUrl>
#include <QUuid>

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/bridge/BridgeFactory.hpp>
#include <com/sun/star/connection/Connector.hpp>
#include <com/sun/star/connection/NoConnectException.hpp>
#include <com/sun/star/lang/DisposedException.hpp>
#include <com/sun/star/lang/XComponent.hpp>
#include <cppuhelper/bootstrap.hxx>
#include <rtl/bootstrap.hxx>
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

/// The folder the office's own libraries were loaded from.
QString officeFolder()
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&rtl_uString_acquire), &info) == 0) {
        return {};
    }
    return QFileInfo(QString::fromLocal8Bit(info.dli_fname)).canonicalPath();
}

/// Our own side of the bridge; made once and never taken down, because the office's libraries
/// are not made for that, least of all while a program is ending.
const css::uno::Reference<css::uno::XComponentContext>& localContext()
{
    static const auto* context = [] {
        // Without this the first call ends in a segmentation fault: the libraries look for
        // their settings beside the executable.
        rtl::Bootstrap::setIniFilename(toUno(QString::fromLatin1(
            QUrl::fromLocalFile(officeFolder() + QStringLiteral("/fundamentalrc")).toEncoded())));
        return new css::uno::Reference(cppu::defaultBootstrap_InitialComponentContext());
    }();
    return *context;
}

/// One name for the run, and none that anybody else could have taken first.
const QString& pipeName()
{
    static const QString name =
        QStringLiteral("varnholt") + QUuid::createUuid().toString(QUuid::Id128);
    return name;
}

/// A process that has ended, but that nobody has asked about yet, does not run either.
bool isRunning(qint64 pid)
{
    QFile status(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!status.open(QIODevice::ReadOnly)) {
        return kill(pid_t(pid), 0) == 0 && !QFile::exists(QStringLiteral("/proc/self/stat"));
    }
    const QByteArray text = status.readAll();
    return text.mid(text.lastIndexOf(')') + 2, 1) != "Z";
}

/// The process of the command that starts the office, or hands over to one that runs.
class Starter
{
public:
    explicit Starter(const ImpressSettings& settings)
        : handOverMs_(settings.handOverMs)
    {
        process_.setProgram(settings.program.isEmpty() ? officeFolder() + QStringLiteral("/soffice")
                                                       : settings.program);
        process_.setArguments(
            settings.arguments +
            QStringList{QStringLiteral("--nologo"), QStringLiteral("--norestore"),
                        QStringLiteral("--nodefault"), QStringLiteral("--nofirststartwizard"),
                        QStringLiteral("--accept=pipe,name=%1;urp;").arg(pipeName())});
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const QString& entry : settings.environment) {
            environment.insert(entry.section(u'=', 0, 0), entry.section(u'=', 1));
        }
        process_.setProcessEnvironment(environment);
        process_.setStandardInputFile(QProcess::nullDevice());
        process_.setStandardOutputFile(QProcess::nullDevice());
        process_.setStandardErrorFile(QProcess::nullDevice());
    }

    /// The process gets a session of its own and outlives this program.
    void start()
    {
        if (!process_.startDetached(&pid_)) {
            throw Error(Words::tr("\"%1\" could not be started: %2.")
                            .arg(process_.program(), process_.errorString()));
        }
        group_ = getpgid(pid_t(pid_));
        sinceEnd_.invalidate();
    }

    /// Whether it ended a while ago, so that nothing is to be expected from it any more.
    bool isSpent()
    {
        if (!sinceEnd_.isValid()) {
            if (!isRunning(pid_)) {
                sinceEnd_.start();
            }
            return false;
        }
        return sinceEnd_.hasExpired(handOverMs_);
    }

    /// Ends what was started and has not answered. An office that runs already is no process of
    /// ours: the one that handed over to it has ended by itself.
    void end()
    {
        if (group_ <= 1 || group_ == getpgrp()) {
            return;
        }
        kill(-group_, SIGTERM);
        for (int waited = 0; waited < endMs && kill(-group_, 0) == 0; waited += pollEveryMs) {
            QThread::msleep(pollEveryMs);
        }
        kill(-group_, SIGKILL);
    }

private:
    const int handOverMs_;
    QProcess process_;
    qint64 pid_ = 0;
    /// Of processes: the office is a child of the command that starts it.
    pid_t group_ = 0;
    QElapsedTimer sinceEnd_;
};

} // namespace

OfficeConnection::~OfficeConnection()
{
    close();
}

void OfficeConnection::openOnce()
{
    const auto& local = localContext();
    const css::uno::Reference<css::connection::XConnection> connection =
        css::connection::Connector::create(local)->connect(
            toUno(QStringLiteral("pipe,name=") + pipeName()));
    {
        const std::lock_guard lock(mutex_);
        connection_ = connection;
    }
    const css::uno::Reference<css::bridge::XBridge> bridge =
        css::bridge::BridgeFactory::create(local)->createBridge(rtl::OUString(), "urp", connection,
                                                                nullptr);
    {
        const std::lock_guard lock(mutex_);
        bridge_ = bridge;
    }
    if (broken_) {
        throw Cancelled();
    }
    context_.set(bridge->getInstance("StarOffice.ComponentContext"), css::uno::UNO_QUERY_THROW);
}

bool OfficeConnection::tryOpen()
{
    for (int attempt = 1; !broken_; ++attempt) {
        try {
            openOnce();
            return true;
        } catch (const css::connection::NoConnectException&) {
            return false;
        } catch (const css::lang::DisposedException&) {
            // An office that was just closing; another one may take its place.
            close();
            if (attempt == 2) {
                return false;
            }
        } catch (const css::uno::Exception& exception) {
            close();
            throw Error(Words::tr("The office suite refused the connection: %1")
                            .arg(fromUno(exception.Message)));
        }
    }
    throw Cancelled();
}

void OfficeConnection::waitFor(const ImpressSettings& settings)
{
    Starter starter(settings);
    bool answered = false;
    const auto ending = qScopeGuard([&] {
        if (!answered) {
            starter.end();
        }
    });
    QElapsedTimer waiting;
    waiting.start();
    for (int start = 1; start <= 2; ++start) {
        starter.start();
        while (!starter.isSpent()) {
            QThread::msleep(pollEveryMs);
            answered = tryOpen();
            if (answered) {
                return;
            }
            if (waiting.hasExpired(settings.startLimitMs)) {
                throw Error(Words::tr("The office suite does not answer."));
            }
        }
    }
    throw Error(Words::tr("The office suite ends as soon as it is started."));
}

void OfficeConnection::open(const ImpressSettings& settings)
{
    if (tryOpen()) {
        return;
    }
    // Two starts at once on one profile can leave an office that hangs.
    QLockFile lock(QDir::temp().filePath(QStringLiteral("varnholt-office-%1.lock").arg(getuid())));
    QElapsedTimer waiting;
    waiting.start();
    while (!lock.tryLock(pollEveryMs) && !waiting.hasExpired(settings.startLimitMs)) {
        if (broken_) {
            throw Cancelled();
        }
    }
    waitFor(settings);
}

void OfficeConnection::close()
{
    css::uno::Reference<css::bridge::XBridge> bridge;
    {
        const std::lock_guard lock(mutex_);
        bridge = bridge_;
        bridge_.clear();
        connection_.clear();
    }
    context_.clear();
    try {
        const css::uno::Reference<css::lang::XComponent> component(bridge, css::uno::UNO_QUERY);
        if (component.is()) {
            component->dispose();
        }
    } catch (const css::uno::Exception&) {
        // The office has gone already.
    }
}

void OfficeConnection::breakOff()
{
    broken_ = true;
    css::uno::Reference<css::connection::XConnection> connection;
    {
        const std::lock_guard lock(mutex_);
        connection = connection_;
    }
    try {
        if (connection.is()) {
            connection->close();
        }
    } catch (const css::uno::Exception&) {
        // Closed already.
    }
}

} // namespace varnholt
