#pragma once

#include "exchange/progress_label.h"
#include "exchange/work_view.h"
#include "store/library_file.h"
#include "support/test_services.h"

#include <QDir>
#include <QFile>
#include <QProcess>

#include <gtest/gtest.h>

#include <csignal>
#include <map>
#include <sys/resource.h>

namespace varnholt::test {

class FakeLabel : public ProgressLabel
{
public:
    std::vector<float> widths{200};
    QStringList captions;
    int events = 0;

    [[nodiscard]] float width() const override { return widths.back(); }
    void setWidth(float width) override { widths.push_back(width); }
    void setCaption(const QString& caption) override { captions.append(caption); }
    void processEvents() override { ++events; }
};

/// Notes what a run shows, in order; progress only by what it is about.
class FakeView : public WorkView
{
public:
    QStringList calls;
    FakeLabel back;
    FakeLabel face;

    void beginWork() override { calls.append(QStringLiteral("begin")); }
    void endWork() override { calls.append(QStringLiteral("end")); }
    void showBar() override { calls.append(QStringLiteral("show")); }
    void hideBar() override { calls.append(QStringLiteral("hide")); }
    ProgressLabel& backLabel() override { return back; }
    ProgressLabel& faceLabel() override { return face; }
    void progress(const QString& what, std::int64_t, std::int64_t) override
    {
        if (!calls.contains(what)) {
            calls.append(what);
        }
    }
};

inline void writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
        ADD_FAILURE() << "cannot write " << path.toStdString();
    }
}

[[nodiscard]] inline QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot read ");
}

/// Everything in a folder, sorted, folders with a slash behind.
[[nodiscard]] inline std::string listing(const QString& folder)
{
    QStringList names;
    for (const QFileInfo& entry : QDir(folder).entryInfoList(
             QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System, QDir::Name)) {
        names.append(entry.fileName() + (entry.isDir() ? QStringLiteral("/") : QString()));
    }
    return names.join(u' ').toStdString();
}

/// Output and errors of another program; fails the test when it fails.
inline QString runProgram(const QString& program, const QStringList& arguments,
                          const QString& folder = {}, const QString& inputFile = {})
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setWorkingDirectory(folder);
    process.setStandardInputFile(inputFile.isEmpty() ? QProcess::nullDevice() : inputFile);
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished(120'000)) << program.toStdString();
    const QString output = QString::fromUtf8(process.readAll());
    EXPECT_EQ(process.exitCode(), 0) << program.toStdString() << '\n' << output.toStdString();
    return output;
}

/// While it lives no file grows past `bytes`: what a full disk does.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit now{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &now);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &before_); }

private:
    rlimit before_{};
};

/// A world whose library is open, with a folder for packages and the program's own messages.
struct ExchangeWorld : TestWorld
{
    QTemporaryDir packages;
    FakeView view;

    ExchangeWorld() { OpenLibraryDatabase(connection, library.folder()); }

    [[nodiscard]] QString package(const QString& name = QStringLiteral("p.zip")) const
    {
        return packages.filePath(name);
    }

    void expectImportError()
    {
        messages.expectInform(QStringLiteral("Import Error"),
                              QStringLiteral("There was an error importing the file."));
    }

    void expectNameQuestion(const QString& offered, const QString& answer)
    {
        messages.expectInput(QStringLiteral("Assessment Name"),
                             QStringLiteral("What do you want to call the import assessment?"),
                             answer, offered);
    }

    void expectImported(int topics, int subtopics, int questions)
    {
        messages.expectInform(QStringLiteral("Import Complete"),
                              QStringLiteral("Import was successful.\r\n\r\nTopics Imported: "
                                             "%1\r\nSubtopics Imported: %2\r\nQuestions "
                                             "Imported: %3")
                                  .arg(topics)
                                  .arg(subtopics)
                                  .arg(questions));
    }

    /// Names, answers, references and picture bytes of an available assessment, without keys.
    [[nodiscard]] QStringList content(const QString& name) const
    {
        const QStringList rows = library.sql(
            QStringLiteral("SELECT 'T', Topic, '', '', '' FROM Topics JOIN Assessments "
                           "USING(AssessmentNum) WHERE AssessmentName = '%1' AND "
                           "Topics.Available AND Assessments.Available ORDER BY TopicID;"
                           "SELECT 'S', SubTopic, coalesce(Topic,''), '', '' FROM SubTopics s "
                           "JOIN Assessments a USING(AssessmentNum) LEFT JOIN Topics "
                           "USING(TopicID) WHERE AssessmentName = '%1' AND s.Available AND "
                           "a.Available ORDER BY SubtopicNum;"
                           "SELECT 'Q', hex(Answer), coalesce(Topic,''), coalesce(SubTopic,''), "
                           "SOLIndex FROM Questions q JOIN Assessments a USING(AssessmentNum) "
                           "LEFT JOIN Topics t ON t.TopicID = q.TopicID LEFT JOIN SubTopics s "
                           "ON s.SubtopicNum = q.SubTopicNum WHERE AssessmentName = '%1' AND "
                           "q.Available AND a.Available ORDER BY SOLIndex;")
                .arg(name));
        QStringList all;
        for (QString row : rows) {
            if (row.startsWith(u'Q')) {
                const std::int32_t key = row.section(u'|', -1).toInt();
                row = row.section(u'|', 0, -2) + u'|' +
                      QString::number(qHash(readFile(library.picturePath(key)), 1));
            }
            all.append(row);
        }
        return all;
    }
};

} // namespace varnholt::test
