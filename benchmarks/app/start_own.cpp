// The program itself on the library beside it, ended right after a first paint: that of its
// frame, or with the argument "ready" that of the selection window.

#include "app/run_program.h"
#include "words/words.h"

#include <QApplication>
#include <QEvent>
#include <QTimer>

#include <cstring>

#include <unistd.h>

namespace {

class QuitAfterPaint : public QObject
{
public:
    explicit QuitAfterPaint(const char* window)
        : window_(QLatin1String(window))
    {}

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint && watched->objectName() == window_) {
            QTimer::singleShot(0, [] { _exit(0); });
        }
        return false;
    }

private:
    QString window_;
};

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    varnholt::NameApplication();
    varnholt::InstallWords(application);
    QuitAfterPaint filter(argc > 1 && std::strcmp(argv[1], "ready") == 0 ? "frmMain"
                                                                         : "frmAssessment");
    application.installEventFilter(&filter);
    return varnholt::RunProgram(application);
}
