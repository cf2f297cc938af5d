#include "content.h"
#include "expression.h"

#include <QDir>
#include <QFile>
#include <QFontInfo>
#include <QFontMetricsF>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <gmock/gmock.h>
#include <sqlite3.h>

#include <cmath>
#include <set>

namespace varnholt {
namespace {

using namespace Qt::StringLiterals;
using Row = QStringList;

const SampleContent& content()
{
    static const SampleContent read = readSampleContent(QStringLiteral(SAMPLE_FOLDER));
    return read;
}

/// The rows that a statement returns, or one row "error" with SQLite's message.
std::vector<Row> query(const QString& sql)
{
    std::vector<Row> rows;
    sqlite3* database = nullptr;
    sqlite3_open_v2(LIBRARY_FOLDER "/Varnholt.mdb", &database, SQLITE_OPEN_READONLY, nullptr);
    const auto keep = [](void* target, int columns, char** values, char**) {
        auto& row = static_cast<std::vector<Row>*>(target)->emplace_back();
        for (int column = 0; column < columns; ++column)
            row += QString::fromUtf8(values[column]);
        return 0;
    };
    if (sqlite3_exec(database, sql.toUtf8(), keep, &rows, nullptr) != SQLITE_OK)
        rows = {{u"error"_qs, QString::fromUtf8(sqlite3_errmsg(database))}};
    sqlite3_close(database);
    return rows;
}

std::string describe(const SampleQuestion& question)
{
    return (question.where + u' ' + question.answer).toStdString();
}

TEST(SampleLibrary, HasTheTablesAndTheHistoryRow)
{
    const std::vector<Row> fields{
        {u"Assessments AssessmentNum AssessmentName Available"_qs},
        {u"Topics TopicID Topic AssessmentNum Available"_qs},
        {u"SubTopics SubtopicNum TopicID SubTopic AssessmentNum Available"_qs},
        {u"Questions SOLIndex TopicID SubTopicNum Answer AssessmentNum Available"_qs},
        {u"History LastID"_qs}};
    EXPECT_EQ(query(u"select t.name || ' ' || group_concat(f.name, ' ') from "
                    u"sqlite_master t, "
                    "pragma_table_info(t.name) f where t.type = 'table' "
                    "and t.name not like 'sqlite%' group by t.rowid"_qs),
              fields);
    EXPECT_EQ(query(u"select LastID from History"_qs), (std::vector<Row>{{u"0"_qs}}));
    EXPECT_EQ(query(u"pragma journal_mode"_qs).front(), Row{u"delete"_qs});
    EXPECT_EQ(query(u"pragma integrity_check"_qs).front(), Row{u"ok"_qs});
    EXPECT_EQ(QDir(QStringLiteral(LIBRARY_FOLDER)).entryList(QDir::Files), Row{u"Varnholt.mdb"_qs});
}

TEST(SampleLibrary, HoldsTheContent)
{
    const auto rows =
        query(u"select SOLIndex, Topic, SubTopic, Answer, AssessmentName from "
              u"Questions "
              "join SubTopics on Questions.SubTopicNum = SubTopics.SubtopicNum "
              "join Topics on Topics.TopicID = SubTopics.TopicID and Topics.TopicID = "
              "Questions.TopicID "
              "join Assessments on Assessments.AssessmentNum = Questions.AssessmentNum "
              "where Topics.AssessmentNum = 1 and SubTopics.AssessmentNum = 1 order by 1"_qs);
    std::vector<Row> expected;
    std::set<QString> topics;
    std::set<QString> subtopics;
    for (const SampleQuestion& question : content().questions) {
        expected.push_back({QString::number(question.key), question.topic, question.subtopic,
                            question.answer, content().assessment});
        topics.insert(question.topic);
        subtopics.insert(question.topic + question.subtopic);
        EXPECT_FALSE(question.answer.contains(u'\'')) << describe(question);
        EXPECT_EQ(QString::fromLatin1(question.answer.toLatin1()), question.answer);
    }
    EXPECT_EQ(rows, expected);
    EXPECT_GE(rows.size(), 60U);
    EXPECT_GE(topics.size(), 5U);
    EXPECT_GE(subtopics.size(), 12U);
}

TEST(SampleLibrary, PicturesAreWholeAndHaveAClearBorder)
{
    for (const SampleQuestion& question : content().questions) {
        SCOPED_TRACE(describe(question));
        const QImage image(QStringLiteral(LIBRARY_FOLDER "/Files/%1.jpg").arg(question.key));
        ASSERT_EQ(image.size(), QSize(600, 350));
        int dark = 0;
        for (int i = 0; i < 600 * 350; ++i) {
            const QPoint at(i % 600, i / 600);
            const int grey = qGray(image.pixel(at));
            dark += grey < 100;
            const bool inside = image.rect().adjusted(15, 15, -15, -15).contains(at);
            ASSERT_TRUE(inside || grey >= 235) << at.x() << ' ' << at.y();
        }
        EXPECT_GT(dark, 600);
    }
    EXPECT_EQ(QDir(QStringLiteral(LIBRARY_FOLDER "/Files")).entryList(QDir::Files).size(),
              static_cast<qsizetype>(content().questions.size()));
}

/// What an answer says, without "x =", brackets and the dollar signs of a
/// formula.
QString bare(QString answer)
{
    static const QRegularExpression bold(uR"(\\bold\{(.)\})"_qs);
    static const QRegularExpression column(uR"(\\col\{(.*?)\}\{(.*?)\})"_qs);
    static const QRegularExpression pair(uR"(^\((.*), (.*)\)$)"_qs);
    static const QRegularExpression name(u"^[a-z] = "_qs);
    answer.remove(u'$').replace(bold, u"\\1"_qs).replace(column, u"\\1; \\2"_qs);
    return answer.replace(pair, u"\\1; \\2"_qs).remove(name);
}

/// How much an answer may differ from its exact value: half of the last digit
/// it gives where the question wants it rounded.
double toleranceOf(const SampleQuestion& question, double exact)
{
    static const QRegularExpression rounded(u"correct to|to the nearest"_qs);
    static const QRegularExpression decimals(u"\\.(\\d+)"_qs);
    for (const ContentLine& line : question.lines)
        if (line.text.contains(rounded))
            return 0.5 * std::pow(10, -decimals.match(question.answer).capturedLength(1));
    return 1e-9 * std::max(1.0, std::abs(exact));
}

bool hasValue(const Expression& expression, const SampleQuestion& question, const QString& answer)
{
    const QStringList parts = bare(answer).split(u"; "_qs);
    bool right = parts.size() == question.value.size();
    for (const double seed : {0.7, 2.3}) {
        Variables variables; // Different values for all the letters that answers contain.
        for (const QChar letter : u"abnuvx"_qs)
            variables[letter] = seed * (letter.unicode() - u'Z');
        for (qsizetype part = 0; right && part < parts.size(); ++part) {
            const double given = expression.evaluate(parts.at(part), variables).value_or(NAN);
            const double exact =
                expression.evaluate(question.value.at(part), variables).value_or(NAN);
            right = std::abs(given - exact) <= toleranceOf(question, exact);
        }
    }
    return right;
}

bool solves(const Expression& expression, const SampleQuestion& question, QString answer)
{
    if (answer.contains(u'±'))
        answer =
            QString(answer).replace(u'±', u'+') + u" or "_qs + QString(answer).replace(u'±', u'-');
    for (const QString& solution : answer.remove(u'$').split(u" or "_qs)) {
        Variables variables;
        for (const QString& part : solution.split(u" and "_qs))
            variables[part.left(1)] = expression.evaluate(bare(part)).value_or(NAN);
        for (const QString& zero : question.zero)
            if (!(std::abs(expression.evaluate(zero, variables).value_or(NAN)) < 1e-9))
                return false;
    }
    return true;
}

TEST(SampleAnswers, AreRight)
{
    const Expression expression;
    std::set<QString> judged;
    for (const SampleQuestion& question : content().questions) {
        SCOPED_TRACE(describe(question));
        const auto right = [&](const QString& answer) {
            return question.value.isEmpty() ? solves(expression, question, answer)
                                            : hasValue(expression, question, answer);
        };
        const bool computed = !question.value.isEmpty() || !question.zero.isEmpty();
        if (!computed)
            judged.insert(question.subtopic);
        if (question.options.isEmpty()) {
            EXPECT_TRUE(right(question.answer));
            continue;
        }
        ASSERT_THAT(question.answer.toStdString(), testing::AnyOf("A", "B", "C", "D"));
        EXPECT_EQ(std::set<QString>(question.options.begin(), question.options.end()).size(), 4U);
        for (int index = 0; computed && index < 4; ++index)
            EXPECT_EQ(right(question.options.at(index)),
                      question.answer.front() == QChar(u'A' + index))
                << index;
    }
    // What no formula can say: an interval's picture, a scatter graph, lamps that
    // light up.
    EXPECT_THAT(judged, testing::ElementsAre(u"Charts and diagrams"_qs, u"Circuits"_qs,
                                             u"Inequalities"_qs));
}

TEST(SampleAnswers, FitOnOneLineOfTheAnswerKey)
{
    QFont font(u"Liberation Sans"_qs);
    font.setPixelSize(18); // A point is a pixel at 72 dots an inch.
    font.setHintingPreference(QFont::PreferNoHinting);
    ASSERT_EQ(QFontInfo(font).family(), font.family());
    constexpr double Room = 100 - 2 * 7.2; // The text box without its margins.
    for (const SampleQuestion& question : content().questions)
        EXPECT_LE(QFontMetricsF(font).horizontalAdvance(u"99) "_qs + question.answer), Room)
            << describe(question);
}

TEST(SampleContentFiles, FaultsAreReportedWithTheirPlace)
{
    const QTemporaryDir folder;
    const auto write = [&](const QString& name, const QByteArray& text) {
        QFile file(folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    };
    write(u"assessment.txt"_qs, "assessment A\nfile t.txt\n");
    for (const auto& [text, message] :
         {std::pair{"topic T\nsubtopic S\nquestion\ntxt x\n", "t.txt:4: unknown"},
          {"topic T\nquestion\n", "t.txt:2: a question needs"},
          {"topic T\nsubtopic S\nquestion\ntext x\n", "lacks a text or an answer"},
          {"text x\n", "t.txt:1: this line"},
          {"topic T\nsubtopic S\nquestion\noptions a | b\n", "four options"}}) {
        write(u"t.txt"_qs, text);
        EXPECT_THAT([&] { readSampleContent(folder.path()); },
                    testing::ThrowsMessage<std::runtime_error>(testing::HasSubstr(message)));
    }
}

/// The library beside the program, for which publish_library.cmake cares. It
/// stands in `bin`.
class PublishedLibrary : public testing::Test
{
protected:
    void write(const QString& name, const QByteArray& text) const
    {
        QFile file(m_folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    QByteArray read(const QString& name) const
    {
        QFile file(m_folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
    }
    /// Publishes these contents; what stands in `bin` then.
    QByteArray publish(const QByteArray& database, const QByteArray& picture) const
    {
        for (const QString& folder : {u"share/Files"_qs, u"bin/Files"_qs})
            QDir(m_folder.path()).mkpath(folder);
        write(u"share/Varnholt.mdb"_qs, database);
        write(u"share/Files/1.jpg"_qs, picture);
        const auto option = [this](const QString& name, const QString& path) {
            return u"-D%1=%2"_qs.arg(name, m_folder.filePath(path));
        };
        EXPECT_EQ(
            QProcess::execute(QStringLiteral(CMAKE_PROGRAM),
                              {option(u"PRISTINE"_qs, u"share"_qs), option(u"TARGET"_qs, u"bin"_qs),
                               option(u"MANIFEST"_qs, u"published.txt"_qs), u"-P"_qs,
                               QStringLiteral(PUBLISH_SCRIPT)}),
            0);
        return read(u"bin/Varnholt.mdb"_qs) + ' ' + read(u"bin/Files/1.jpg"_qs);
    }

    QTemporaryDir m_folder;
};

TEST_F(PublishedLibrary, FollowsThePristineOneUntilSomebodyWorksWithIt)
{
    EXPECT_EQ(publish("db1", "pic1"), "db1 pic1");
    EXPECT_EQ(publish("db1", "pic2"), "db1 pic2");
    write(u"bin/Files/1.jpg"_qs,
          "pic3"); // As after a copying that was interrupted.
    EXPECT_EQ(publish("db3", "pic3"), "db3 pic3");
    ASSERT_TRUE(QFile::remove(m_folder.filePath(u"bin/Varnholt.mdb"_qs)));
    EXPECT_EQ(publish("db3", "pic3"), "db3 pic3");
    write(u"bin/Varnholt.mdb-wal"_qs, "unwritten");
    EXPECT_EQ(publish("db4", "pic4"), "db3 pic3");
    ASSERT_TRUE(QFile::remove(m_folder.filePath(u"bin/Varnholt.mdb-wal"_qs)));
    write(u"bin/Varnholt.mdb"_qs, "mine");
    EXPECT_EQ(publish("db5", "pic5"), "mine pic3");
}

TEST_F(PublishedLibrary, LeavesPicturesOfOthersAlone)
{
    QDir(m_folder.path()).mkpath(u"bin/Files"_qs);
    write(u"bin/Files/1.jpg"_qs, "mine");
    EXPECT_EQ(publish("db1", "pic1"), "missing mine");
}

} // namespace
} // namespace varnholt
