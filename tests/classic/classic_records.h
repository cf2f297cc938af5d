#pragma once

#include "presentation/presentation_program.h"
#include "store/services.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QStringList>
#include <QtEndian>

#include <sqlite3.h>

#include <deque>

namespace varnholt::test {

/// While it lives, every statement that writes a classic table, on any connection of this process,
/// is added to `log` as it was sent.
class StatementLog
{
public:
    explicit StatementLog(QStringList& log)
    {
        target_ = &log;
        sqlite3_auto_extension(reinterpret_cast<void (*)()>(&StatementLog::attach));
    }
    StatementLog(const StatementLog&) = delete;
    StatementLog& operator=(const StatementLog&) = delete;
    ~StatementLog() { sqlite3_reset_auto_extension(); }

private:
    static int attach(sqlite3* database, char**, const void*)
    {
        return sqlite3_trace_v2(database, SQLITE_TRACE_STMT, &StatementLog::note, nullptr);
    }
    static int note(unsigned, void*, void* statement, void* text)
    {
        const QString sql = QString::fromUtf8(static_cast<const char*>(text));
        static const QStringList rows{QStringLiteral("insert "), QStringLiteral("update "),
                                      QStringLiteral("delete ")};
        const bool writesRows = std::any_of(rows.begin(), rows.end(), [&](const QString& verb) {
            return sql.startsWith(verb, Qt::CaseInsensitive);
        });
        if (writesRows && !sqlite3_stmt_readonly(static_cast<sqlite3_stmt*>(statement)) &&
            !sql.contains(QStringLiteral(" Plus"))) {
            target_->append(sql);
        }
        return 0;
    }

    static inline QStringList* target_ = nullptr;
};

/// Writes down what it is asked in the terms of a presentation program's object model, a line for
/// each slide, so that the record outlives changes of the port's own words.
class ObjectModelLog : public PresentationProgram
{
public:
    ObjectModelLog(QStringList& log, const QString& programFolder)
        : log_(log)
        , folder_(programFolder + u'/')
    {}

    void addPresentation() override { log_.append(QStringLiteral("Presentations.Add")); }
    void setVisible() override { log_.append(QStringLiteral("Visible = True")); }
    void appendBlankSlide() override
    {
        log_.append(QStringLiteral("Slides.Add %1 blank; Slides(%1).Select").arg(++slides_));
    }
    void showSlide(int index) override
    {
        log_.append(QStringLiteral("Slides(%1).Select").arg(index));
    }
    void addTextBox(double left, double top, double width, double height, LongLines) override
    {
        goOn(QStringLiteral("AddTextbox %1 %2 %3 %4").arg(left).arg(top).arg(width).arg(height));
    }
    void setShapeText(int shape, const QString& text) override
    {
        goOn(QStringLiteral("Shapes(%1).Text = %2").arg(shape).arg(text));
    }
    void addPicture(const QString& path, double left, double top, double width, double height,
                    const QString& description) override
    {
        goOn(QStringLiteral("AddPicture %1 %2 %3 %4 %5 \"%6\"")
                 .arg(QString(path).remove(folder_))
                 .arg(left)
                 .arg(top)
                 .arg(width)
                 .arg(height)
                 .arg(description));
    }
    void scaleHeight(int shape, double factor) override
    {
        goOn(QStringLiteral("Shapes(%1).ScaleHeight %2").arg(shape).arg(factor));
    }
    void scaleWidth(int shape, double factor) override
    {
        goOn(QStringLiteral("Shapes(%1).ScaleWidth %2").arg(shape).arg(factor));
    }
    void finish() override {}

private:
    void goOn(const QString& call) { log_.last() += QStringLiteral("; ") + call; }

    QStringList& log_;
    QString folder_;
    int slides_ = 0;
};

class ObjectModelLogs : public PresentationPrograms
{
public:
    QStringList log;
    QString programFolder;

    [[nodiscard]] std::unique_ptr<PresentationProgram> start(SlidesInto, const KeepGoing&) override
    {
        return std::make_unique<ObjectModelLog>(log, programFolder);
    }
};

/// Says Yes to everything, answers prompts from a list, and notes every box in `log`.
class AgreeingMessageBoxes : public MessageBoxes
{
public:
    explicit AgreeingMessageBoxes(QStringList& log)
        : log_(log)
    {}
    std::deque<QString> names;

    void inform(const QString& title, const QString& text) override { note(title, text); }
    bool yesNo(const QString& title, const QString& text, Answer) override
    {
        note(title, text + QStringLiteral(" [Yes]"));
        return true;
    }
    QString inputText(const QString& title, const QString& prompt,
                      const QString& defaultText) override
    {
        const QString name = names.empty() ? QString() : names.front();
        names.pop_front();
        note(title, QStringLiteral("%1 [%2 -> %3]").arg(prompt, defaultText, name));
        return name;
    }

private:
    void note(const QString& title, QString text)
    {
        log_.append(QStringLiteral("-- %1: %2")
                        .arg(title, text.replace(QStringLiteral("\r\n"), QStringLiteral("|"))));
    }

    QStringList& log_;
};

[[nodiscard]] inline QString sha256(const QByteArray& bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

/// The members of an archive in their order (the pictures as one line) and the SHA-256 of its
/// bytes, all with the times of the members set to nothing.
[[nodiscard]] inline QStringList describeArchive(const QString& path)
{
    QFile file(path);
    QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    const auto number = [&bytes](qsizetype at, int size) -> qsizetype {
        return size == 2 ? qFromLittleEndian<quint16>(bytes.constData() + at)
                         : qFromLittleEndian<quint32>(bytes.constData() + at);
    };
    const qsizetype end = bytes.lastIndexOf("PK\5\6");
    if (end < 0) {
        return {QStringLiteral("no archive")};
    }
    QStringList lines;
    int pictures = 0;
    QByteArray pictureLines;
    qsizetype entry = number(end + 16, 4);
    for (qsizetype left = number(end + 10, 2); left > 0; --left) {
        const qsizetype header = number(entry + 42, 4);
        bytes.replace(entry + 12, 4, QByteArray(4, '\0'));
        bytes.replace(header + 10, 4, QByteArray(4, '\0'));
        const QByteArray name = bytes.mid(entry + 46, number(entry + 28, 2));
        const qsizetype data = header + 30 + number(header + 26, 2) + number(header + 28, 2);
        const QString line = QStringLiteral("%1 method %2 size %3 sha256 %4")
                                 .arg(QString::fromUtf8(name))
                                 .arg(number(entry + 10, 2))
                                 .arg(number(entry + 24, 4))
                                 .arg(sha256(bytes.mid(data, number(entry + 20, 4))));
        if (name.endsWith(".jpg")) {
            ++pictures;
            pictureLines += line.toUtf8() + '\n';
        } else {
            lines.append(line);
        }
        entry += 46 + number(entry + 28, 2) + number(entry + 30, 2) + number(entry + 32, 2);
    }
    lines.append(QStringLiteral("%1 pictures sha256 %2").arg(pictures).arg(sha256(pictureLines)));
#ifndef Q_OS_WIN
    // With the system that it was made on.
    lines.append(QStringLiteral("package sha256 %1").arg(sha256(bytes)));
#endif
    return lines;
}

} // namespace varnholt::test
