#pragma once

#include <QFile>
#include <QString>

#include <sqlite3.h>

#include <stdexcept>
#include <string>

namespace varnholt::bench {

/// Makes a library file with one assessment (number 1) of `questions` questions in
/// `questions` / 100 topics of ten subtopics each. Questions come topic by topic mixed, as
/// they do when a library grows over the years.
inline void makeBigLibrary(const QString& path, int questions)
{
    QFile schema(QStringLiteral(VARNHOLT_SCHEMA_FILE));
    if (!schema.open(QIODevice::ReadOnly)) {
        throw std::runtime_error("no schema file");
    }
    sqlite3* database = nullptr;
    sqlite3_open(path.toUtf8().constData(), &database);
    const std::string topics = std::to_string(questions / 100);
    const std::string subTopics = std::to_string(questions / 10);
    const std::string count = std::to_string(questions);
    const auto numbers = [](const std::string& n) {
        return "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i+1 FROM n WHERE i+1<" + n + ") ";
    };
    const std::string sql =
        "PRAGMA synchronous=OFF;" + schema.readAll().toStdString() +
        "BEGIN; INSERT INTO Assessments(AssessmentName) VALUES('Big');"
        "UPDATE History SET LastID=1;"
        "INSERT INTO Topics(Topic,AssessmentNum) " +
        numbers(topics) +
        "SELECT 'Topic number '||i,1 FROM n;"
        "INSERT INTO SubTopics(TopicID,SubTopic,AssessmentNum) " +
        numbers(subTopics) +
        "SELECT 1+i/10,'Subtopic number '||i,1 FROM n;"
        "INSERT INTO Questions(TopicID,SubTopicNum,Answer,AssessmentNum) " +
        numbers(count) + "SELECT 1+(i*7919%" + subTopics + ")/10,1+i*7919%" + subTopics +
        ",CASE i%3 WHEN 0 THEN char(65+i/3%4) WHEN 1 THEN i%100 ELSE 'x = '||i%50||' cm' END,1 "
        "FROM n;"
        "COMMIT;";
    char* message = nullptr;
    if (sqlite3_exec(database, sql.c_str(), nullptr, nullptr, &message) != SQLITE_OK) {
        throw std::runtime_error(message);
    }
    sqlite3_close(database);
}

} // namespace varnholt::bench
