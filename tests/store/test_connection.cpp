#include "store/connection.h"
#include "store/statements.h"
#include "support/test_library.h"
#include "support/unprivileged.h"

#include <QDir>
#include <QFile>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace varnholt {
namespace {

using test::TestLibrary;

/// What opening says, or nothing when it works.
std::string openingError(const QString& path)
{
    Connection connection;
    try {
        connection.open(path);
    } catch (const DatabaseError& error) {
        EXPECT_FALSE(connection.isOpen());
        EXPECT_TRUE(error.message().contains(path)) << error.what();
        return error.message().section(u'\n', 0, 0).toStdString();
    }
    return {};
}

QByteArray bytesOf(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    return file.readAll();
}

TEST(Connection, RefusesWhatIsNoLibraryAndLeavesItAlone)
{
    TestLibrary library;
    const QString missing = library.folder() + QStringLiteral("/none.mdb");
    EXPECT_EQ(openingError(missing), "The question library was not found:");
    EXPECT_FALSE(QFile::exists(missing));
    EXPECT_EQ(openingError(library.folder() + QStringLiteral("/Files")),
              "The question library should be a file, but this is a folder:");

    const QString path = library.folder() + QStringLiteral("/other.mdb");
    const auto write = [&](const QByteArray& bytes) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(bytes);
    };
    write(QByteArray("Standard Jet DB").repeated(1000));
    EXPECT_EQ(openingError(path), "This file is not a question library:");
    EXPECT_EQ(bytesOf(path), QByteArray("Standard Jet DB").repeated(1000));
    write({});
    EXPECT_EQ(openingError(path),
              "This file is a database, but not a question library (table Assessments is "
              "missing):");
    EXPECT_TRUE(bytesOf(path).isEmpty());

    library.sql(QStringLiteral("ALTER TABLE Questions RENAME COLUMN Answer TO Reply"));
    EXPECT_EQ(openingError(library.databasePath()),
              "This file is a database, but not a question library (field Answer of table "
              "Questions is missing):");

    const QByteArray whole = bytesOf(library.databasePath());
    for (const qsizetype size : {100, 600, 5000}) {
        write(whole.left(size));
        EXPECT_NE(openingError(path), "") << size;
        EXPECT_EQ(bytesOf(path), whole.left(size));
    }
}

TEST(Connection, AcceptsAnyDatabaseWithTheTablesInAnyCase)
{
    TestLibrary library;
    library.sql(QStringLiteral(
        "DROP TABLE Questions; CREATE TABLE QUESTIONS(note, solindex integer primary key, "
        "TOPICID, SUBTOPICNUM, ANSWER, assessmentnum, available);"
        "INSERT INTO questions VALUES('n',3,1,NULL,NULL,1,1)"));
    Connection connection;
    connection.open(library.databasePath());
    EXPECT_FALSE(connection.isReadOnly());
    Recordset rows = connection.read(statements::SelectQuestions(1));
    ASSERT_TRUE(rows.next());
    EXPECT_EQ(rows.integer(rows.field("SubtopicNum")), 0);
    EXPECT_EQ(rows.text(rows.field("Answer")), QString());
    EXPECT_THROW((void)rows.field("Missing"), DatabaseError);
    EXPECT_FALSE(rows.next());
}

TEST(Connection, ReadsWhatItMayNotWrite)
{
    TestLibrary library;
    library.addAssessment(QStringLiteral("A"));
    const auto names = [](Connection& connection) {
        Recordset rows = connection.read(statements::SelectAssessments());
        QStringList found;
        while (rows.next()) {
            found.append(rows.text(rows.field("AssessmentName")));
        }
        return found;
    };
    // Once as supplied, once as the program leaves it.
    for (const char* mode : {"DELETE", "WAL"}) {
        library.sql(QStringLiteral("PRAGMA journal_mode = ") + QLatin1String(mode));
        QFile(library.databasePath())
            .setPermissions(QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
        const test::Unprivileged unprivileged(library.folder());
        Connection connection;
        connection.open(library.databasePath());
        EXPECT_TRUE(connection.isReadOnly()) << mode;
        EXPECT_EQ(names(connection), QStringList{QStringLiteral("A")}) << mode;
        EXPECT_THROW(connection.execute(statements::UpdateHistory(1)), DatabaseError) << mode;
    }
    QFile(library.databasePath()).setPermissions(QFile::WriteOwner);
    const test::Unprivileged unprivileged(library.folder());
    EXPECT_EQ(openingError(library.databasePath()),
              "You do not have the right to read the question library:");
}

TEST(Connection, WritesFailLoudlyOnceTheFileHasGone)
{
    TestLibrary library;
    library.addAssessment(QStringLiteral("A"));
    Connection connection;
    EXPECT_THROW(connection.execute(statements::UpdateHistory(1)), DatabaseError);
    connection.open(library.databasePath());
    QFile::rename(library.databasePath(), library.databasePath() + QStringLiteral(".away"));
    EXPECT_THROW(connection.execute(statements::UpdateHistory(1)), DatabaseError);
}

TEST(Connection, TransactionsAreSeenWholeOrNotAtAll)
{
    TestLibrary library;
    Connection connection;
    connection.open(library.databasePath());
    const auto count = [&] {
        return library.value(QStringLiteral("SELECT count(*) FROM Assessments")).toInt();
    };
    {
        Transaction transaction(connection);
        connection.execute(statements::InsertAssessment(QStringLiteral("A")));
        EXPECT_EQ(count(), 0);
        EXPECT_THROW(Transaction{connection}, DatabaseError);
    }
    EXPECT_EQ(count(), 0);
    {
        Transaction transaction(connection);
        connection.execute(statements::InsertAssessment(QStringLiteral("A")));
        transaction.commit();
    }
    EXPECT_EQ(count(), 1);
}

TEST(Connection, ValuesOutOfRangeAreErrors)
{
    TestLibrary library;
    library.sql(QStringLiteral("INSERT INTO Assessments VALUES(3000000000,'big',1)"));
    Connection connection;
    connection.open(library.databasePath());
    Recordset rows = connection.read(statements::SelectAssessments());
    ASSERT_TRUE(rows.next());
    EXPECT_THROW((void)rows.integer(rows.field("AssessmentNum")), DatabaseError);
    EXPECT_THROW((void)toInt16(32'768), OverflowError);
    EXPECT_EQ(toInt16(-32'768), -32'768);
}

} // namespace
} // namespace varnholt
