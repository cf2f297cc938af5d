#include "support/test_library.h"

#include <QDir>
#include <QFile>
#include <QPainter>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>

namespace varnholt::test {

using namespace Qt::Literals::StringLiterals;

namespace {

QString number(std::int32_t value)
{
    return QString::number(value);
}

QString quoted(QString text)
{
    return u'\'' + text.replace(u'\'', u"''"_s) + u'\'';
}

} // namespace

TestLibrary::TestLibrary()
{
    QFile schema(QStringLiteral(VARNHOLT_SCHEMA_FILE));
    if (!schema.open(QIODevice::ReadOnly)) {
        throw std::runtime_error("no schema file");
    }
    QDir(folder()).mkdir(QStringLiteral("Files"));
    sql(QString::fromUtf8(schema.readAll()));
}

QStringList TestLibrary::sql(const QString& statements) const
{
    sqlite3* client = nullptr;
    sqlite3_open(databasePath().toUtf8().constData(), &client);
    sqlite3_busy_timeout(client, 60'000);
    QStringList rows;
    const auto addRow = [](void* target, int columns, char** values, char**) {
        QStringList row;
        for (int i = 0; i < columns; ++i) {
            row.append(QString::fromUtf8(values[i]));
        }
        static_cast<QStringList*>(target)->append(row.join(u'|'));
        return 0;
    };
    const QByteArray text = "PRAGMA synchronous = OFF;" + statements.toUtf8();
    if (sqlite3_exec(client, text.constData(), addRow, &rows, nullptr) != SQLITE_OK) {
        ADD_FAILURE() << "sqlite3: " << sqlite3_errmsg(client);
        rows.clear();
    }
    sqlite3_close(client);
    rows.removeAll(QString());
    return rows;
}

QString TestLibrary::value(const QString& query) const
{
    return sql(query).join(u'\n');
}

std::int32_t TestLibrary::insert(const QString& table, const QString& columns,
                                 const QStringList& values) const
{
    return value(QStringLiteral("INSERT INTO %1(%2) VALUES(%3); SELECT last_insert_rowid()")
                     .arg(table, columns, values.join(u',')))
        .toInt();
}

std::int32_t TestLibrary::addAssessment(const QString& name)
{
    return insert(u"Assessments"_s, u"AssessmentName"_s, {quoted(name)});
}

std::int32_t TestLibrary::addTopic(std::int32_t assessment, const QString& name)
{
    return insert(u"Topics"_s, u"AssessmentNum,Topic"_s, {number(assessment), quoted(name)});
}

std::int32_t TestLibrary::addSubTopic(std::int32_t assessment, std::int32_t topic,
                                      const QString& name)
{
    return insert(u"SubTopics"_s, u"AssessmentNum,TopicID,SubTopic"_s,
                  {number(assessment), number(topic), quoted(name)});
}

std::int32_t TestLibrary::addQuestion(std::int32_t assessment, std::int32_t topic,
                                      std::int32_t subTopic, const QString& answer, QSize picture)
{
    const std::int32_t key =
        insert(u"Questions"_s, u"AssessmentNum,TopicID,SubTopicNum,Answer"_s,
               {number(assessment), number(topic), number(subTopic), quoted(answer)});
    if (!picture.isEmpty() && !testPicture(picture, key).save(picturePath(key), "JPG", 90)) {
        ADD_FAILURE() << "cannot write " << picturePath(key).toStdString();
    }
    return key;
}

QString TestLibrary::picturePath(std::int32_t solIndex) const
{
    return folder() + u"/Files/%1.jpg"_s.arg(solIndex);
}

std::int32_t TestLibrary::addGenerated(const QString& name, int topics, int subTopics,
                                       int questions, bool pictures)
{
    const std::int32_t assessment = addAssessment(name);
    const QString statements =
        QStringLiteral("CREATE TEMP VIEW Counter AS WITH RECURSIVE Counter(value) AS"
                       " (SELECT 1 UNION ALL SELECT value+1 FROM Counter LIMIT %5)"
                       " SELECT value FROM Counter;"
                       "INSERT INTO Topics(Topic, AssessmentNum)"
                       " SELECT 'Topic '||value, %1 FROM Counter WHERE value<=%2;"
                       "INSERT INTO SubTopics(TopicID, SubTopic, AssessmentNum)"
                       " SELECT TopicID, replace(Topic, 'Topic', 'Subtopic')||'.'||value, %1"
                       " FROM Topics, Counter WHERE value<=%3 AND AssessmentNum=%1 ORDER BY "
                       "TopicID, value;"
                       "INSERT INTO Questions(TopicID, SubTopicNum, Answer, AssessmentNum)"
                       " SELECT TopicID, SubtopicNum, 'A'||row_number() OVER win, %1"
                       " FROM SubTopics, Counter WHERE value<=%4 AND AssessmentNum=%1"
                       " WINDOW win AS (ORDER BY SubtopicNum, value) ORDER BY SubtopicNum, "
                       "value;");
    sql(statements.arg(assessment)
            .arg(topics)
            .arg(subTopics)
            .arg(questions)
            .arg(std::max({topics, subTopics, questions})));
    if (pictures) {
        int seed = 0;
        const QString keys = u"SELECT SOLIndex FROM Questions WHERE AssessmentNum=%1"_s;
        for (const QString& key : sql(keys.arg(assessment))) {
            testPicture({60, 40}, ++seed).save(picturePath(key.toInt()), "JPG", 90);
        }
    }
    return assessment;
}

QImage testPicture(QSize size, int seed)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    painter.fillRect(QRect(2, 2, size.width() / 2, size.height() / 2),
                     QColor::fromHsv(seed * 47 % 360, 200, 200));
    painter.drawText(picture.rect(), Qt::AlignCenter, QString::number(seed));
    return picture;
}

} // namespace varnholt::test
