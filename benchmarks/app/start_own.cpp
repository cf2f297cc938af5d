// The program itself, ended right after its first paint.

#include "app/frmAssessment.h"
#include "app/run_program.h"

#include <QApplication>
#include <QEvent>
#include <QTimer>

#include <unistd.h>

namespace {

class QuitAfterPaint : public QObject
{
public:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            QTimer::singleShot(0, [] { _exit(0); });
        }
        return false;
    }
};

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    varnholt::NameApplication();
    QuitAfterPaint filter;
    return varnholt::RunProgram(application, [&filter](varnholt::frmAssessment& frame) {
        frame.installEventFilter(&filter);
    });
}
