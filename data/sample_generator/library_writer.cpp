#include "library_writer.h"

#include <QFile>

#include <sqlite3.h>

#include <filesystem>
#include <memory>
#include <stdexcept>

namespace varnholt {

namespace {

using namespace Qt::StringLiterals;

struct CloseDatabase
{
    void operator()(sqlite3* database) const { sqlite3_close(database); }
};
using Database = std::unique_ptr<sqlite3, CloseDatabase>;

void execute(sqlite3* database, const QByteArray& sql)
{
    if (sqlite3_exec(database, sql, nullptr, nullptr, nullptr) != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(database));
}

/// Inserts one row of numbers and one text and returns its key.
qlonglong insert(sqlite3* database, const char* sql, const QString& text,
                 const std::vector<qlonglong>& numbers)
{
    sqlite3_stmt* statement = nullptr;
    const QByteArray utf8 = text.toUtf8();
    if (sqlite3_prepare_v2(database, sql, -1, &statement, nullptr) != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(database));
    sqlite3_bind_text(statement, 1, utf8.constData(), static_cast<int>(utf8.size()), SQLITE_STATIC);
    int column = 2;
    for (const qlonglong number : numbers)
        sqlite3_bind_int64(statement, column++, number);
    const int result = sqlite3_step(statement);
    sqlite3_finalize(statement);
    if (result != SQLITE_DONE)
        throw std::runtime_error(sqlite3_errmsg(database));
    return sqlite3_last_insert_rowid(database);
}

void insertContent(sqlite3* database, const SampleContent& content)
{
    const qlonglong assessment =
        insert(database, "insert into Assessments (AssessmentName, Available) values (?, true)",
               content.assessment, {});
    QString topic;
    QString subtopic;
    qlonglong topicId = 0;
    qlonglong subtopicNum = 0;
    for (const SampleQuestion& question : content.questions) {
        if (question.topic != topic) {
            topic = question.topic;
            subtopic.clear();
            topicId =
                insert(database,
                       "insert into Topics (Topic, AssessmentNum, Available) values (?, ?, true)",
                       topic, {assessment});
        }
        if (question.subtopic != subtopic) {
            subtopic = question.subtopic;
            subtopicNum = insert(database,
                                 "insert into SubTopics (SubTopic, TopicID, AssessmentNum, "
                                 "Available) values (?, ?, ?, true)",
                                 subtopic, {topicId, assessment});
        }
        const qlonglong key = insert(database,
                                     "insert into Questions (Answer, TopicID, SubTopicNum, "
                                     "AssessmentNum, Available) values (?, ?, ?, ?, true)",
                                     question.answer, {topicId, subtopicNum, assessment});
        if (key != question.key)
            throw std::runtime_error("the keys of the rows do not follow the content");
    }
}

} // namespace

void writeLibrary(const QString& path, const QString& schemaPath, const SampleContent& content)
{
    QFile schema(schemaPath);
    if (!schema.open(QIODevice::ReadOnly))
        throw std::runtime_error(u"%1 cannot be read"_qs.arg(schemaPath).toStdString());
    const QString unfinished = path + u".new"_qs;
    QFile::remove(unfinished);
    QFile::remove(unfinished + u"-journal"_qs); // Of a build that was killed.
    sqlite3* opened = nullptr;
    const int result = sqlite3_open(unfinished.toUtf8(), &opened);
    Database database(opened);
    if (result != SQLITE_OK)
        throw std::runtime_error(u"%1 cannot be created"_qs.arg(unfinished).toStdString());
    execute(opened, schema.readAll());
    execute(opened, "begin");
    insertContent(opened, content);
    execute(opened, "commit");
    execute(opened, "pragma journal_mode = delete");
    database.reset();
    std::filesystem::rename(unfinished.toStdU16String(), path.toStdU16String());
}

} // namespace varnholt
