#include "presentation/default_programs.h"

#include "presentation/impress/impress_plugin.h"
#include "presentation/powerpoint/powerpoint.h"
#include "presentation/pptx/pptx_program.h"
#include "store/errors.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace varnholt {

namespace {

const QString messageTitle = QStringLiteral("Presentation");

/// False only when the desktop says that no program is registered for .pptx files: what opens
/// them starts anyway then and fails unseen.
bool programIsRegistered()
{
    const QString query = QStandardPaths::findExecutable(QStringLiteral("xdg-mime"));
    if (query.isEmpty()) {
        return true;
    }
    QProcess process;
    process.start(query, {u"query"_s, u"default"_s,
                          u"application/vnd.openxmlformats-officedocument.presentationml."
                          "presentation"_s});
    constexpr int limitMs = 3000;
    return !process.waitForFinished(limitMs) ||
           !process.readAllStandardOutput().trimmed().isEmpty();
}

} // namespace

bool PresentationSettings::openWithDesktop(const QString& path)
{
    return displayIsThere() && programIsRegistered() &&
           QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

bool PresentationSettings::displayIsThere()
{
#ifdef Q_OS_WIN
    return true;
#else
    if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()) &&
        QStringList{u"offscreen"_s, u"minimal"_s}.contains(QGuiApplication::platformName())) {
        return false;
    }
    return !qEnvironmentVariableIsEmpty("DISPLAY") ||
           !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
#endif
}

ImpressSettings PresentationSettings::impressFromEnvironment()
{
    ImpressSettings settings;
    const QString profile = qEnvironmentVariable("VARNHOLT_OFFICE_PROFILE");
    if (!profile.isEmpty()) {
        settings.arguments = QStringList{u"-env:UserInstallation="_s +
                                         QUrl::fromLocalFile(profile).toString(QUrl::FullyEncoded)};
    }
    return settings;
}

void PresentationSettings::processWaitingEvents()
{
    QCoreApplication::processEvents();
}

DefaultPresentationPrograms::DefaultPresentationPrograms(MessageBoxes& messages,
                                                         QString programFolder,
                                                         PresentationSettings settings)
    : messages_(messages)
    , programFolder_(std::move(programFolder))
    , settings_(std::move(settings))
{}

std::unique_ptr<PresentationProgram> DefaultPresentationPrograms::startPptx() const
{
    PptxSettings settings;
    settings.programFolder = programFolder_;
    settings.now = settings_.now;
    settings.open = settings_.open;
    settings.alive = settings_.alive;
    settings.notify = [this](const QString& message) { messages_.inform(messageTitle, message); };
    return std::make_unique<PptxProgram>(std::move(settings));
}

std::unique_ptr<PresentationProgram> DefaultPresentationPrograms::startImpress() const
{
    ImpressSettings settings = settings_.impress;
    settings.alive = settings_.alive;
    settings.keepWaiting = [this] {
        return messages_.yesNo(messageTitle,
                               QStringLiteral("Impress has not answered for a while. Do you want "
                                              "to keep waiting for it?"));
    };
    return ImpressPlugin::instance().start(settings);
}

std::unique_ptr<PresentationProgram> DefaultPresentationPrograms::start()
{
    const QString& asked = settings_.program;
    if (asked == u"pptx") {
        return startPptx();
    }
    if (asked == u"impress") {
        return startImpress();
    }
    if (asked == u"powerpoint" && !powerPointAvailable()) {
        throw Error(QStringLiteral("PowerPoint is not available on this computer."));
    }
    if (!asked.isEmpty()) {
        throw Error(QStringLiteral("VARNHOLT_PRESENTATION is \"%1\", but must be \"powerpoint\", "
                                   "\"impress\" or \"pptx\".")
                        .arg(asked));
    }
    if (!settings_.hasDisplay() || ImpressPlugin::instance().entry() == nullptr) {
        return startPptx();
    }
    QString reason;
    try {
        return startImpress();
    } catch (const Cancelled&) {
        // The user would rather not wait for Impress; the slides are wanted all the same.
        return startPptx();
    } catch (const Error& error) {
        reason = error.message();
    }
    messages_.inform(messageTitle,
                     QStringLiteral("Impress did not start: %1\n\nThe slides are written to a "
                                    "presentation file instead.")
                         .arg(reason));
    return startPptx();
}

} // namespace varnholt
