#include "app/run_program.h"

#include "app/SingleInstance.h"
#include "app/frmAssessment.h"
#include "app/library_rescue.h"
#include "app/library_wait.h"
#include "log/ProgramLog.h"
#include "presentation/default_programs.h"
#include "store/library_file.h"
#include "store/services.h"
#include "toolkit/DesktopClipboard.h"
#include "toolkit/HeldKeys.h"
#include "toolkit/LateIconStyle.h"
#include "toolkit/desktop_services.h"

#include <QApplication>
#include <QDir>
#include <QEvent>
#include <QIcon>
#include <QStandardPaths>
#include <QTimer>

#include <optional>

namespace varnholt {

namespace {

/// When the windows have long been painted.
constexpr int checkDelayMs = 2000;

QString firstExisting(const QStringList& paths)
{
    for (const QString& path : paths) {
        if (QFileInfo::exists(path)) {
            return QDir::cleanPath(path);
        }
    }
    return {};
}

/// Has Qt read every plug-in for pictures.
void setIcon()
{
    QIcon icon;
    for (const char* size : {"32", "64", "128"}) {
        icon.addFile(QStringLiteral(":/icons/varnholt-%1.png").arg(QLatin1String(size)));
    }
    QApplication::setWindowIcon(icon);
}

/// Opens the selection window as soon as the frame has painted itself, so that the program is
/// on the screen before the catalogue and its icon are read.
class OpenAfterFirstPaint : public QObject
{
public:
    explicit OpenAfterFirstPaint(frmAssessment& frame)
        : frame_(frame)
    {
        frame_.installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            watched->removeEventFilter(this);
            QTimer::singleShot(0, &frame_, [this] {
                frame_.mnuCreate_Click();
                setIcon();
                qCInfo(logProgram, "Varnholt %s started with Qt %s.",
                       qUtf8Printable(QApplication::applicationVersion()), qVersion());
            });
        }
        return false;
    }

private:
    frmAssessment& frame_;
};

QString inUse(const std::optional<SingleInstance::Holder>& holder)
{
    return holder
               ? QApplication::translate("RunProgram",
                                         "The question library is in use by %1 on %2 and can only "
                                         "be read here. To change it, start Varnholt again once it "
                                         "is closed there.")
                     .arg(holder->user, holder->machine)
               : QApplication::translate("RunProgram",
                                         "The question library is in use by another program and "
                                         "can only be read here. To change it, start Varnholt "
                                         "again once it is closed there.");
}

int run(QApplication& application, MessageBoxes& messages)
{
    const QString own = QApplication::applicationDirPath();
    const QString share = own + QStringLiteral("/../share/varnholt");
    const QString programFolder = ChooseProgramFolder(
        {own, QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation),
         firstExisting({share + QStringLiteral("/library")})});

    SingleInstance instance(LibraryPath(programFolder));
    const SingleInstance::Start start = instance.start();
    if (start == SingleInstance::Start::HandedOver) {
        return 0;
    }
    const bool first = start == SingleInstance::Start::First;

    DesktopFileDialogs fileDialogs;
    DesktopClipboard clipboard;
    SystemClock clock;
    SplitMix64 random;
    DefaultPresentationPrograms presentations(programFolder);
    Services services;
    services.messageBoxes = &messages;
    services.fileDialogs = &fileDialogs;
    services.clipboard = &clipboard;
    services.clock = &clock;
    services.random = &random;
    services.presentationPrograms = &presentations;
    services.programFolder = programFolder;

    ProgramState state;
    const QString guide = firstExisting(
        {own + QStringLiteral("/guide/index.html"), share + QStringLiteral("/guide/index.html")});
    std::optional<frmAssessment> opened;
    const auto open = [&] {
        opened.emplace(services, state, guide,
                       first ? Connection::Access::Change : Connection::Access::ReadOnly);
    };
    try {
        if (!OpenWhenFree(open)) {
            return 1;
        }
    } catch (const DatabaseError& error) {
        if (!first || !RescueLibrary(services, error.message())) {
            throw;
        }
        open();
    }
    frmAssessment& frame = *opened;
    if (!first) {
        frame.showNotice("lblInUse", inUse(instance.holder()));
    }
    if (programFolder != own && QFileInfo::exists(LibraryPath(own))) {
        frame.showNotice("lblOwnCopy",
                         QApplication::translate(
                             "RunProgram", "The question library beside the program cannot be "
                                           "changed. You work on your own copy of it in %1.")
                             .arg(QDir::toNativeSeparators(programFolder)));
    }
    QObject::connect(&instance, &SingleInstance::activationRequested, &frame, [&frame] {
        frame.setWindowState(frame.windowState() & ~Qt::WindowMinimized);
        frame.show();
        frame.raise();
        frame.activateWindow();
    });
    const OpenAfterFirstPaint opener(frame);
    frame.show();
    // Other starts can wait until this window stands.
    if (first) {
        QTimer::singleShot(0, &frame, [&instance] { instance.listen(); });
    }
    QTimer::singleShot(checkDelayMs, &frame, [&frame, first] { frame.checkLibrary(first); });
    return application.exec();
}

} // namespace

void NameApplication()
{
    QApplication::setOrganizationName(QStringLiteral("Varnholt"));
    QApplication::setApplicationName(QStringLiteral("Varnholt"));
    QApplication::setApplicationVersion(QStringLiteral(VARNHOLT_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("org.varnholt.Varnholt"));
}

int RunProgram(QApplication& application)
{
    QApplication::setStyle(new LateIconStyle);
    const HeldKeys heldKeys;
    DesktopMessageBoxes messages;
    try {
        return run(application, messages);
    } catch (const DatabaseError& error) {
        messages.inform(QApplication::translate("RunProgram", "Database Error"), error.message());
        return 1;
    } catch (const Error& error) {
        messages.inform(QApplication::translate("RunProgram", "Error"), error.message());
        return 1;
    }
}

} // namespace varnholt
