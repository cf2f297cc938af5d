#include "pictures/picture_files.h"
#include "store/connection.h"
#include "store/file_name.h"
#include "store/library_file.h"
#include "store/statements.h"
#include "support/file_size_limit.h"
#include "support/test_files.h"
#include "support/test_library.h"
#include "support/unprivileged.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>

#include <gtest/gtest.h>

#ifndef Q_OS_WIN
#include <fcntl.h>
#include <sys/syscall.h>
#include <sys/vfs.h>
#include <sys/wait.h>
#include <unistd.h>

/// Every request of the database to put something on the disk passes here.
static int syncs = 0;

extern "C" int fsync(int descriptor)
{
    ++syncs;
    return static_cast<int>(syscall(SYS_fsync, descriptor));
}
extern "C" int fdatasync(int descriptor)
{
    ++syncs;
    return static_cast<int>(syscall(SYS_fdatasync, descriptor));
}

/// Whether every folder seems to be on another computer.
static bool onNetwork = false;

extern "C" int statfs(const char* path, struct statfs* system) noexcept
{
    const auto result = static_cast<int>(syscall(SYS_statfs, path, system));
    if (onNetwork) {
        system->f_type = 0x6969;
    }
    return result;
}
#else
static bool onNetwork = false;
#endif

namespace varnholt::test {
namespace {

using namespace Qt::Literals::StringLiterals;
using namespace statements;

class LibraryConnection : public testing::Test
{
protected:
    ~LibraryConnection() override { onNetwork = false; }

    /// What opening says, or nothing when it works.
    std::string openingError(const QString& path)
    {
        try {
            connection.open(path);
        } catch (const DatabaseError& error) {
            EXPECT_FALSE(connection.isOpen());
            EXPECT_TRUE(error.message().contains(QDir::toNativeSeparators(path))) << error.what();
            return error.message().section(u'\n', 0, 0).toStdString();
        }
        return {};
    }
    /// The library as a program leaves it that is killed after adding an assessment.
    void killAfterAdding(const QString& name)
    {
        const QString path = library.databasePath();
        connection.open(path);
        connection.execute(InsertAssessment(name));
        for (const QString& ending : {QString(), u"-wal"_s}) {
            QFile::copy(path + ending, path + u".kept"_s + ending);
        }
        connection.close();
        for (const QString& ending : {QString(), u"-wal"_s}) {
            QFile::remove(path + ending);
            ASSERT_TRUE(QFile::rename(path + u".kept"_s + ending, path + ending));
        }
    }

    TestLibrary library;
    Connection connection;
};

TEST_F(LibraryConnection, RefusesWhatIsNoLibraryAndLeavesItAlone)
{
    const QString path = library.folder() + u"/other.mdb"_s;
    EXPECT_EQ(openingError(path), "The question library was not found:");
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_EQ(openingError(library.folder() + u"/Files"_s),
              "The question library should be a file, but this is a folder:");

    library.sql(u"ALTER TABLE Questions RENAME COLUMN Answer TO Reply"_s);
    const QByteArray lacking = readFile(library.databasePath());
    const std::string none = "This file is not a question library:";
    const std::string other = "This file is a database, but not a question library (";
    const std::string damaged = "The question library could not be opened:";
    for (const auto& [bytes, error] :
         {std::pair{QByteArray("Standard Jet DB").repeated(1000), none},
          {QByteArray(), other + "table Assessments is missing):"},
          {lacking, other + "field Answer of table Questions is missing):"},
          {lacking.left(100), damaged},
          {lacking.left(600), damaged},
          {lacking.left(5000), damaged}}) {
        writeFile(path, bytes);
        EXPECT_EQ(openingError(path), error) << bytes.size();
        EXPECT_EQ(readFile(path), bytes);
    }
}

TEST_F(LibraryConnection, AcceptsAnyDatabaseWithTheTablesInAnyCase)
{
    library.sql(u"DROP TABLE Questions; CREATE TABLE QUESTIONS(note, solindex "
                u"integer primary key,TOPICID, SUBTOPICNUM, ANSWER, assessmentnum, "
                "available);INSERT INTO questions VALUES('n',3,3000000000,NULL,NULL,1,1)"_s);
    connection.open(library.databasePath());
    EXPECT_FALSE(connection.isReadOnly());
    Recordset rows = connection.read(SelectQuestions(1));
    ASSERT_TRUE(rows.next());
    EXPECT_EQ(rows.integer(rows.field("SubtopicNum")), 0);
    EXPECT_EQ(rows.text(rows.field("Answer")), QString());
    EXPECT_THROW((void)rows.integer(rows.field("TopicID")), DatabaseError);
    EXPECT_THROW((void)rows.field("Missing"), DatabaseError);
    EXPECT_FALSE(rows.next());

    EXPECT_THROW((void)toInt16(32'768), OverflowError);
    EXPECT_EQ(toInt16(-32'768), -32'768);
}

class LockedLibrary : public LibraryConnection,
                      public testing::WithParamInterface<std::tuple<const char*, int, bool>>
{};

TEST_P(LockedLibrary, IsOpenedForReading)
{
    VARNHOLT_SKIP_ON_WINDOWS("a folder cannot be closed to its owner");
    const auto [mode, permissions, network] = GetParam();
    const QString path = library.databasePath();
    library.addAssessment(u"A"_s);
    if (QLatin1String(mode) == "KILLED"_L1) {
        library.sql(u"DELETE FROM Assessments"_s);
        killAfterAdding(u"B"_s);
    } else {
        library.sql(u"PRAGMA journal_mode = "_s + QLatin1String(mode));
    }
    QFile::setPermissions(path, QFile::Permissions(permissions));
    QFile::setPermissions(library.folder(), QFile::Permissions(0x5555));
    onNetwork = network;
    {
        const Unprivileged unprivileged(library.folder());
        EXPECT_EQ(openingError(path), "");
        EXPECT_TRUE(connection.isReadOnly());
        EXPECT_TRUE(connection.read(SelectAssessments()).next());
        EXPECT_THROW(connection.execute(UpdateHistory(1)), DatabaseError);
    }
    QFile::setPermissions(path, QFile::WriteOwner);
    {
        const Unprivileged unprivileged(library.folder());
        EXPECT_EQ(openingError(path), "You do not have the right to read the question library:");
    }
    QFile::setPermissions(library.folder(), QFile::Permissions(0x7777));
}

// As supplied, as the program leaves it, and with a row that stands only beside the file; the
// file locked, or only its folder; here and on another computer.
INSTANTIATE_TEST_SUITE_P(Modes, LockedLibrary,
                         testing::Combine(testing::Values("DELETE", "WAL", "KILLED"),
                                          testing::Values(0x4444, 0x6666), testing::Bool()));

TEST_F(LibraryConnection, KeepsNoLogOnANetwork)
{
    VARNHOLT_SKIP_ON_WINDOWS("no folder can be made to seem one of another computer");
    killAfterAdding(u"B"_s);
    onNetwork = true;
    EXPECT_EQ(openingError(library.databasePath()), "");
    EXPECT_TRUE(connection.read(SelectAssessmentsNamed(u"B"_s)).next());
    connection.execute(InsertAssessment(u"C"_s));
    EXPECT_FALSE(QFile::exists(library.databasePath() + u"-wal"_s));
}

TEST_F(LibraryConnection, WritesFailLoudlyOnceTheFileHasGone)
{
    VARNHOLT_SKIP_ON_WINDOWS("a file in use cannot be taken away");
    EXPECT_THROW(connection.execute(UpdateHistory(1)), DatabaseError);
    connection.open(library.databasePath());
    connection.execute(UpdateHistory(1));
    QFile::rename(library.databasePath(), library.databasePath() + u".away"_s);
    EXPECT_THROW(connection.execute(UpdateHistory(2)), DatabaseError);
}

TEST_F(LibraryConnection, ACopyOfTheFileAloneIsWholeOnceSettled)
{
    const QString copy = library.folder() + u"/copy.mdb"_s;
    connection.open(library.databasePath());
    const auto copied = [&] {
        QFile::remove(copy);
        QFile::copy(library.databasePath(), copy);
        Connection other;
        other.open(copy);
        return other.read(SelectAssessmentsNamed(u"A"_s)).next();
    };
    connection.execute(InsertAssessment(u"A"_s));
    EXPECT_FALSE(copied());
    {
        Recordset reading = connection.read(SelectAssessments());
        EXPECT_TRUE(reading.next());
        EXPECT_FALSE(connection.settle());
    }
    // By itself, as soon as nothing is in the way.
    EXPECT_TRUE(QTest::qWaitFor(copied, 60'000));
}

TEST_F(LibraryConnection, WaitsForOthersAndHasWhatItCommitsOnTheDisk)
{
    VARNHOLT_SKIP_ON_WINDOWS("there is no shell that another program could wait in");
    connection.open(library.databasePath());
#ifndef Q_OS_WIN
    const int before = syncs;
    connection.execute(UpdateHistory(1));
    EXPECT_GT(syncs, before);
#endif
    QProcess other;
    other.start(u"sqlite3"_s,
                {library.databasePath(), u"BEGIN IMMEDIATE; UPDATE History SET LastID = 2"_s,
                 u".shell echo changing; sleep 0.3"_s, u"COMMIT"_s});
    ASSERT_TRUE(other.waitForReadyRead());
    EXPECT_NO_THROW(connection.execute(UpdateHistory(3)));
    EXPECT_TRUE(other.waitForFinished());
    EXPECT_EQ(library.value(u"SELECT LastID FROM History"_s), u"3"_s);
}

#ifndef Q_OS_WIN
TEST_F(LibraryConnection, KeepsItsLocksWhateverElseTheProgramOpens)
{
    const QByteArray path = library.databasePath().toUtf8();
    connection.open(library.databasePath());
    connection.execute(InsertAssessment(u"A"_s));
    Connection().open(library.databasePath(), Connection::Access::ReadOnly);
    // As the next program asks, which takes the log away when it believes to be alone.
    const pid_t other = fork();
    if (other == 0) {
        struct flock lock = {};
        lock.l_type = F_WRLCK;
        const int file = open(path.constData(), O_RDWR);
        _exit(file >= 0 && fcntl(file, F_GETLK, &lock) == 0 && lock.l_type != F_UNLCK ? 0 : 1);
    }
    int status = -1;
    waitpid(other, &status, 0);
    EXPECT_EQ(status, 0);
}
#endif

TEST_F(LibraryConnection, TransactionsAreSeenWholeOrNotAtAll)
{
    connection.open(library.databasePath());
    for (const bool committed : {false, true}) {
        {
            Transaction transaction(connection);
            connection.execute(InsertAssessment(u"A"_s));
            EXPECT_EQ(library.sql(u"SELECT * FROM Assessments"_s).size(), 0);
            if (committed) {
                transaction.commit();
            }
        }
        EXPECT_EQ(library.sql(u"SELECT * FROM Assessments"_s).size(), committed ? 1 : 0);
    }
}

TEST(PictureFiles, AreFoundWhateverTheCase)
{
    VARNHOLT_SKIP_ON_WINDOWS("names of files are the same in any case");
    QTemporaryDir folder;
    const QString root = folder.path();
    EXPECT_EQ(FindPictureFile(root, 7), root + u"/Files/7.jpg"_s);
    QDir(root).mkdir(u"FILES"_s);
    for (const QString& name : {u"7.jpg"_s, u"8.JPG"_s, u"9.Jpg"_s}) {
        writeFile(root + u"/FILES/"_s + name, "x");
        EXPECT_EQ(FindPictureFile(root, name.at(0).digitValue()), root + u"/FILES/"_s + name);
    }
    EXPECT_EQ(NewPictureFile(root, 8), root + u"/FILES/8.jpg"_s);
    EXPECT_EQ(FindPictureFile(root, 70), root + u"/FILES/70.jpg"_s);
}

TEST(FileNames, AreTakenByEverySystem)
{
    for (const auto& [text, name] : {std::pair{u"Physics 2026-11-21", u"Physics 2026-11-21"},
                                     {u"", u"-"},
                                     {u"../a:b?\n<\"c\">|*\\", u"_.-a-b----c-----"},
                                     {u"Test 1.", u"Test 1-"},
                                     {u"CON", u"_CON"},
                                     {u"nul.2nd", u"_nul.2nd"},
                                     {u"Com\u00B9 .a", u"_Com\u00B9 .a"},
                                     {u"COM10", u"COM10"},
                                     {u"Console", u"Console"}}) {
        EXPECT_EQ(PortableFileName(QString::fromUtf16(text)), QString::fromUtf16(name));
    }
    const QString date = u" 2026-11-21"_s;
    for (const QString& letter : {u"\u00F6"_s, u"\U0001F600"_s}) {
        const QString name = PortableFileName(letter.repeated(300) + date, date.size());
        EXPECT_LE(name.toUtf8().size(), 200);
        EXPECT_GT(name.toUtf8().size(), 190);
        EXPECT_TRUE(name.endsWith(letter + date));
    }
}

TEST(ProgramFolder, IsTheExecutablesOrACopyOfTheSuppliedLibrary)
{
    QTemporaryDir base;
    const QString user = base.filePath(u"user/data"_s);
    const QString empty = base.filePath(u"bin"_s);
    QDir().mkpath(empty);
    TestLibrary supplied;
    supplied.addQuestion(1, 1, 1, u"A"_s);
    EXPECT_EQ(ChooseProgramFolder({supplied.folder(), user, {}}), supplied.folder());

    // A copy that is cut short leaves no library that would pass for whole.
    const QString inTheWay = user + u"/Files/1.jpg"_s;
    QDir().mkpath(inTheWay);
    EXPECT_THROW((void)ChooseProgramFolder({empty, user, supplied.folder()}), Error);
    EXPECT_FALSE(QFile::exists(LibraryPath(user)));
    QDir().rmdir(inTheWay);
    EXPECT_EQ(ChooseProgramFolder({empty, user, supplied.folder()}), user);
    Connection connection;
    OpenLibraryDatabase(connection, user);
    EXPECT_TRUE(QFile::exists(FindPictureFile(user, 1)));
    CloseLibraryDatabase(connection);

    // Found in any spelling; of two, the exact one.
    QFile::rename(LibraryPath(user), user + u"/VARNHOLT.MDB"_s);
    EXPECT_EQ(ChooseProgramFolder({user, {}, supplied.folder()}), user);
    OpenLibraryDatabase(connection, user);
    CloseLibraryDatabase(connection);
    QFile::copy(LibraryPath(user), user + u"/Varnholt.mdb"_s);
    EXPECT_EQ(LibraryPath(user), user + u"/Varnholt.mdb"_s);

    // The user's library is never replaced by a later start.
    writeFile(LibraryPath(user), "x");
    EXPECT_EQ(ChooseProgramFolder({empty, user, supplied.folder()}), user);
    EXPECT_EQ(QFileInfo(LibraryPath(user)).size(), 1);

    // A lost library file is reported, not papered over with the supplied one.
    QDir(empty).mkdir(u"Files"_s);
    EXPECT_EQ(ChooseProgramFolder({empty, user, supplied.folder()}), empty);
    EXPECT_THROW(OpenLibraryDatabase(connection, empty), DatabaseError);
}

using LockedFolder = LibraryConnection;

TEST_F(LockedFolder, IsCopiedWithAllItHoldsOrTheFailureTold)
{
    VARNHOLT_SKIP_ON_WINDOWS("a folder cannot be closed to its owner");
    TestLibrary& locked = library;
    locked.addQuestion(1, 1, 1, u"A"_s);
    killAfterAdding(u"last"_s);
    QTemporaryDir home;
    const QString copy = home.filePath(u"data"_s);
    QFile::setPermissions(home.path(), QFile::Permissions(0x7777));
    QFile::setPermissions(locked.folder(), QFile::Permissions(0x5555));
    {
        const Unprivileged unprivileged(locked.folder());
        EXPECT_THROW(ChooseProgramFolder({locked.folder(), locked.folder() + u"/sub"_s, {}}),
                     Error);
        EXPECT_EQ(ChooseProgramFolder({locked.folder(), copy, {}}), copy);
    }
    QFile::setPermissions(locked.folder(), QFile::Permissions(0x7777));
    EXPECT_TRUE(QFile::exists(FindPictureFile(copy, 1)));
    connection.open(LibraryPath(copy));
    EXPECT_FALSE(connection.isReadOnly());
    EXPECT_TRUE(connection.read(SelectAssessmentsNamed(u"last"_s)).next());
}

} // namespace
} // namespace varnholt::test
