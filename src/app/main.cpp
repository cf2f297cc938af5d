#include "app/run_program.h"
#include "log/ProgramLog.h"
#include "store/errors.h"
#include "toolkit/desktop_services.h"
#include "words/words.h"

#include <QApplication>
#include <QCommandLineParser>

#include <algorithm>
#include <cstring>

namespace {

/// A failure that no handler has caught must not take the program, and with it the teacher's
/// work in other windows, down.
class Application : public QApplication
{
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override
    {
        try {
            return QApplication::notify(receiver, event);
        } catch (const varnholt::Error& error) {
            qCCritical(varnholt::logProgram, "A failure that nothing handled.");
            tell(error.message());
        } catch (const std::exception& error) {
            qCCritical(varnholt::logProgram, "A fault: %s", error.what());
            tell(QCoreApplication::translate("RunProgram", "Something went wrong (%1).")
                     .arg(QString::fromLocal8Bit(error.what())));
        }
        return true;
    }

private:
    static void tell(const QString& text)
    {
        varnholt::DesktopMessageBoxes().inform(QCoreApplication::translate("RunProgram", "Error"),
                                               text);
    }
};

/// Reads the command line; ends the program where that is all it asks for.
void readOptions(const QCoreApplication& application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QCoreApplication::translate(
        "main", "Keeps libraries of test questions and turns a draw of them into slides."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.process(application);
}

bool asksForWords(int argc, char** argv)
{
    return std::any_of(argv + 1, argv + argc, [](const char* argument) {
        for (const char* option : {"-h", "--help", "--help-all", "-v", "--version"}) {
            if (std::strcmp(argument, option) == 0) {
                return true;
            }
        }
        return false;
    });
}

} // namespace

int main(int argc, char** argv)
{
#ifdef Q_OS_WIN
    // Compiled regular expressions keep a stack for each thread, and MinGW takes its place away
    // before it is freed: a thread that used one could crash the program by ending.
    qputenv("QT_ENABLE_REGEXP_JIT", "0");
#endif
    // These answers need no display.
    if (argc > 1 && asksForWords(argc, argv)) {
        const QCoreApplication application(argc, argv);
        varnholt::NameApplication();
        readOptions(application);
    }
    Application application(argc, argv);
    varnholt::NameApplication();
    readOptions(application);
    varnholt::InstallWords(application);
    const varnholt::ProgramLog log(varnholt::ProgramLog::ownPath());
    return varnholt::RunProgram(application);
}
