#include "desktop/KeepAwake.h"

#ifdef VARNHOLT_DBUS
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#endif
#ifdef Q_OS_WIN
#include <windows.h>
#endif

namespace varnholt {

#if defined(VARNHOLT_DBUS)

namespace {

QDBusMessage screenSaver(const char* method)
{
    return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.ScreenSaver"),
                                          QStringLiteral("/org/freedesktop/ScreenSaver"),
                                          QStringLiteral("org.freedesktop.ScreenSaver"),
                                          QLatin1String(method));
}

} // namespace

struct KeepAwake::Request
{
    /// Nobody waits for it: a desktop that hangs must not keep a show from beginning.
    QDBusPendingReply<uint> cookie;
};

KeepAwake::KeepAwake(const QString& reason)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (bus.isConnected()) {
        QDBusMessage call = screenSaver("Inhibit");
        call << QCoreApplication::applicationName() << reason;
        request_ = std::make_unique<Request>(Request{bus.asyncCall(call)});
    }
}

KeepAwake::~KeepAwake()
{
    if (!request_) {
        return;
    }
    auto* watcher = new QDBusPendingCallWatcher(request_->cookie, QCoreApplication::instance());
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished,
                     [](QDBusPendingCallWatcher* finished) {
                         const QDBusPendingReply<uint> reply = *finished;
                         if (reply.isValid()) {
                             QDBusMessage call = screenSaver("UnInhibit");
                             call << reply.value();
                             QDBusConnection::sessionBus().send(call);
                         }
                         finished->deleteLater();
                     });
}

#elif defined(Q_OS_WIN)

struct KeepAwake::Request
{};

KeepAwake::KeepAwake(const QString&)
{
    SetThreadExecutionState(ES_CONTINUOUS | ES_DISPLAY_REQUIRED | ES_SYSTEM_REQUIRED);
}

KeepAwake::~KeepAwake()
{
    SetThreadExecutionState(ES_CONTINUOUS);
}

#else

struct KeepAwake::Request
{};

KeepAwake::KeepAwake(const QString&) {}

KeepAwake::~KeepAwake() = default;

#endif

} // namespace varnholt
