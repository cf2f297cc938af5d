#include "app/run_program.h"
#include "store/errors.h"
#include "toolkit/desktop_services.h"
#include "words/words.h"

#include <QApplication>

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
            tell(error.message());
        } catch (const std::exception& error) {
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

} // namespace

int main(int argc, char** argv)
{
    Application application(argc, argv);
    varnholt::NameApplication();
    varnholt::InstallWords(application);
    return varnholt::RunProgram(application);
}
