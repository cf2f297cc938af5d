// What the generator looks after itself (answers, borders, what fits) fails the build.

#include "answer_check.h"
#include "support/file_size_limit.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <sqlite3.h>

#include <set>

namespace varnholt {
namespace {

using namespace Qt::StringLiterals;

/// The rows that a statement returns, their fields joined with '|'; SQLite's message if it fails.
QStringList query(const char* sql)
{
    QStringList rows;
    sqlite3* database = nullptr;
    sqlite3_open_v2(LIBRARY_FOLDER "/Varnholt.mdb", &database, SQLITE_OPEN_READONLY, nullptr);
    const auto keep = [](void* target, int columns, char** values, char**) {
        const QList<QByteArray> row(values, values + columns);
        static_cast<QStringList*>(target)->append(QString::fromUtf8(row.join('|')));
        return 0;
    };
    if (sqlite3_exec(database, sql, keep, &rows, nullptr) != SQLITE_OK)
        rows = {QString::fromUtf8(sqlite3_errmsg(database))};
    sqlite3_close(database);
    return rows;
}

TEST(SampleLibrary, HoldsTheContentInTheFiveTables)
{
    EXPECT_EQ(query("select t.name || ' ' || group_concat(f.name, ' ') from sqlite_master t, "
                    "pragma_table_info(t.name) f where t.type = 'table' "
                    "and t.name not like 'sqlite%' group by t.rowid"),
              (QStringList{u"Assessments AssessmentNum AssessmentName Available"_qs,
                           u"Topics TopicID Topic AssessmentNum Available"_qs,
                           u"SubTopics SubtopicNum TopicID SubTopic AssessmentNum Available"_qs,
                           u"Questions SOLIndex TopicID SubTopicNum Answer AssessmentNum "
                           "Available"_qs,
                           u"History LastID"_qs}));
    for (const auto& [sql, expected] : {std::pair("select LastID from History", "0"),
                                        {"pragma journal_mode", "delete"},
                                        {"pragma integrity_check", "ok"}})
        EXPECT_EQ(query(sql), QStringList(QLatin1String(expected)));
    EXPECT_EQ(QDir(QStringLiteral(LIBRARY_FOLDER)).entryList(QDir::Files),
              QStringList(u"Varnholt.mdb"_qs));

    const SampleContent content = readSampleContent(QStringLiteral(SAMPLE_FOLDER));
    QStringList expected;
    std::set<QString> topics;
    std::set<QString> subtopics;
    for (const SampleQuestion& question : content.questions) {
        expected += QStringList{QString::number(question.key), question.topic, question.subtopic,
                                question.answer, content.assessment}
                        .join(u'|');
        topics.insert(question.topic);
        subtopics.insert(question.topic + question.subtopic);
        EXPECT_FALSE(question.answer.contains(u'\''));
        EXPECT_EQ(QString::fromLatin1(question.answer.toLatin1()), question.answer);
        const QImage picture(QStringLiteral(LIBRARY_FOLDER "/Files/%1.jpg").arg(question.key));
        EXPECT_EQ(picture.size(), QSize(1908, 936)) << question.key;
    }
    EXPECT_EQ(query("select SOLIndex, Topic, SubTopic, Answer, AssessmentName from Questions "
                    "join SubTopics on Questions.SubTopicNum = SubTopics.SubtopicNum "
                    "join Topics on Topics.TopicID = SubTopics.TopicID "
                    "and Topics.TopicID = Questions.TopicID join Assessments "
                    "on Assessments.AssessmentNum = Questions.AssessmentNum "
                    "where Topics.AssessmentNum = 1 and SubTopics.AssessmentNum = 1 order by 1"),
              expected);
    EXPECT_GE(expected.size(), 60);
    EXPECT_GE(topics.size(), 5U);
    EXPECT_GE(subtopics.size(), 12U);
    EXPECT_EQ(QDir(QStringLiteral(LIBRARY_FOLDER "/Files")).entryList(QDir::Files).size(),
              expected.size());
}

/// A folder with what is written into it.
class Folder : public testing::Test
{
protected:
    void write(const QString& name, const QByteArray& text) const
    {
        QFile file(folder_.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    QByteArray read(const QString& name) const
    {
        QFile file(folder_.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
    }
    /// Copies a library of these contents from "share" to "bin", where the program is; what
    /// stands there then.
    QByteArray publish(const QByteArray& database, const QByteArray& picture) const
    {
        for (const QString& folder : {u"share/Files"_qs, u"bin/Files"_qs})
            QDir(folder_.path()).mkpath(folder);
        write(u"share/Varnholt.mdb"_qs, database);
        write(u"share/Files/1.jpg"_qs, picture);
        QStringList arguments;
        for (const auto& [name, path] :
             {std::pair("PRISTINE", "share"), {"TARGET", "bin"}, {"MANIFEST", "published.txt"}})
            arguments +=
                u"-D%1=%2"_qs.arg(QLatin1String(name), folder_.filePath(QLatin1String(path)));
        arguments += {u"-P"_qs, QStringLiteral(PUBLISH_SCRIPT)};
        EXPECT_EQ(QProcess::execute(QStringLiteral(CMAKE_PROGRAM), arguments), 0);
        return read(u"bin/Varnholt.mdb"_qs) + ' ' + read(u"bin/Files/1.jpg"_qs);
    }

    QTemporaryDir folder_;
};

TEST_F(Folder, FaultsOfTheContentAreReportedWithTheirPlace)
{
    write(u"assessment.txt"_qs, "assessment A\nfile t.txt\n");
    const QByteArray question = "topic T\nsubtopic S\nquestion\n";
    for (const auto& [text, message] :
         {std::pair(question + "txt x\n", "t.txt:4: unknown"),
          {"topic T\nquestion\n", "t.txt:2: a question needs"},
          {question + "text x\n", "lacks a text or an answer"},
          {"text x\n", "t.txt:1: this line"},
          {question + "options a | b\n", "four options"},
          {question + "text x\nanswer 5\n", "t.txt:3: the answer \"5\" is not right"},
          {question + "text x\nanswer 5\nvalue 2 + 2\n", "\"5\" is not right"},
          {question + "text x\nanswer x = 5\nzero x - 4\n", "\"x = 5\" is not right"},
          {question + "text x\noptions 4 | 5 | 6 | 2 + 2\nanswer A\nvalue 4\n", "\"A\" is not"}}) {
        write(u"t.txt"_qs, text);
        EXPECT_THAT([&] { checkAnswers(readSampleContent(folder_.path())); },
                    testing::ThrowsMessage<std::runtime_error>(testing::HasSubstr(message)));
    }
}

TEST_F(Folder, TheLibraryBesideTheProgramIsTheSuppliedOneUntilSomebodyWorksWithIt)
{
    VARNHOLT_SKIP_ON_WINDOWS("there is no CMake");
    EXPECT_EQ(publish("db1", "pic1"), "db1 pic1");
    EXPECT_EQ(publish("db1", "pic2"), "db1 pic2");
    write(u"bin/Files/1.jpg"_qs, "pic3"); // As after a copying that was interrupted.
    EXPECT_EQ(publish("db3", "pic3"), "db3 pic3");
    ASSERT_TRUE(QFile::remove(folder_.filePath(u"bin/Varnholt.mdb"_qs)));
    EXPECT_EQ(publish("db3", "pic3"), "db3 pic3");
    write(u"bin/Varnholt.mdb-wal"_qs, "unwritten");
    EXPECT_EQ(publish("db4", "pic4"), "db3 pic3");
    ASSERT_TRUE(QFile::remove(folder_.filePath(u"bin/Varnholt.mdb-wal"_qs)));
    write(u"bin/Varnholt.mdb"_qs, "mine");
    EXPECT_EQ(publish("db5", "pic5"), "mine pic3");

    ASSERT_TRUE(QDir(folder_.filePath(u"bin"_qs)).removeRecursively());
    QDir(folder_.path()).mkpath(u"bin/Files"_qs);
    write(u"bin/Files/1.jpg"_qs, "mine");
    EXPECT_EQ(publish("db1", "pic1"), "missing mine");
}

} // namespace
} // namespace varnholt
