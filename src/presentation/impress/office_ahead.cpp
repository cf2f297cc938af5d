#include "presentation/impress/office_ahead.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QPointer>
#include <QProcess>

#include <set>

namespace varnholt {

namespace {

QString starterProgram()
{
    const QString own = QCoreApplication::applicationDirPath();
    for (const char* folder : {"/plugins/", "/../lib/varnholt/plugins/"}) {
        const QFileInfo file(own + QLatin1String(folder) + QLatin1String(officeStarterName));
        if (file.isExecutable()) {
            return file.filePath();
        }
    }
    return {};
}

/// Those that run. One that this program outlives is taken down; one that outlives this program
/// must not be, since destroying it would kill it before its work is done.
std::set<QProcess*>& running()
{
    static auto* const processes = new std::set<QProcess*>;
    return *processes;
}

} // namespace

std::shared_ptr<void> StartOfficeAhead(const ImpressSettings& settings)
{
    const QString program = starterProgram();
    if (program.isEmpty()) {
        return nullptr;
    }
    auto* process = new QProcess;
    running().insert(process);
    const auto gone = [process] {
        running().erase(process);
        process->deleteLater();
    };
    QObject::connect(process, &QProcess::finished, process, gone);
    QObject::connect(process, &QProcess::errorOccurred, process, [gone](QProcess::ProcessError e) {
        if (e == QProcess::FailedToStart) {
            gone();
        }
    });
    process->setProgram(program);
    process->setArguments(QStringList{settings.pipe, settings.program,
                                      QString::number(settings.startLimitMs),
                                      QString::number(settings.handOverMs)} +
                          settings.arguments);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString& entry : settings.environment) {
        environment.insert(entry.section(u'=', 0, 0), entry.section(u'=', 1));
    }
    process->setProcessEnvironment(environment);
    process->setStandardOutputFile(QProcess::nullDevice());
    process->setStandardErrorFile(QProcess::nullDevice());
    process->start();
    // The end of its input is what it waits for.
    const auto letGo = [guard = QPointer(process)](void*) {
        if (guard) {
            guard->closeWriteChannel();
        }
    };
    return {static_cast<void*>(process), letGo};
}

} // namespace varnholt
