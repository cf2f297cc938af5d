#include "log/ProgramLog.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace varnholt {

Q_LOGGING_CATEGORY(logProgram, "varnholt.program")
Q_LOGGING_CATEGORY(logSlides, "varnholt.slides")

namespace {

const char* word(QtMsgType type)
{
    switch (type) {
    case QtDebugMsg:
        return "debug";
    case QtInfoMsg:
        return "info";
    case QtWarningMsg:
        return "warning";
    case QtCriticalMsg:
        return "error";
    case QtFatalMsg:
        break;
    }
    return "fatal";
}

QString oldPath(const QString& path)
{
    return path + QStringLiteral(".old");
}

} // namespace

ProgramLog* ProgramLog::current_ = nullptr;

ProgramLog::ProgramLog(const QString& path)
    : file_(path)
{
    current_ = this;
    before_ = qInstallMessageHandler(handle);
}

ProgramLog::~ProgramLog()
{
    qInstallMessageHandler(before_);
    // A thread may still be in a line.
    const QMutexLocker lock(&mutex_);
    current_ = nullptr;
}

QString ProgramLog::ownPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation) +
           QStringLiteral("/varnholt.log");
}

QString ProgramLog::tail(const QString& path, int lines)
{
    QByteArray bytes;
    for (const QString& part : {oldPath(path), path}) {
        QFile file(part);
        if (file.open(QIODevice::ReadOnly)) {
            bytes += file.readAll();
        }
    }
    const QStringList all = QString::fromUtf8(bytes).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    return all.mid(qMax<qsizetype>(0, all.size() - lines)).join(QLatin1Char('\n'));
}

void ProgramLog::handle(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    ProgramLog* log = current_;
    if (!log) {
        return;
    }
    log->write(type, context, text);
    if (log->before_) {
        log->before_(type, context, text);
    }
}

void ProgramLog::write(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (type == QtDebugMsg) {
        return;
    }
    const QMutexLocker lock(&mutex_);
    if (file_.isOpen() && file_.size() > maxBytes) {
        file_.close();
    }
    if (!file_.isOpen()) {
        const QString path = file_.fileName();
        QDir().mkpath(QFileInfo(path).path());
        if (QFileInfo(path).size() > maxBytes) {
            QFile::remove(oldPath(path));
            QFile::rename(path, oldPath(path));
        }
        if (!file_.open(QIODevice::WriteOnly | QIODevice::Append)) {
            return;
        }
    }
    QString line = text.left(1000);
    line.replace(QLatin1Char('\n'), QLatin1Char(' '));
    file_.write(QStringLiteral("%1 %2 %3: %4\n")
                    .arg(QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs),
                         QLatin1String(context.category ? context.category : "default"),
                         QLatin1String(word(type)), line)
                    .toUtf8());
    file_.flush();
}

} // namespace varnholt
