#include "presentation/impress/office_connection.h"

#include "presentation/impress/office_process.h"
#include "store/errors.h"

#include <QCoreApplication>
#include <QElapsedTimer>
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

#include <csignal>

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(Presentation)
};

constexpr int pollEveryMs = 50;

/// Our own side of the bridge; made once and never taken down, because the office's libraries
/// are not made for that, least of all while a program is ending.
const css::uno::Reference<css::uno::XComponentContext>& localContext()
{
    static const auto* context = [] {
        // The office's libraries write to an office that has ended as to any other, and the signal
        // for that would end this program. What they throw is enough.
        std::signal(SIGPIPE, SIG_IGN);
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
            toUno(QStringLiteral("pipe,name=") + pipe_));
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

void OfficeConnection::waitFor(const ImpressSettings& settings, const QElapsedTimer& waiting)
{
    auto process = std::make_unique<OfficeProcess>(settings, pipe_);
    const auto ending = qScopeGuard([&] {
        if (process) {
            process->end();
        }
    });
    for (int start = 1; start <= 2; ++start) {
        process->start();
        while (!process->isSpent()) {
            QThread::msleep(pollEveryMs);
            if (tryOpen()) {
                process_ = std::move(process);
                return;
            }
            if (waiting.hasExpired(settings.startLimitMs)) {
                throw Error(Words::tr("The office suite does not answer."));
            }
        }
    }
    throw Error(Words::tr("The office suite ends as soon as it is started."));
}

bool OfficeConnection::reopen(const ImpressSettings& settings)
{
    close();
    pipe_ = settings.pipe;
    return tryOpen();
}

void OfficeConnection::open(const ImpressSettings& settings)
{
    pipe_ = settings.pipe.isEmpty() ? pipeName() : settings.pipe;
    QElapsedTimer waiting;
    waiting.start();
    OfficeLock lock(settings);
    while (!lock.tryLock()) {
        if (broken_) {
            throw Cancelled();
        }
        if (waiting.hasExpired(settings.startLimitMs)) {
            throw Error(Words::tr("The office suite does not answer."));
        }
    }
    if (!tryOpen()) {
        waitFor(settings, waiting);
    }
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
