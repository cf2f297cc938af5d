#pragma once

#include <QFile>
#include <QLoggingCategory>
#include <QMutex>
#include <QString>

namespace varnholt {

Q_DECLARE_LOGGING_CATEGORY(logProgram)
Q_DECLARE_LOGGING_CATEGORY(logSlides)

/// Keeps what the program and Qt report (`qCInfo` and above) in a file while it lives: at most
/// `maxBytes`, and as much again of what came before, under the same name with ".old". Nothing of
/// a question stands in it: no answers, no names, no pictures. There is one at a time; lines may
/// come from any thread. Where the file cannot be written the program goes on without.
class ProgramLog
{
public:
    static constexpr qint64 maxBytes = 256 * 1024;

    /// The file is made with the first line.
    explicit ProgramLog(const QString& path);
    ~ProgramLog();
    ProgramLog(const ProgramLog&) = delete;
    ProgramLog& operator=(const ProgramLog&) = delete;

    /// Where the program's own log lies: with the data of the user.
    [[nodiscard]] static QString ownPath();
    /// The last `lines` lines of a log.
    [[nodiscard]] static QString tail(const QString& path, int lines);

private:
    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& text);
    void write(QtMsgType type, const QMessageLogContext& context, const QString& text);

    static ProgramLog* current_;
    QtMessageHandler before_ = nullptr;
    QMutex mutex_;
    QFile file_;
};

} // namespace varnholt
