#pragma once

#include "library/Library.h"
#include "support/file_size_limit.h"
#include "support/test_files.h"
#include "support/test_services.h"

#include <QDir>
#include <QProcess>
#include <QStandardPaths>

#include <cstdio>

namespace varnholt::test {

using namespace Qt::StringLiterals;

/// Everything in a folder, sorted, folders with a slash behind.
[[nodiscard]] inline std::string listing(const QString& folder)
{
    QStringList names;
    for (const QFileInfo& entry : QDir(folder).entryInfoList(
             QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System, QDir::Name)) {
        names.append(entry.fileName() + (entry.isDir() ? u"/"_s : QString()));
    }
    return names.join(u' ').toStdString();
}

/// What a shell command says, nothing when its program is not installed; fails the test when the
/// command fails.
[[nodiscard]] inline std::optional<QString> runCommand(const QString& command,
                                                       const QString& folder)
{
    if (QStandardPaths::findExecutable(command.section(u' ', 0, 0)).isEmpty()) {
        std::printf("left out, not installed: %s\n", qPrintable(command));
        return std::nullopt;
    }
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.setWorkingDirectory(folder);
    process.start(u"sh"_s, {u"-c"_s, command});
    EXPECT_TRUE(process.waitForFinished(120'000) && process.exitCode() == 0)
        << command.toStdString();
    return QString::fromUtf8(process.readAll());
}

/// A world whose library is open, with a folder for packages and the program's own messages.
struct ExchangeWorld : TestWorld
{
    QTemporaryDir packages;
    Library opened{library.folder(), clock};
    Connection& connection = opened.connection();

    ExchangeWorld() { opened.open(); }

    [[nodiscard]] QString package(const QString& name = u"p.zip"_s) const
    {
        return packages.filePath(name);
    }

    void expect(const char* title, const char* text)
    {
        messages.expectInform(QString::fromUtf8(title), QString::fromUtf8(text));
    }
    void expectMissingPicture()
    {
        expect("File Missing",
               "Export was aborted because one of the questions is missing a picture file.  "
               "Please go to Manage Assessments and delete that question.");
    }
    void expectImportError() { expect("Import Error", "There was an error importing the file."); }

    void expectNameQuestion(const QString& offered, const QString& answer)
    {
        messages.expectInput(u"Assessment Name"_s,
                             u"What do you want to call the import assessment?"_s, answer, offered);
    }

    void expectImported(int topics, int subtopics, int questions)
    {
        messages.expectInform(u"Import Complete"_s,
                              u"Import was successful.\r\n\r\nTopics Imported: %1\r\n"
                              "Subtopics Imported: %2\r\nQuestions Imported: %3"_s.arg(topics)
                                  .arg(subtopics)
                                  .arg(questions));
    }

    /// Names, answers, references and picture bytes of an available assessment, without keys.
    [[nodiscard]] QStringList content(const QString& name) const
    {
        QStringList all =
            library.sql(u"CREATE TEMP VIEW a AS SELECT AssessmentNum FROM Assessments WHERE "
                        "Available AND AssessmentName = '%1';SELECT Topic FROM Topics WHERE "
                        "Available AND AssessmentNum IN a ORDER BY TopicID;SELECT SubTopic, Topic "
                        "FROM SubTopics s LEFT JOIN Topics t USING(TopicID) WHERE s.Available AND "
                        "s.AssessmentNum IN a ORDER BY SubtopicNum;SELECT hex(Answer), Topic, "
                        "SubTopic, SOLIndex FROM Questions q LEFT JOIN Topics USING(TopicID) LEFT "
                        "JOIN SubTopics USING(SubtopicNum) WHERE q.Available AND q.AssessmentNum "
                        "IN a ORDER BY SOLIndex;"_s.arg(name));
        for (QString& row : all) {
            if (const qsizetype last = row.lastIndexOf(u'|'); row.count(u'|') == 3) {
                const QByteArray picture = readFile(library.picturePath(row.mid(last + 1).toInt()));
                row.replace(last + 1, row.size(), QString::number(qHash(picture, 1)));
            }
        }
        return all;
    }
};

} // namespace varnholt::test
