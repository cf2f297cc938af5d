#include "support/test_library.h"

#include <QDir>
#include <QFile>
#include <QPainter>
#include <QProcess>

#include <gtest/gtest.h>

namespace varnholt::test {

namespace {

QString quoted(QString text)
{
    return u'\'' + text.replace(u'\'', QStringLiteral("''")) + u'\'';
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
    QProcess client;
    client.start(QStringLiteral("sqlite3"),
                 {QStringLiteral("-batch"), QStringLiteral("-bail"), databasePath()});
    client.write("PRAGMA synchronous = OFF;\n" + statements.toUtf8() + "\n");
    client.closeWriteChannel();
    if (!client.waitForFinished(60'000) || client.exitCode() != 0) {
        ADD_FAILURE() << "sqlite3: " << client.readAllStandardError().toStdString();
        return {};
    }
    return QString::fromUtf8(client.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
}

QString TestLibrary::value(const QString& query) const
{
    return sql(query).join(u'\n');
}

std::int32_t TestLibrary::insert(const QString& statement) const
{
    return value(statement + QStringLiteral(" RETURNING 1; SELECT last_insert_rowid();"))
        .section(u'\n', -1)
        .toInt();
}

std::int32_t TestLibrary::addAssessment(const QString& name)
{
    return insert(
        QStringLiteral("INSERT INTO Assessments(AssessmentName) VALUES(%1)").arg(quoted(name)));
}

std::int32_t TestLibrary::addTopic(std::int32_t assessment, const QString& name)
{
    return insert(QStringLiteral("INSERT INTO Topics(AssessmentNum,Topic) VALUES(%1,%2)")
                      .arg(assessment)
                      .arg(quoted(name)));
}

std::int32_t TestLibrary::addSubTopic(std::int32_t assessment, std::int32_t topic,
                                      const QString& name)
{
    return insert(
        QStringLiteral("INSERT INTO SubTopics(AssessmentNum,TopicID,SubTopic) VALUES(%1,%2,%3)")
            .arg(assessment)
            .arg(topic)
            .arg(quoted(name)));
}

std::int32_t TestLibrary::addQuestion(std::int32_t assessment, std::int32_t topic,
                                      std::int32_t subTopic, const QString& answer, QSize picture)
{
    const std::int32_t key = insert(
        QStringLiteral(
            "INSERT INTO Questions(AssessmentNum,TopicID,SubTopicNum,Answer) VALUES(%1,%2,%3,%4)")
            .arg(assessment)
            .arg(topic)
            .arg(subTopic)
            .arg(quoted(answer)));
    if (!picture.isEmpty() && !testPicture(picture, key).save(picturePath(key), "JPG", 90)) {
        ADD_FAILURE() << "cannot write " << picturePath(key).toStdString();
    }
    return key;
}

QString TestLibrary::picturePath(std::int32_t solIndex) const
{
    return folder() + QStringLiteral("/Files/%1.jpg").arg(solIndex);
}

std::int32_t TestLibrary::addGenerated(const QString& name, int topics, int subTopics,
                                       int questions, bool pictures)
{
    const std::int32_t assessment = addAssessment(name);
    const int firstTopic =
        value(QStringLiteral("SELECT coalesce(max(TopicID),0) FROM Topics")).toInt();
    const int firstSub =
        value(QStringLiteral("SELECT coalesce(max(SubtopicNum),0) FROM SubTopics")).toInt();
    const int firstQuestion =
        value(QStringLiteral("SELECT coalesce(max(SOLIndex),0) FROM Questions")).toInt();
    const QString counter = QStringLiteral(
        "WITH RECURSIVE n(i) AS (SELECT 0 UNION ALL SELECT i+1 FROM n WHERE i+1 < %1) ");
    const int subCount = topics * subTopics;
    const int questionCount = subCount * questions;
    QString text = QStringLiteral("BEGIN;");
    if (topics > 0) {
        text += QStringLiteral("INSERT INTO Topics(Topic,AssessmentNum) ") + counter.arg(topics) +
                QStringLiteral("SELECT 'Topic '||(i+1), %1 FROM n;").arg(assessment);
    }
    if (subCount > 0) {
        text += QStringLiteral("INSERT INTO SubTopics(TopicID,SubTopic,AssessmentNum) ") +
                counter.arg(subCount) +
                QStringLiteral(
                    "SELECT %1+1+i/%2, 'Subtopic '||(i/%2+1)||'.'||(i-i/%2*%2+1), %3 FROM n;")
                    .arg(firstTopic)
                    .arg(subTopics)
                    .arg(assessment);
    }
    if (questionCount > 0) {
        text += QStringLiteral("INSERT INTO Questions(TopicID,SubTopicNum,Answer,AssessmentNum) ") +
                counter.arg(questionCount) +
                QStringLiteral("SELECT %1+1+i/%2, %3+1+i/%4, 'A'||(i+1), %5 FROM n;")
                    .arg(firstTopic)
                    .arg(subTopics * questions)
                    .arg(firstSub)
                    .arg(questions)
                    .arg(assessment);
    }
    sql(text + QStringLiteral("COMMIT;"));
    for (int i = 1; pictures && i <= questionCount; ++i) {
        testPicture({60, 40}, i).save(picturePath(firstQuestion + i), "JPG", 90);
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
