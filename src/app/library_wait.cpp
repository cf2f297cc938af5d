#include "app/library_wait.h"

#include "store/errors.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QScopeGuard>
#include <QTimer>

#include <exception>

namespace varnholt {

bool OpenWhenFree(const std::function<void()>& open)
{
    constexpr int retryMs = 500;
    QString reason;
    try {
        open();
        return true;
    } catch (const LibraryBusy& busy) {
        reason = busy.message();
    }

    // The window that waits is the only one, but its end is not the program's.
    QApplication::setQuitOnLastWindowClosed(false);
    const auto quitAgain = qScopeGuard([] { QApplication::setQuitOnLastWindowClosed(true); });
    QMessageBox box;
    box.setObjectName(QStringLiteral("boxLibraryWait"));
    box.setWindowTitle(QStringLiteral("Varnholt"));
    box.setTextFormat(Qt::PlainText);
    box.setText(reason);
    box.setInformativeText(
        QApplication::translate("LibraryWait", "Varnholt opens as soon as it is free."));
    box.addButton(QApplication::translate("LibraryWait", "Do Not Wait"), QMessageBox::RejectRole);

    bool opened = false;
    std::exception_ptr failure;
    QTimer retry;
    QObject::connect(&retry, &QTimer::timeout, &box, [&] {
        try {
            open();
            opened = true;
            box.accept();
        } catch (const LibraryBusy&) {
            // Still.
        } catch (...) {
            failure = std::current_exception();
            box.accept();
        }
    });
    retry.start(retryMs);
    box.exec();
    retry.stop();
    if (failure) {
        std::rethrow_exception(failure);
    }
    return opened;
}

} // namespace varnholt
