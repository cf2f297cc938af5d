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

const QString Library = QStringLiteral(LIBRARY_FOLDER "/Varnholt.mdb");

const SampleContent& content()
{
    static const SampleContent read = readSampleContent(QStringLiteral(SAMPLE_FOLDER));
    return read;
}

/// The rows that a statement returns, or one row "error" with SQLite's message.
std::vector<Row> query(const QString& file, const QString& sql)
{
    std::vector<Row> rows;
    sqlite3* database = nullptr;
    sqlite3_open_v2(file.toUtf8(), &database, SQLITE_OPEN_READWRITE, nullptr);
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
    const QMap<QString, QString> fields{
        {u"Assessments"_qs, u"AssessmentNum AssessmentName Available"_qs},
        {u"Topics"_qs, u"TopicID Topic AssessmentNum Available"_qs},
        {u"SubTopics"_qs, u"SubtopicNum TopicID SubTopic AssessmentNum Available"_qs},
        {u"Questions"_qs, u"SOLIndex TopicID SubTopicNum Answer AssessmentNum Available"_qs},
        {u"History"_qs, u"LastID"_qs}};
    for (auto table = fields.cbegin(); table != fields.cend(); ++table) {
        Row names;
        for (const Row& row : query(Library, u"pragma table_info(%1)"_qs.arg(table.key())))
            names += row.at(1);
        EXPECT_EQ(names.join(u' '), table.value());
    }
    EXPECT_EQ(query(Library, u"select LastID from History"_qs), (std::vector<Row>{{u"0"_qs}}));
    EXPECT_EQ(query(Library, u"pragma journal_mode"_qs).front(), Row{u"delete"_qs});
    EXPECT_EQ(query(Library, u"pragma integrity_check"_qs).front(), Row{u"ok"_qs});
    EXPECT_EQ(QDir(QStringLiteral(LIBRARY_FOLDER)).entryList(QDir::Files), Row{u"Varnholt.mdb"_qs});
}

TEST(SampleLibrary, TakesNewRowsAndReturnsThemInTheOrderOfTheirKeys)
{
    const QTemporaryDir folder;
    const QString copy = folder.filePath(u"copy.mdb"_qs);
    ASSERT_TRUE(QFile::copy(Library, copy));
    const auto keys = [&copy](const QString& table) {
        QList<int> result;
        for (const Row& row :
             query(copy,
                   u"Select * from %1 where Available = true and AssessmentNum = 1"_qs.arg(table)))
            result += row.front().toInt();
        return result;
    };
    for (const QString& table : {u"Topics"_qs, u"Subtopics"_qs, u"Questions"_qs}) {
        const QList<int> before = keys(table);
        const int last = before.back();
        const QString name = table == u"Questions" ? u"Answer"_qs : table.chopped(1);
        const auto insert = [&](int assessment) {
            return query(copy,
                         u"Insert into %1 (%2,AssessmentNum,Available) Values('12',%3,true)"_qs
                             .arg(table, name)
                             .arg(assessment));
        };
        ASSERT_THAT(insert(1), testing::IsEmpty());
        // A key is not given twice, even when its row has really gone.
        ASSERT_THAT(query(copy, u"delete from %1 where rowid = %2"_qs.arg(table).arg(last + 1)),
                    testing::IsEmpty());
        ASSERT_THAT(insert(2), testing::IsEmpty());
        ASSERT_THAT(insert(1), testing::IsEmpty());
        ASSERT_THAT(
            query(copy, u"Update %1 Set Available = false where rowid = %2"_qs.arg(table).arg(
                            before.front())),
            testing::IsEmpty());
        EXPECT_EQ(keys(table), before.mid(1) + QList<int>{last + 3}) << table.toStdString();
    }
}

TEST(SampleLibrary, HoldsTheContent)
{
    const auto rows = query(
        Library,
        u"select SOLIndex, Topic, SubTopic, Answer, AssessmentName from Questions "
        "join SubTopics on Questions.SubTopicNum = SubTopics.SubtopicNum "
        "join Topics on Topics.TopicID = SubTopics.TopicID and Topics.TopicID = Questions.TopicID "
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
        QRect ink;
        int dark = 0;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) {
                const int grey = qGray(image.pixel(x, y));
                dark += grey < 100;
                if (grey < 235)
                    ink |= QRect(x, y, 1, 1);
            }
        EXPECT_GT(dark, 600);
        EXPECT_TRUE(image.rect().adjusted(15, 15, -15, -15).contains(ink))
            << ink.left() << ' ' << ink.top() << ' ' << ink.right() << ' ' << ink.bottom();
    }
    EXPECT_EQ(QDir(QStringLiteral(LIBRARY_FOLDER "/Files")).entryList(QDir::Files).size(),
              static_cast<qsizetype>(content().questions.size()));
}

/// What an answer says, without "x =", brackets and the dollar signs of a formula.
QString bare(QString answer)
{
    static const QRegularExpression bold(uR"(\\bold\{(.)\})"_qs);
    static const QRegularExpression column(uR"(\\col\{(.*?)\}\{(.*?)\})"_qs);
    static const QRegularExpression pair(uR"(^\((.*), (.*)\)$)"_qs);
    static const QRegularExpression name(u"^[a-z] = "_qs);
    answer.remove(u'$').replace(bold, u"\\1"_qs).replace(column, u"\\1; \\2"_qs);
    return answer.replace(pair, u"\\1; \\2"_qs).remove(name);
}

/// How much an answer may differ from its exact value: half of the last digit it gives where
/// the question wants it rounded.
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
        ASSERT_THAT(question.answer.toStdString(), testing::MatchesRegex("[ABCD]"));
        EXPECT_EQ(std::set<QString>(question.options.begin(), question.options.end()).size(), 4U);
        for (int index = 0; computed && index < 4; ++index)
            EXPECT_EQ(right(question.options.at(index)),
                      question.answer.front() == QChar(u'A' + index))
                << index;
    }
    // What no formula can say: an interval's picture, a scatter graph, lamps that light up.
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

TEST(SampleAnswers, ExpressionsMeanWhatTheyShow)
{
    const Expression expression;
    const auto value = [&](const QString& text) {
        return expression.evaluate(text, {{u"x"_qs, 3}, {u"a"_qs, 2}}).value_or(NAN);
    };
    for (const auto& [text, expected] : {std::pair{u"7/2"_qs, 3.5},
                                         {u"2x(x - 1)"_qs, 12.0},
                                         {u"-x^2 + ax"_qs, -3.0},
                                         {u"\\frac{1}{\\sqrt{4}}x"_qs, 1.5},
                                         {u"4.7 × 10^{-3}"_qs, 0.0047},
                                         {u"£2121.80"_qs, 2121.8},
                                         {u"13.5 cm²"_qs, 13.5},
                                         {u"16π cm$^2$"_qs, 50.26548245743669},
                                         {u"sin(radians(30))"_qs, 0.5}})
        EXPECT_NEAR(value(text), expected, 1e-9) << text.toStdString();
    EXPECT_TRUE(std::isnan(value(u"x and Y"_qs)));
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

/// The library beside the program, for which publish_library.cmake cares.
class PublishedLibrary : public testing::Test
{
protected:
    void write(const QString& name, const QByteArray& text) const
    {
        QDir().mkpath(QFileInfo(m_folder.filePath(name)).path());
        QFile file(m_folder.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    QByteArray read(const QString& name) const
    {
        QFile file(m_folder.filePath(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("missing");
    }
    void publish(const QByteArray& database, const QByteArray& picture) const
    {
        write(u"share/Varnholt.mdb"_qs, database);
        write(u"share/Files/1.jpg"_qs, picture);
        const auto option = [this](const QString& name, const QString& path) {
            return u"-D%1=%2"_qs.arg(name, m_folder.filePath(path));
        };
        ASSERT_EQ(
            QProcess::execute(QStringLiteral(CMAKE_PROGRAM),
                              {option(u"PRISTINE"_qs, u"share"_qs), option(u"TARGET"_qs, u"bin"_qs),
                               option(u"MANIFEST"_qs, u"published.txt"_qs), u"-P"_qs,
                               QStringLiteral(PUBLISH_SCRIPT)}),
            0);
    }
    QByteArray standing() const
    {
        return read(u"bin/Varnholt.mdb"_qs) + ' ' + read(u"bin/Files/1.jpg"_qs);
    }

    QTemporaryDir m_folder;
};

TEST_F(PublishedLibrary, FollowsThePristineOneUntilSomebodyWorksWithIt)
{
    publish("db1", "pic1");
    EXPECT_EQ(standing(), "db1 pic1");
    publish("db1", "pic2");
    EXPECT_EQ(standing(), "db1 pic2");
    write(u"bin/Files/1.jpg"_qs, "pic3"); // As after a copying that was interrupted.
    publish("db3", "pic3");
    EXPECT_EQ(standing(), "db3 pic3");
    ASSERT_TRUE(QFile::remove(m_folder.filePath(u"bin/Varnholt.mdb"_qs)));
    publish("db3", "pic3");
    EXPECT_EQ(standing(), "db3 pic3");
    write(u"bin/Varnholt.mdb"_qs, "mine");
    publish("db4", "pic4");
    EXPECT_EQ(standing(), "mine pic3");
}

TEST_F(PublishedLibrary, LeavesPicturesAndOpenLibrariesOfOthersAlone)
{
    write(u"bin/Files/1.jpg"_qs, "mine");
    publish("db1", "pic1");
    EXPECT_EQ(standing(), "missing mine");
    ASSERT_TRUE(QFile::remove(m_folder.filePath(u"bin/Files/1.jpg"_qs)));
    publish("db1", "pic1");
    write(u"bin/Varnholt.mdb-wal"_qs, "unwritten");
    publish("db2", "pic2");
    EXPECT_EQ(standing(), "db1 pic1");
}

} // namespace
} // namespace varnholt
