#include "desktop/desktop_programs.h"

#include <QProcess>
#include <QStandardPaths>

namespace varnholt {

bool ProgramIsRegistered(const QString& mimeType)
{
    const QString query = QStandardPaths::findExecutable(QStringLiteral("xdg-mime"));
    if (query.isEmpty()) {
        return true;
    }
    QProcess process;
    process.start(query, {QStringLiteral("query"), QStringLiteral("default"), mimeType});
    constexpr int limitMs = 3000;
    return !process.waitForFinished(limitMs) ||
           !process.readAllStandardOutput().trimmed().isEmpty();
}

} // namespace varnholt
