#include "exchange/WorkFolder.h"
#include "exchange/exchange_world.h"
#include "exchange/frmExport.h"
#include "exchange/frmImport.h"
#include "exchange/zip_maker.h"
#include "support/gui.h"

#include <QLabel>

#include <sys/stat.h>
#ifndef Q_OS_WIN
#include <sys/syscall.h>
#include <unistd.h>
#endif

// Every request to put something on the disk, the database's own among them, passes here.
static int syncs = 0;
/// Those for a whole file system, as the pictures of an import have them.
[[maybe_unused]] static int wideSyncs = 0;
/// The kind of file (of its mode) whose requests fail.
static mode_t badDisk = 0;

#ifdef Q_OS_WIN
/// There these requests cannot be counted, nor made to fail.
constexpr std::initializer_list<mode_t> badDisks{0};
/// Thousands of files take minutes under Wine.
constexpr int questionsEach = 5;
#else
constexpr std::initializer_list<mode_t> badDisks{S_IFREG, S_IFDIR, 0};
constexpr int questionsEach = 50;

extern "C" int fsync(int descriptor)
{
    ++syncs;
    struct stat file
    {};
    fstat(descriptor, &file);
    if ((file.st_mode & S_IFMT) == badDisk) {
        errno = EIO;
        return -1;
    }
    return static_cast<int>(syscall(SYS_fsync, descriptor));
}
extern "C" int fdatasync(int descriptor)
{
    ++syncs;
    return static_cast<int>(syscall(SYS_fdatasync, descriptor));
}
extern "C" int syncfs(int descriptor)
{
    ++wideSyncs;
    return static_cast<int>(syscall(SYS_syncfs, descriptor));
}
#endif

namespace varnholt {
namespace {

using namespace test;

class Import : public testing::Test, protected ExchangeWorld
{
protected:
    void run(const std::optional<QString>& chosen)
    {
        files.answers.emplace_back(chosen);
        frmImport form(services, opened);
        form.cmdImport_Click();
        reason = control<QLabel>(&form, "lblReason")->text();
        messages.verify();
    }
    void run() { run(package()); }

    /// The usual package is imported under the name "P"; or that fails.
    void runSound(bool works)
    {
        expectNameQuestion(u"P"_s, u"P"_s);
        works ? expectImported(1, 1, 2) : expectImportError();
        run();
    }

    QString reason;

    /// What is in a folder of the program's.
    [[nodiscard]] std::string in(const char* folder) const
    {
        return listing(library.folder() + u'/' + QLatin1String(folder));
    }
    [[nodiscard]] int count(const char* table) const
    {
        return library.value(u"SELECT count(*) FROM %1"_s.arg(QLatin1String(table))).toInt();
    }
    [[nodiscard]] QString visible() const
    {
        return library.value(
            u"SELECT group_concat(AssessmentName) FROM Assessments WHERE Available"_s);
    }
};

/// A sound package of one topic, one subtopic and two questions; members can be replaced.
std::vector<RawMember> soundPackage(const std::map<QByteArray, QByteArray>& changes = {})
{
    std::vector<RawMember> members{
        {.name = "topics.txt", .data = "7,\"T\"\r\n"},
        {.name = "subtopics.txt", .data = "7,\"S\",70\r\n"},
        {.name = "questions.txt", .data = "3,7,\"A\",70\r\n4,7,\"B\",70\r\n"},
        {.name = "AssessmentInfo.txt", .data = "\"P\"\r\n"},
        {.name = "3.jpg", .data = "picture 3"},
        {.name = "4.jpg", .data = "picture 4"}};
    for (const auto& [name, data] : changes) {
        std::erase_if(members, [&](const RawMember& member) { return member.name == name; });
        if (data != "none") {
            members.push_back({.name = name, .data = data});
        }
    }
    return members;
}

TEST_F(Import, RoundTripOfManyQuestions)
{
    ExchangeWorld source;
    const QString name = u"Algebra – π"_s;
    source.library.addGenerated(name, 10, 10, questionsEach, true);
    source.library.sql(
        u"UPDATE Topics SET Topic = char(65279) || 'Commas, and 漢字' WHERE TopicID = 3;"
        "UPDATE Questions SET Answer = 'two' || char(13,10) || 'lines' WHERE SOLIndex = 5;"
        "UPDATE Questions SET TopicID = 999 WHERE SOLIndex = 6;"
        "UPDATE Questions SET Available = 0 WHERE SOLIndex = 7;"_s);
    ExchangeWorld small;
    small.library.addGenerated(name, 1, 1, 1, true);
    for (const mode_t bad : badDisks) {
        // Neither the bytes of the package nor its name may be lost with the power.
        badDisk = bad;
        ExchangeWorld& world = bad ? small : source;
        frmExport form(world.services, world.state, world.opened);
        world.files.answers.emplace_back(package());
        bad ? world.expect("Export Error",
                           "There is a problem creating this export file.  Please try again.")
            : world.expect("Export Complete", "Export was successful.");
        form.cmdExport_Click();
        EXPECT_EQ(control<QLabel>(&form, "lblReason")->text().contains(u"(Input/output error)"_s),
                  bad != 0);
    }
    library.addGenerated(u"Mine"_s, 2, 2, 2, true);

    expectNameQuestion(name, name);
    expectImported(10, 100, 100 * questionsEach - 1);
    const int before = syncs;
    run();
    EXPECT_LE(syncs - before, 12);
#ifdef Q_OS_LINUX
    EXPECT_EQ(wideSyncs, 1) << "the pictures must be on the disk before their rows are";
#endif
    EXPECT_EQ(QFileInfo(library.databasePath() + u"-wal"_s).size(), 0)
        << "a copy of the library would lack the import";
    EXPECT_EQ(content(name).join(u'\n').toStdString(),
              source.content(name).join(u'\n').toStdString());
    EXPECT_EQ(visible(), u"Mine,"_s + name);
    EXPECT_EQ(in("Import"), "");

    // An import is one step.
    EXPECT_EQ(opened.undo().result, UndoOutcome::Result::Done);
    EXPECT_EQ(visible(), u"Mine"_s);
    EXPECT_EQ(opened.redo().result, UndoOutcome::Result::Done);
    EXPECT_EQ(content(name).join(u'\n').toStdString(),
              source.content(name).join(u'\n').toStdString());
}

TEST_F(Import, NameIsAskedUntilItIsFree)
{
    library.addAssessment(u"P"_s);
    library.addAssessment(u"Gone"_s);
    library.sql(u"UPDATE Assessments SET Available = 0 WHERE AssessmentNum = 2"_s);
    writeFile(package(), makeZip(soundPackage()));
    const auto askAgain = [this](const QString& rejected, const QString& answer) {
        messages.expectInput(u"Assessment Name"_s,
                             u"That assessment name already exists.  Please enter "
                             "another assessment name."_s,
                             answer, rejected);
    };
    expectNameQuestion(u"P"_s, u" P "_s);
    askAgain(u"P"_s, u"P"_s);
    askAgain(u"P"_s, u"Gone "_s);
    expectImported(1, 1, 2);
    run();
    EXPECT_EQ(visible(), u"P,Gone"_s);

    // Giving up at either question leaves nothing.
    expectNameQuestion(u"P"_s, u"P"_s);
    askAgain(u"P"_s, QString());
    run();
    expectNameQuestion(u"P"_s, u"  "_s);
    run();
    EXPECT_EQ(in("Import"), "");
    run(std::nullopt);
    EXPECT_EQ(count("Assessments"), 3);

    // A name that no statement can hold; a new key that cannot be read back.
    library.sql(u"UPDATE sqlite_sequence SET seq = 2147483647 WHERE name = 'Assessments'"_s);
    for (const QString& name : {u"O'Brien"_s, u"Far"_s}) {
        expectNameQuestion(u"P"_s, name);
        expectImportError();
        run();
        EXPECT_NE(in("Import"), "");
    }
    EXPECT_EQ(visible(), u"P,Gone,Far"_s);
}

QByteArray records(int number)
{
    QByteArray lines;
    for (int i = 1; i <= number; ++i) {
        lines += QByteArray::number(i) + ",\"T\"\r\n";
    }
    return lines;
}

TEST_F(Import, PackagesAreImportedOrRefusedWhole)
{
    enum Result
    {
        Imported,
        NotAPackage,
        NotUnpacked,
        Quiet,
        Failed
    };
    struct Case
    {
        const char* name;
        std::map<QByteArray, QByteArray> changes;
        Result result;
        /// Of the archive.
        QByteArray comment = {};
        /// Of the last question: topic and subtopic.
        const char* places = "|T|S|";
        /// Topics, subtopics and questions imported.
        std::array<int, 3> counts{1, 1, 2};
        /// What stands before all names.
        QByteArray folder = {};
    };
    const std::array one{1, 1, 1};
    const std::array two{1, 1, 2};
    const std::vector<Case> cases{
        {"Sound", {}, Imported},
        {"NoInfo", {{"AssessmentInfo.txt", "none"}}, NotAPackage},
        {"EmptyInfo", {{"AssessmentInfo.txt", ""}}, NotAPackage},
        {"EmptyName", {{"AssessmentInfo.txt", "\"\"\r\n"}}, Quiet},
        {"NoTopics", {{"topics.txt", "none"}}, Failed},
        {"MalformedNumber", {{"subtopics.txt", "7,\"S\",x\r\n"}}, Failed},
        {"Apostrophe", {{"questions.txt", "3,7,\"it's\",70\r\n"}}, Failed},
        {"MissingPicture", {{"4.jpg", "none"}}, Failed},
        {"EmptyPicture", {{"4.jpg", ""}}, Imported},
        {"NoPlace", {{"questions.txt", "3,8,\"A\",80\r\n"}}, Imported, "", "|||", one},
        {"NegativeKeys",
         {{"questions.txt", "-3,-7,\"A\",-70\r\n"},
          {"-3.jpg", "x"},
          {"topics.txt", "-7,\"T\"\r\n"},
          {"subtopics.txt", "-7,\"S\",-70\r\n"}},
         Imported,
         "",
         "|T|S|",
         one},
        {"LastOfTwinsWins",
         {{"topics.txt", "7,\"T\"\r\n7,\"U\"\r\n"},
          {"subtopics.txt", "7,\"S\",70\r\n7,\"V\",70\r\n"}},
         Imported,
         "",
         "|U|V|",
         {2, 2, 2}},
        {"MostRecords",
         {{"topics.txt", records(32767)}, {"subtopics.txt", ""}, {"questions.txt", ""}},
         Imported,
         "",
         "",
         {32767, 0, 0}},
        {"OneRecordTooMany", {{"topics.txt", records(32768)}}, Failed},
        {"InAFolder", {}, Imported, "", "|T|S|", two, "Algebra (1)/"},
        {"WithDots", {}, Imported, "", "|T|S|", two, "./"},
        {"OutsideItsFolder", {}, NotAPackage, "", "", two, "../"},
        {"AnotherBelowIt", {{"b/AssessmentInfo.txt", "\"B\"\r\n"}}, Imported},
        {"TwoInFolders", {{"b/AssessmentInfo.txt", ""}}, NotUnpacked, "", "", two, "a/"},
        {"NoUtf8", {{"topics.txt", "7,\"\xe9\"\r\n"}}, Imported, "Not UTF-8", "|é|S|"},
        {"Utf8", {{"topics.txt", "7,\"π\"\r\n"}}, Imported, "Text files: UTF-8", "|π|S|"},
        {"Utf8Mark", {{"topics.txt", "\ufeff7,\"π\"\r\n"}}, Imported, "", "|π|S|"}};
    library.addGenerated(u"Mine"_s, 1, 1, 1, true);
    const QStringList mine = content(u"Mine"_s);
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<RawMember> members = soundPackage(c.changes);
        for (RawMember& member : members) {
            member.name.prepend(c.folder);
        }
        writeFile(package(), makeZip(members, c.comment));
        const QString name = QLatin1String(c.name);
        const bool tried = c.result == Imported || c.result == Failed;
        if (tried) {
            expectNameQuestion(u"P"_s, name);
        }
        if (c.result == NotAPackage) {
            expect("Import Error", "This file does not appear to be a compatiable export file.  "
                                   "Import will be aborted.");
        } else if (c.result == Failed || c.result == NotUnpacked) {
            expectImportError();
        } else if (c.result == Imported) {
            expectImported(c.counts[0], c.counts[1], c.counts[2]);
        }
        const int before = count("Assessments");
        run();
        EXPECT_EQ(content(u"Mine"_s), mine);
        EXPECT_EQ(visible().contains(name), c.result == Imported);
        EXPECT_EQ(count("Assessments"), before + (tried ? 1 : 0));
        EXPECT_EQ(in("Import") == "", c.result != Failed);
        EXPECT_EQ(reason.isEmpty(), c.result != Failed && c.result != NotUnpacked);
        if (c.result == Imported && c.counts[2] > 0) {
            EXPECT_TRUE(content(name).last().contains(QString::fromUtf8(c.places)));
        }
    }
}

TEST_F(Import, TwoQuestionsWithOnePictureGetTheirOwnBytes)
{
    writeFile(package(),
              makeZip(soundPackage({{"questions.txt", "3,7,\"A\",70\r\n3,7,\"B\",70\r\n"}})));
    writeFile(library.picturePath(2), "an orphan");
    runSound(true);
    writeFile(library.picturePath(1), "changed");
    EXPECT_EQ(readFile(library.picturePath(2)), "picture 3");
    EXPECT_EQ(in("Files"), "1.jpg 2.jpg");

    // A small package whose pictures fill the disk takes all of them away again.
    library.sql(u"UPDATE Assessments SET Available = 0"_s);
    writeFile(package(),
              makeZip({{.name = "3.jpg", .data = QByteArray(140 << 20, 0), .deflated = true},
                       {.name = "topics.txt"},
                       {.name = "subtopics.txt"},
                       {.name = "questions.txt", .data = "3,7,\"A\",70\r\n3,7,\"B\",70\r\n"},
                       {.name = "AssessmentInfo.txt", .data = "\"P\"\r\n"}}));
    runSound(false);
    EXPECT_EQ(in("Files"), "1.jpg 2.jpg");
}

TEST_F(Import, WorkFolderIsOneRunsOwnAndKeepsWhatIsNotOfAPackage)
{
    const QString folder = library.folder() + u"/Import"_s;
    const auto cancel = [this] { run(std::nullopt); };
    writeFile(package(u"1.jpg"_s), "a photo");
#ifndef Q_OS_WIN // It makes shortcuts there, which are no folders.
    QFile::link(packages.path(), folder);
#endif
    cancel();
    EXPECT_EQ(readFile(package(u"1.jpg"_s)), "a photo");

    for (const char* name :
         {"c.zip", "notes.txt", "0012.jpg", "1.jpeg", "9.jpg", "TOPICS.TXT", "9.jpg.part"}) {
        writeFile(folder + u'/' + QLatin1String(name), "x");
    }
    const std::string kept = "0012.jpg 1.jpeg c.zip notes.txt";
    cancel();
    EXPECT_EQ(in("Import"), kept);
    {
        const WorkFolder another(library.folder(), u"Import"_s);
        expectImportError();
        run();
        EXPECT_TRUE(reason.contains(u"Another program"_s));
    }
    writeFile(package(), makeZip(soundPackage({{"notes.txt", "theirs"}})));
    runSound(true);
    EXPECT_EQ(in("Import"), kept);
    EXPECT_EQ(readFile(folder + u"/notes.txt"_s), "x");
}

TEST_F(Import, DatabaseFailuresSoftDeleteOrLeaveNothing)
{
    writeFile(package(), "not a zip");
    expectImportError();
    run();
    writeFile(package(), makeZip(soundPackage()));
    struct Case
    {
        const char* table;
        const char* condition;
        const char* action;
        /// Rows there are afterwards, with those of the cases before.
        int assessments, questions;
    };
    // A full disk rolls back, so that nothing of the transaction is left.
    for (const Case& c :
         {Case{"Assessments", "1", "ABORT", 0, 0}, Case{"Topics", "1", "ROLLBACK", 0, 0},
          Case{"SubTopics", "1", "ABORT", 1, 0},
          Case{"Questions", "NEW.Answer = 'B'", "ROLLBACK", 1, 0},
          Case{"Questions", "NEW.Answer = 'B'", "ABORT", 2, 1}}) {
        SCOPED_TRACE(std::string(c.table) + c.action);
        library.sql(u"CREATE TRIGGER broken BEFORE INSERT ON %1 WHEN %2 BEGIN "
                    "SELECT RAISE(%3, 'disk'); END"_s.arg(QLatin1String(c.table),
                                                          QLatin1String(c.condition),
                                                          QLatin1String(c.action)));
        runSound(false);
        EXPECT_EQ(visible(), QString());
        EXPECT_EQ(count("Assessments"), c.assessments);
        EXPECT_EQ(count("Questions"), c.questions);
        // Pictures placed by then stay or go with their rows; the work folder has them still.
        EXPECT_EQ(in("Files"), c.questions > 0 ? "1.jpg" : "");
        EXPECT_EQ(in("Import"),
                  "3.jpg 4.jpg AssessmentInfo.txt questions.txt subtopics.txt topics.txt");
        library.sql(u"DROP TRIGGER broken"_s);
    }
    VARNHOLT_SKIP_ON_WINDOWS("the disk cannot be made to look full");
    writeFile(package(), makeZip(soundPackage({{"topics.txt", records(20'000)}})));
    {
        const FileSizeLimit fullDisk(300'000);
        runSound(false);
    }
    EXPECT_EQ(library.value(u"PRAGMA integrity_check"_s), u"ok"_s);
    EXPECT_EQ(visible(), QString());
    writeFile(package(), makeZip(soundPackage()));
    runSound(true);
    EXPECT_EQ(visible(), u"P"_s);
}

TEST_F(Import, PackagesOfOtherProgramsAreRead)
{
    const QTemporaryDir folder;
    for (const RawMember& member : soundPackage()) {
        writeFile(folder.filePath(QString::fromLatin1(member.name)), member.data);
    }
    QDir(folder.path()).mkdir(u"a folder"_s);
    int made = 0;
    // Stored, deflated, with data descriptors, with folders and extra fields.
    for (const char* command :
         {"zip -qr0 %1 .", "zip -qr9X -fd %1 .", "zip -qr -fz %1 .", "bsdtar -a -cf %1 *",
          "bsdtar --format zip --options zip:compression=store -cf %1 *", "7zz a -tzip -bd %1 .",
          "7zz a -tzip -mx0 -bd %1 .", "python3 -m zipfile -c %1 *"}) {
        SCOPED_TRACE(command);
        QFile::remove(package());
        if (!runCommand(QString::fromLatin1(command).arg(package()), folder.path())) {
            continue;
        }
        expectNameQuestion(u"P"_s, u"P%1"_s.arg(++made));
        expectImported(1, 1, 2);
        run();
    }
    EXPECT_EQ(count("Questions"), 2 * made);
}

} // namespace
} // namespace varnholt
