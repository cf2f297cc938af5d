// Dragging a selection of 600 x 400 pixels over a pasted screen of 1920 x 1080 in the real
// authoring window: all work per mouse move, painting included.

#include "authoring/CanvasPanel.h"
#include "authoring/CanvasView.h"
#include "authoring/frmAddNewQuestion.h"
#include "library/Library.h"
#include "store/services.h"
#include "support/report.h"
#include "toolkit/desktop_services.h"

#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QPushButton>
#include <QWindow>

#include <cstdlib>

namespace {

using namespace varnholt;

class OnePicture : public Clipboard
{
public:
    [[nodiscard]] bool answers() const override { return true; }
    [[nodiscard]] bool hasImage() const override { return true; }
    [[nodiscard]] QImage image() const override
    {
        QImage screen(1920, 1080, QImage::Format_RGB32);
        for (int y = 0; y < screen.height(); ++y) {
            for (int x = 0; x < screen.width(); ++x) {
                screen.setPixel(x, y, qRgb(x & 0xFF, y & 0xFF, (x ^ y) & 0xFF));
            }
        }
        return screen;
    }
};

class PaintCounter : public QObject
{
public:
    int paints = 0;

    bool eventFilter(QObject*, QEvent* event) override
    {
        paints += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
};

void post(QWidget* widget, QEvent::Type type, QPoint position)
{
    const bool held = type != QEvent::MouseButtonRelease;
    QMouseEvent event(type, position, widget->mapToGlobal(position),
                      type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
                      held ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(widget, &event);
}

/// Sends a mouse event and goes on until the canvas has been painted; waiting for the paint
/// to be due costs no CPU time.
void send(QWidget* widget, QEvent::Type type, QPoint position)
{
    static PaintCounter counter;
    widget->installEventFilter(&counter);
    const int before = counter.paints;
    post(widget, type, position);
    while (counter.paints == before) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    QCoreApplication::processEvents();
}

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    DesktopMessageBoxes messages;
    OnePicture clipboard;
    Services services;
    services.messageBoxes = &messages;
    services.clipboard = &clipboard;
    const SystemClock clock;
    Library library({}, clock);
    ProgramState state;
    frmAddNewQuestion window(services, state, library, {});
    window.show();
    while (!window.windowHandle()->isExposed()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    window.findChild<CanvasPanel*>()->setZoom(1);
    window.findChild<QPushButton*>(QStringLiteral("cmdPaste"))->click();
    auto* canvas = window.findChild<CanvasView*>(QStringLiteral("picQuestion"));
    post(canvas, QEvent::MouseButtonPress, {20, 20});
    send(canvas, QEvent::MouseMove, {620, 420});
    post(canvas, QEvent::MouseButtonRelease, {620, 420});
    post(canvas, QEvent::MouseButtonPress, {300, 200});
    std::vector<double> moves;
    for (int i = 0; i < 400; ++i) {
        const QPoint to(301 + i % 150, 200 + i % 70);
        moves.push_back(1000 * bench::cpuOf([&] { send(canvas, QEvent::MouseMove, to); }));
    }
    if (!window.canvas().Moving || window.canvas().state().selection().width() != 600) {
        std::abort();
    }
    const double drop = 1000 * bench::cpuOf([&] {
                            send(canvas, QEvent::MouseButtonRelease, {440, 250});
                        });
    return bench::report({{"canvas.drag", bench::median(moves), 16, -1, "ms", "one frame"},
                          {"canvas.drag.max", *std::max_element(moves.begin(), moves.end()), 16, -1,
                           "ms", "one frame"},
                          {"canvas.drop", drop, -1, -1, "ms", "the block set down"}},
                         argc, argv);
}
