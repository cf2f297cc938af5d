// A step of a test shown in class: from the key to the painted question at full HD, with the
// library remembering each use in between.

#include "library/Library.h"
#include "show/ShowDesktop.h"
#include "show/ShowMemory.h"
#include "show/frmShow.h"
#include "store/services.h"
#include "support/big_library.h"
#include "support/report.h"
#include "toolkit/desktop_services.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QKeyEvent>
#include <QPainter>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTimer>

using namespace varnholt;

namespace {

constexpr int questions = 60;

/// One screen of full HD, wherever this runs.
class FullHd : public ShowDesktop
{
public:
    [[nodiscard]] std::vector<ShowScreen> screens() const override
    {
        return {{QStringLiteral("HD"), {}, {0, 0, 1920, 1080}, true}};
    }
    void cover(QWidget& window, const ShowScreen& screen) override
    {
        window.setGeometry(screen.geometry);
        window.show();
    }
};

class Ending : public DesktopMessageBoxes
{
public:
    bool yesNo(const QString&, const QString&, Answer) override { return true; }
};

/// As large as the pictures of questions are drawn.
void drawPicture(const QString& path, QRandomGenerator& random)
{
    QImage image(1272, 624, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    for (int i = 0; i < 900; ++i) {
        const QPointF at(20 + random.bounded(1220), 20 + random.bounded(580));
        painter.drawEllipse(at, 2 + random.bounded(9), 2 + random.bounded(12));
    }
    painter.end();
    if (!image.save(path, "JPG", 90)) {
        qFatal("cannot write %s", qPrintable(path));
    }
}

void wait(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace

int main(int argc, char** argv)
{
    const QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("VarnholtBench"));
    const QTemporaryDir folder;
    bench::makeBigLibrary(folder.filePath(QStringLiteral("Varnholt.mdb")), 100);
    QRandomGenerator random(1);
    ShowTest test;
    NewTest record{QStringLiteral("Test"), 1, {}, 1, {}, {}};
    for (int key = 1; key <= questions; ++key) {
        const QString path = folder.filePath(QStringLiteral("%1.jpg").arg(key));
        drawPicture(path, random);
        test.items.push_back(
            {{key, key, 1, 1, QStringLiteral("B")}, QStringLiteral("Topic - Subtopic"), path});
        record.items.push_back({key, key, QStringLiteral("B"), QStringLiteral("Topic"), {}});
    }
    Ending messages;
    SystemClock clock;
    Services services;
    services.messageBoxes = &messages;
    services.clock = &clock;
    services.programFolder = folder.path();
    Library library(folder.path(), clock);
    library.open();
    std::vector<double> milliseconds;
    {
        ShowMemory memory(library, std::move(record));
        FullHd desktop;
        frmShow show(services, std::move(test), {}, memory, desktop, nullptr);
        QTimer::singleShot(0, &show, [&] {
            auto* pupils = show.findChild<QWidget*>(QStringLiteral("frmShowPupils"));
            for (int i = 1; i < questions; ++i) {
                // So long at least a class looks at a question.
                wait(250);
                QKeyEvent press(QEvent::KeyPress, Qt::Key_Right, Qt::NoModifier);
                QElapsedTimer timer;
                timer.start();
                QApplication::sendEvent(pupils, &press);
                milliseconds.push_back(static_cast<double>(timer.nsecsElapsed()) * 1e-6);
            }
            show.close();
        });
        show.exec();
    }
    return bench::report({{"show.key", bench::median(milliseconds), 16, 8, "ms", "one frame"}},
                         argc, argv);
}
