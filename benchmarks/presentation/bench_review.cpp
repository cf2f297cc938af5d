// From the last "Include" of a review to the slides on the screen, with no office running before
// the review, against an office that runs already and opens an empty presentation.

#include "library/Library.h"
#include "presentation/build_fixture.h"
#include "presentation/default_programs.h"
#include "presentation/impress/impress_plugin.h"
#include "presentation/office_host.h"
#include "selection/frmMain.h"
#include "selection/frmSelect.h"
#include "store/services.h"
#include "support/big_library.h"
#include "support/report.h"
#include "toolkit/desktop_services.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

#include <csignal>

using namespace varnholt;
using namespace varnholt::test;

namespace {

const QString macros = QStringLiteral(R"(
REM Milliseconds until everything is on the screen.
Function Painted
  Dim started
  started = GetSystemTicks()
  createUnoService("com.sun.star.awt.Toolkit").processEventsToIdle()
  Painted = CStr(GetSystemTicks() - started)
End Function

Function OpenEmpty
  Dim started
  started = GetSystemTicks()
  StarDesktop.loadComponentFromURL("private:factory/simpress", "_blank", 0, Array())
  createUnoService("com.sun.star.awt.Toolkit").processEventsToIdle()
  OpenEmpty = CStr(GetSystemTicks() - started)
End Function
)");

constexpr int wanted = 10;
/// So long at least a teacher looks at a question.
constexpr int lookMs = 2500;
constexpr int runs = 5;

void wait(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

void press(QWidget& window, const char* button)
{
    window.findChild<QPushButton*>(QLatin1String(button))->click();
}

/// Milliseconds from the last "Include" on.
double review(Services& services, Library& library, OfficeHost& host)
{
    ProgramState state;
    frmMain main(services, state, library);
    main.show();
    main.findChild<QLineEdit*>(QStringLiteral("txtQuestions"))->setText(QString::number(wanted));
    press(main, "cmdCreate");
    auto* window = main.findChild<frmSelect*>();
    for (int question = 1; question < wanted; ++question) {
        wait(lookMs);
        press(*window, "cmdInclude");
    }
    wait(lookMs);
    QElapsedTimer timer;
    timer.start();
    press(*window, "cmdInclude");
    const double built = double(timer.nsecsElapsed()) / 1e6;
    if (window->isVisible()) {
        qFatal("the review has not built anything");
    }
    // The way to the macro is no part of it.
    return built + host.runMacro(QStringLiteral("Painted")).toDouble();
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("VarnholtBench"));
    OfficeHost host(macros);
    if (!host.problem().isEmpty() || ImpressPlugin::instance().entry() == nullptr) {
        std::fprintf(stderr, "no Impress to measure: %s %s\n", qPrintable(host.problem()),
                     qPrintable(ImpressPlugin::instance().reason()));
        return 1;
    }
    const QTemporaryDir folder;
    bench::makeBigLibrary(folder.filePath(QStringLiteral("Varnholt.mdb")), 100);
    QDir(folder.path()).mkdir(QStringLiteral("Files"));
    for (int key = 1; key <= 100; ++key) {
        writePicture(folder.filePath(QStringLiteral("Files/%1.JPG").arg(key)), {1272, 624}, 96);
    }
    DesktopMessageBoxes messages;
    SystemClock clock;
    SplitMix64 random;
    PresentationSettings settings;
    settings.program = QStringLiteral("impress");
    settings.impress = host.settings();
    DefaultPresentationPrograms programs(folder.path(), settings);
    Services services;
    services.messageBoxes = &messages;
    services.clock = &clock;
    services.random = &random;
    services.presentationPrograms = &programs;
    services.programFolder = folder.path();
    Library library(folder.path(), clock);
    library.open();

    std::vector<double> ratios;
    for (int run = 1; run <= runs; ++run) {
        host.signalOffice(SIGKILL);
        if (!host.ends()) {
            qFatal("an office does not end");
        }
        const double own = review(services, library, host);
        host.runMacro(QStringLiteral("CloseAll"));
        std::vector<double> peers;
        for (int i = 0; i < 3; ++i) {
            peers.push_back(host.runMacro(QStringLiteral("OpenEmpty")).toDouble());
            host.runMacro(QStringLiteral("CloseAll"));
        }
        const double peer = bench::median(peers);
        std::printf("%d questions: %.0f ms; an empty presentation %.0f ms\n", wanted, own, peer);
        ratios.push_back(own / peer);
    }
    return bench::report({{"review.open", bench::median(ratios), 2, 1.3, "x",
                           "the office, already running, opening an empty presentation"}},
                         argc, argv);
}
