#include "presentation/default_programs.h"

#include "desktop/desktop_programs.h"
#include "presentation/impress/impress_plugin.h"
#include "presentation/impress/office_ahead.h"
#include "presentation/pptx/pptx_program.h"
#include "store/errors.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(Presentation)
};

#ifndef Q_OS_WIN

const QString presentationType =
    u"application/vnd.openxmlformats-officedocument.presentationml.presentation"_s;

/// Whether the desktop has a program for the file and the means to find it. Without the means
/// Qt would hand the file to a web browser.
bool openWithDesktopsChoice(const QString& path)
{
    return !QStandardPaths::findExecutable(u"xdg-open"_s).isEmpty() &&
           ProgramIsRegistered(presentationType) &&
           QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

bool openWithOffice(const QString& path, const QStringList& arguments)
{
    for (const QString& name : {u"soffice"_s, u"libreoffice"_s}) {
        QString office = QStandardPaths::findExecutable(name);
        if (office.isEmpty()) {
            office = QStandardPaths::findExecutable(
                name, {u"/usr/lib/libreoffice/program"_s, u"/opt/libreoffice/program"_s});
        }
        if (!office.isEmpty() &&
            QProcess::startDetached(office, arguments + QStringList{u"--nologo"_s, path})) {
            return true;
        }
    }
    return false;
}

#endif

} // namespace

bool PresentationSettings::openWithDesktop(const QString& path)
{
#ifdef Q_OS_WIN
    return QDesktopServices::openUrl(QUrl::fromLocalFile(path));
#else
    return displayIsThere() && (openWithDesktopsChoice(path) ||
                                openWithOffice(path, impressFromEnvironment().arguments));
#endif
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

DefaultPresentationPrograms::DefaultPresentationPrograms(QString programFolder,
                                                         PresentationSettings settings)
    : programFolder_(std::move(programFolder))
    , settings_(std::move(settings))
    , powerPoint_(FindPowerPoint())
{
    if (settings_.impress.pipe.isEmpty()) {
        // None that anybody else could have taken first.
        settings_.impress.pipe = u"varnholt"_s + QUuid::createUuid().toString(QUuid::Id128);
    }
}

std::unique_ptr<PresentationProgram>
DefaultPresentationPrograms::startPptx(const KeepGoing& keepGoing,
                                       const QString& insteadBecause) const
{
    PptxSettings settings;
    settings.programFolder = programFolder_;
    settings.now = settings_.now;
    settings.open = settings_.open;
    settings.keepGoing = keepGoing;
    settings.insteadBecause = insteadBecause;
    return std::make_unique<PptxProgram>(std::move(settings));
}

std::unique_ptr<PresentationProgram>
DefaultPresentationPrograms::startImpress(const KeepGoing& keepGoing) const
{
    ImpressSettings settings = settings_.impress;
    settings.keepGoing = keepGoing;
    return ImpressPlugin::instance().start(settings);
}

std::unique_ptr<PresentationProgram>
DefaultPresentationPrograms::startPowerPoint(const KeepGoing& keepGoing) const
{
    if (!powerPoint_) {
        throw Error(Words::tr("PowerPoint is not available on this computer."));
    }
    return powerPoint_->start(keepGoing);
}

std::unique_ptr<PresentationProgram> DefaultPresentationPrograms::start(SlidesInto into,
                                                                        const KeepGoing& keepGoing)
{
    const QString& asked = settings_.program;
    if (into == SlidesInto::File) {
        // What opens files may be the very program that hangs, so the user is told where it is.
        return startPptx(keepGoing, Words::tr("The presentation program has not answered."));
    }
    if (asked == u"pptx") {
        return startPptx(keepGoing);
    }
    if (asked == u"impress") {
        return startImpress(keepGoing);
    }
    if (asked == u"powerpoint") {
        return startPowerPoint(keepGoing);
    }
    if (!asked.isEmpty()) {
        throw Error(Words::tr("VARNHOLT_PRESENTATION is \"%1\", but must be \"powerpoint\", "
                              "\"impress\" or \"pptx\".")
                        .arg(asked));
    }
    if (!canWriteFileInstead()) {
        return startPptx(keepGoing);
    }
    try {
        return powerPoint_ ? startPowerPoint(keepGoing) : startImpress(keepGoing);
    } catch (const Cancelled&) {
        throw;
    } catch (const Error& error) {
        return startPptx(keepGoing,
                         Words::tr("%1 did not start: %2")
                             .arg(powerPoint_ ? u"PowerPoint"_s : u"Impress"_s, error.message()));
    }
}

std::shared_ptr<void> DefaultPresentationPrograms::prepare()
{
    const bool chosen = settings_.program.isEmpty() && !powerPoint_ && settings_.hasDisplay();
    std::shared_ptr<void> prepared = prepared_.lock();
    if (!prepared && (chosen || settings_.program == u"impress")) {
        prepared = StartOfficeAhead(settings_.impress);
        prepared_ = prepared;
    }
    return prepared;
}

bool DefaultPresentationPrograms::canWriteFileInstead() const
{
    return settings_.program.isEmpty() && settings_.hasDisplay() &&
           (powerPoint_ || ImpressPlugin::instance().entry() != nullptr);
}

} // namespace varnholt
