#include "show/ShowDesktop.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

namespace varnholt {

ShowDesktop::ShowDesktop()
{
    const auto watch = [this](QScreen* screen) {
        connect(screen, &QScreen::geometryChanged, this, &ShowDesktop::screensChanged);
    };
    for (QScreen* screen : QGuiApplication::screens()) {
        watch(screen);
    }
    // Afterwards: one that goes is still in the list, and windows are being moved off it.
    connect(
        qApp, &QGuiApplication::screenAdded, this,
        [this, watch](QScreen* screen) {
            watch(screen);
            Q_EMIT screensChanged();
        },
        Qt::QueuedConnection);
    connect(qApp, &QGuiApplication::screenRemoved, this, &ShowDesktop::screensChanged,
            Qt::QueuedConnection);
    connect(qApp, &QGuiApplication::primaryScreenChanged, this, &ShowDesktop::screensChanged,
            Qt::QueuedConnection);
}

std::vector<ShowScreen> ShowDesktop::screens() const
{
    std::vector<ShowScreen> screens;
    for (const QScreen* screen : QGuiApplication::screens()) {
        screens.push_back({screen->name(), screen->serialNumber(), screen->geometry(),
                           screen == QGuiApplication::primaryScreen()});
    }
    return screens;
}

namespace {

void moveTo(QWidget& window, const ShowScreen& screen)
{
    // A window that fills a screen does not leave it.
    window.setWindowState(Qt::WindowNoState);
    for (QScreen* known : QGuiApplication::screens()) {
        if (known->name() == screen.name && known->geometry() == screen.geometry) {
            window.setScreen(known);
        }
    }
    window.setGeometry(screen.geometry);
}

} // namespace

void ShowDesktop::cover(QWidget& window, const ShowScreen& screen)
{
    moveTo(window, screen);
    window.showFullScreen();
}

void ShowDesktop::fill(QWidget& window, const ShowScreen& screen)
{
    moveTo(window, screen);
    window.showMaximized();
}

} // namespace varnholt
