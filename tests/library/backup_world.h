#pragma once

#include "library/Library.h"
#include "library/backup/backup_restore.h"
#include "library/file_steps.h"
#include "support/fakes.h"
#include "support/test_files.h"
#include "support/test_library.h"

#include <QDir>

#include <map>

namespace varnholt::test {

using namespace Qt::StringLiterals;

inline constexpr std::int64_t start = 1'700'000'000;

inline int fromEnvironment(const char* name, int usual)
{
    return qEnvironmentVariableIsSet(name) ? qEnvironmentVariableIntValue(name) : usual;
}

inline const QString rowsOfAll =
    u"SELECT 1,AssessmentNum,AssessmentName,Available,0,0 FROM Assessments UNION ALL "
    "SELECT 2,TopicID,Topic,Available,AssessmentNum,0 FROM Topics UNION ALL "
    "SELECT 3,SubtopicNum,SubTopic,Available,AssessmentNum,TopicID FROM SubTopics UNION ALL "
    "SELECT 4,SOLIndex,Answer,Available,SubTopicNum,TopicID FROM Questions ORDER BY 1,2"_s;

/// A library of 2 x 2 x 2 questions in each of two assessments, and its backups.
struct World
{
    World()
    {
        first = files.addGenerated(u"First"_s, 2, 2, 2);
        second = files.addGenerated(u"Second"_s, 2, 2, 2);
        for (int key = 1; key <= 16; ++key) {
            writeFile(files.picturePath(key), QByteArray("picture ") + QByteArray::number(key));
        }
        writeFile(files.folder() + u"/Files/notes.txt"_s, "of somebody else");
        library.open();
    }

    [[nodiscard]] QStringList rows() const { return files.sql(rowsOfAll); }
    [[nodiscard]] std::map<QString, QByteArray> pictures() const
    {
        std::map<QString, QByteArray> result;
        const QDir folder(files.folder() + u"/Files"_s);
        for (const QString& name : folder.entryList({u"*.jpg"_s}, QDir::Files)) {
            result[name] = readFile(folder.filePath(name));
        }
        return result;
    }
    std::int32_t add(const QString& answer)
    {
        return library.addQuestion({first, 1, 1}, answer, [](const QString& path) {
            writeFile(path, "new " + path.toUtf8());
        });
    }
    /// One change of every kind.
    void change()
    {
        library.deleteQuestion(1);
        library.editQuestion(2, 1, 1, u"other"_s);
        library.editQuestion(3, 1, 1, u"A3"_s);
        newKey = add(u"newer"_s);
        library.addTopic(first, u"newer topic"_s);
        library.deleteAssessment(second);
        QFile::remove(files.picturePath(4));
        writeFile(files.picturePath(5), "drawn over");
    }
    BackupResult backUp(std::int64_t at = start) { return store.make(library, at); }

    TestLibrary files;
    std::int32_t first = 0;
    std::int32_t second = 0;
    std::int32_t newKey = 0;
    FakeClock clock;
    Library library{files.folder(), clock};
    BackupStore store{BackupStore::folderBeside(files.folder())};
};

} // namespace varnholt::test
