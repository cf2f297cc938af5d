#include "info/diagnostics.h"

#include "log/ProgramLog.h"
#include "store/library_file.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QProxyStyle>
#include <QScreen>
#include <QStringList>
#include <QStyle>
#include <QSysInfo>

namespace varnholt {

namespace {

QString styleName()
{
    const QStyle* style = QApplication::style();
    const auto* proxy = qobject_cast<const QProxyStyle*>(style);
    return (proxy ? proxy->baseStyle() : style)->name();
}

} // namespace

QString Diagnostics(const QString& programFolder)
{
    constexpr int logLines = 200;
    const QFileInfo library(LibraryPath(programFolder));
    QStringList lines{
        QStringLiteral("Varnholt %1, Qt %2, %3, %4")
            .arg(QCoreApplication::applicationVersion(), QLatin1String(qVersion()),
                 QSysInfo::prettyProductName(), QSysInfo::currentCpuArchitecture()),
        QStringLiteral("Platform %1, style %2, locale %3")
            .arg(QGuiApplication::platformName(), styleName(), QLocale().name()),
        QStringLiteral("Library %1, %2 bytes, %3")
            .arg(QDir::toNativeSeparators(library.filePath()))
            .arg(library.size())
            .arg(library.isWritable() ? QStringLiteral("writable") : QStringLiteral("read only"))};
    for (const QScreen* screen : QGuiApplication::screens()) {
        lines.append(QStringLiteral("Screen %1 x %2 at %3")
                         .arg(screen->size().width())
                         .arg(screen->size().height())
                         .arg(screen->devicePixelRatio()));
    }
    const QString log = ProgramLog::ownPath();
    lines.append(QStringLiteral("Log %1").arg(QDir::toNativeSeparators(log)));
    lines.append(ProgramLog::tail(log, logLines));
    return lines.join(QLatin1Char('\n'));
}

} // namespace varnholt
