#include "exchange/exchange_world.h"
#include "exchange/package_export.h"
#include "exchange/package_import.h"
#include "exchange/zip_maker.h"
#include "store/catalogue.h"

#include <QStandardPaths>

#include <atomic>
#include <dlfcn.h>

namespace {

std::atomic<int> syncs;

int counted(const char* name, int descriptor)
{
    ++syncs;
    return reinterpret_cast<int (*)(int)>(dlsym(RTLD_NEXT, name))(descriptor);
}

} // namespace

// Every request to put something on the disk, the database's own among them, passes here.
extern "C" int fsync(int descriptor)
{
    return counted("fsync", descriptor);
}
extern "C" int fdatasync(int descriptor)
{
    return counted("fdatasync", descriptor);
}

namespace varnholt {
namespace {

using namespace test;

class Import : public testing::Test, protected ExchangeWorld
{
protected:
    void run()
    {
        files.answers.emplace_back(package());
        PackageImport(services, connection).run(view);
        messages.verify();
    }

    void exportFrom(ExchangeWorld& other, std::int32_t assessment, const QString& name)
    {
        other.state.CurrentAssessmentNum = assessment;
        LoadCurrentAssessment(other.state, other.connection, other.messages);
        other.files.answers.emplace_back(package());
        other.messages.expectInform(QStringLiteral("Export Complete"),
                                    QStringLiteral("Export was successful."));
        PackageExport(other.services, other.state, name).run(other.view);
    }

    [[nodiscard]] std::string work() const
    {
        return listing(library.folder() + QStringLiteral("/Import"));
    }
    [[nodiscard]] int count(const char* table) const
    {
        return library.value(QStringLiteral("SELECT count(*) FROM %1").arg(QLatin1String(table)))
            .toInt();
    }
    [[nodiscard]] QString visible() const
    {
        return library.value(
            QStringLiteral("SELECT group_concat(AssessmentName) FROM Assessments WHERE Available"));
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

TEST_F(Import, RoundTripOfFiveThousandQuestions)
{
    ExchangeWorld source;
    const QString name = QStringLiteral("Algebra – π");
    const auto assessment = source.library.addGenerated(name, 10, 10, 50, true);
    source.library.sql(QStringLiteral(
        "UPDATE Topics SET Topic = 'Commas, and 漢字' WHERE TopicID = 3;"
        "UPDATE Questions SET Answer = 'two' || char(13,10) || 'lines' WHERE SOLIndex = 5;"
        "UPDATE Questions SET TopicID = 999 WHERE SOLIndex = 6;"
        "UPDATE Questions SET Available = 0 WHERE SOLIndex = 7;"));
    exportFrom(source, assessment, name);
    library.addGenerated(QStringLiteral("Mine"), 2, 2, 2, true);

    expectNameQuestion(name, name);
    expectImported(10, 100, 4999);
    const int before = syncs;
    run();
    EXPECT_LE(syncs - before, 10);
    EXPECT_EQ(content(name).join(u'\n').toStdString(),
              source.content(name).join(u'\n').toStdString());
    EXPECT_EQ(visible(), QStringLiteral("Mine,") + name);
    EXPECT_EQ(library.value(QStringLiteral("SELECT min(SOLIndex) FROM Questions WHERE "
                                           "AssessmentNum = 2")),
              QStringLiteral("9"));
    EXPECT_EQ(work(), "");
    EXPECT_TRUE(view.calls.contains(QStringLiteral("Importing: ")));
}

TEST_F(Import, NameIsAskedUntilItIsFree)
{
    library.addAssessment(QStringLiteral("P"));
    library.addAssessment(QStringLiteral("Gone"));
    library.sql(QStringLiteral("UPDATE Assessments SET Available = 0 WHERE AssessmentNum = 2"));
    writeFile(package(), makeZip(soundPackage()));
    const auto askAgain = [this](const QString& rejected, const QString& answer) {
        messages.expectInput(QStringLiteral("Assessment Name"),
                             QStringLiteral("That assessment name already exists.  Please enter "
                                            "another assessment name."),
                             answer, rejected);
    };
    expectNameQuestion(QStringLiteral("P"), QStringLiteral(" P "));
    askAgain(QStringLiteral("P"), QStringLiteral("P"));
    askAgain(QStringLiteral("P"), QStringLiteral("Gone "));
    expectImported(1, 1, 2);
    run();
    EXPECT_EQ(visible(), QStringLiteral("P,Gone"));

    // Giving up at either question leaves nothing.
    expectNameQuestion(QStringLiteral("P"), QStringLiteral("P"));
    askAgain(QStringLiteral("P"), QString());
    run();
    expectNameQuestion(QStringLiteral("P"), QStringLiteral("  "));
    run();
    EXPECT_EQ(work(), "");
    files.answers.emplace_back(std::nullopt);
    PackageImport(services, connection).run(view);
    EXPECT_EQ(count("Assessments"), 3);

    // A name that no statement can hold.
    expectNameQuestion(QStringLiteral("P"), QStringLiteral("O'Brien"));
    expectImportError();
    run();
    EXPECT_EQ(count("Assessments"), 3);
    EXPECT_NE(work(), "");
}

struct Package
{
    const char* name;
    std::map<QByteArray, QByteArray> changes;
    /// Topics, subtopics and questions imported; or one of the failures.
    enum Result
    {
        Imported,
        NotAPackage,
        Quiet,
        Failed
    } result;
    std::array<int, 3> counts{1, 1, 2};
    /// Of the last question: topic and subtopic.
    const char* references = "T|S";
};

class Packages : public Import, public testing::WithParamInterface<Package>
{};

TEST_P(Packages, AreImportedOrRefusedWhole)
{
    const Package& package_ = GetParam();
    library.addGenerated(QStringLiteral("Mine"), 1, 1, 1, true);
    const QStringList mine = content(QStringLiteral("Mine"));
    writeFile(package(), makeZip(soundPackage(package_.changes)));
    switch (package_.result) {
    case Package::NotAPackage:
        messages.expectInform(QStringLiteral("Import Error"),
                              QStringLiteral("This file does not appear to be a compatiable "
                                             "export file.  Import will be aborted."));
        break;
    case Package::Quiet:
        break;
    case Package::Failed:
        expectNameQuestion(QStringLiteral("P"), QStringLiteral("P"));
        expectImportError();
        break;
    case Package::Imported:
        expectNameQuestion(QStringLiteral("P"), QStringLiteral("P"));
        expectImported(package_.counts[0], package_.counts[1], package_.counts[2]);
    }
    run();

    EXPECT_EQ(content(QStringLiteral("Mine")), mine);
    const bool imported = package_.result == Package::Imported;
    EXPECT_EQ(visible(), imported ? QStringLiteral("Mine,P") : QStringLiteral("Mine"));
    const bool tried = imported || package_.result == Package::Failed;
    EXPECT_EQ(count("Assessments"), tried ? 2 : 1);
    EXPECT_EQ(work() == "", package_.result != Package::Failed);
    if (imported && package_.counts[2] > 0) {
        EXPECT_EQ(content(QStringLiteral("P")).last().section(u'|', 2, 3),
                  QLatin1String(package_.references));
    }
}

QByteArray records(int number)
{
    QByteArray lines;
    for (int i = 1; i <= number; ++i) {
        lines += QByteArray::number(i) + ",\"T\"\r\n";
    }
    return lines;
}

INSTANTIATE_TEST_SUITE_P(
    All, Packages,
    testing::Values(
        Package{"Sound", {}, Package::Imported},
        Package{"NoInfo", {{"AssessmentInfo.txt", "none"}}, Package::NotAPackage},
        Package{"EmptyInfo", {{"AssessmentInfo.txt", ""}}, Package::NotAPackage},
        Package{"OpenInfo", {{"AssessmentInfo.txt", "\"P"}}, Package::NotAPackage},
        Package{"EmptyName", {{"AssessmentInfo.txt", "\"\"\r\n"}}, Package::Quiet},
        Package{"NoTopics", {{"topics.txt", "none"}}, Package::Failed},
        Package{"NoQuestions", {{"questions.txt", "none"}}, Package::Failed},
        Package{"EmptyQuestions", {{"questions.txt", ""}}, Package::Imported, {1, 1, 0}},
        Package{"MalformedNumber", {{"subtopics.txt", "7,\"S\",x\r\n"}}, Package::Failed},
        Package{"Apostrophe", {{"questions.txt", "3,7,\"it's\",70\r\n"}}, Package::Failed},
        Package{"MissingPicture", {{"4.jpg", "none"}}, Package::Failed},
        Package{"EmptyPicture", {{"4.jpg", ""}}, Package::Imported},
        Package{"NegativeKeys",
                {{"questions.txt", "-3,-7,\"A\",-70\r\n"},
                 {"-3.jpg", "x"},
                 {"topics.txt", "-7,\"T\"\r\n"},
                 {"subtopics.txt", "-7,\"S\",-70\r\n"}},
                Package::Imported,
                {1, 1, 1}},
        Package{"UnknownReferences",
                {{"questions.txt", "3,8,\"A\",80\r\n"}},
                Package::Imported,
                {1, 1, 1},
                "|"},
        Package{"LastOfTwinsWins",
                {{"topics.txt", "7,\"T\"\r\n7,\"U\"\r\n"},
                 {"subtopics.txt", "7,\"S\",70\r\n7,\"V\",70\r\n"}},
                Package::Imported,
                {2, 2, 2},
                "U|V"},
        Package{"MostRecords",
                {{"topics.txt", records(32767)}, {"subtopics.txt", ""}, {"questions.txt", ""}},
                Package::Imported,
                {32767, 0, 0}},
        Package{"OneRecordTooMany", {{"topics.txt", records(32768)}}, Package::Failed}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST_F(Import, TwoQuestionsWithOnePictureGetTheirOwnBytes)
{
    writeFile(package(),
              makeZip(soundPackage({{"questions.txt", "3,7,\"A\",70\r\n3,7,\"B\",70\r\n"}})));
    writeFile(library.picturePath(2), "an orphan");
    expectNameQuestion(QStringLiteral("P"), QStringLiteral("P"));
    expectImported(1, 1, 2);
    run();
    writeFile(library.picturePath(1), "changed");
    EXPECT_EQ(readFile(library.picturePath(2)), "picture 3");
    EXPECT_EQ(listing(library.folder() + QStringLiteral("/Files")), "1.jpg 2.jpg");
}

TEST_F(Import, WhatIsNoArchiveLeavesEverything)
{
    writeFile(package(), "not a zip");
    expectImportError();
    run();
    EXPECT_EQ(count("Assessments"), 0);
    EXPECT_EQ(view.calls.last(), QStringLiteral("hide"));
}

TEST_F(Import, DatabaseFailuresSoftDeleteOrLeaveNothing)
{
    writeFile(package(), makeZip(soundPackage()));
    const auto failingAt = [&](const char* table, const char* action) {
        library.sql(QStringLiteral("DROP TRIGGER IF EXISTS broken; CREATE TRIGGER broken BEFORE "
                                   "INSERT ON %1 BEGIN SELECT RAISE(%2, 'disk'); END")
                        .arg(QLatin1String(table), QLatin1String(action)));
        expectNameQuestion(QStringLiteral("P"), QStringLiteral("P"));
        expectImportError();
        run();
        EXPECT_EQ(visible(), QString());
    };
    failingAt("Questions", "ABORT");
    EXPECT_EQ(count("Assessments"), 1);
    EXPECT_EQ(count("SubTopics"), 1);
    // A full disk takes the whole transaction away, and with it what was placed.
    failingAt("Topics", "ROLLBACK");
    EXPECT_EQ(count("Assessments"), 1);
    failingAt("Assessments", "ABORT");
    EXPECT_EQ(count("Assessments"), 1);

    // The pictures placed by then go with their rows, and the work folder has them still.
    for (const char* action : {"ABORT", "ROLLBACK"}) {
        library.sql(QStringLiteral("DROP TRIGGER broken; CREATE TRIGGER broken BEFORE INSERT ON "
                                   "Questions WHEN NEW.Answer = 'B' BEGIN SELECT RAISE(%1, "
                                   "'disk'); END")
                        .arg(QLatin1String(action)));
        expectNameQuestion(QStringLiteral("P"), QStringLiteral("P"));
        expectImportError();
        run();
        EXPECT_EQ(work(), "3.jpg 4.jpg AssessmentInfo.txt questions.txt subtopics.txt topics.txt");
        EXPECT_EQ(count("Questions"), 1);
        EXPECT_EQ(listing(library.folder() + QStringLiteral("/Files")), "1.jpg");
    }

    // The next one works.
    library.sql(QStringLiteral("DROP TRIGGER broken"));
    expectNameQuestion(QStringLiteral("P"), QStringLiteral("P"));
    expectImported(1, 1, 2);
    run();
    EXPECT_EQ(visible(), QStringLiteral("P"));
}

TEST_F(Import, FullDiskLeavesTheLibraryAsItWas)
{
    std::vector<RawMember> members = soundPackage({{"topics.txt", records(20'000)}});
    writeFile(package(), makeZip(members));
    expectNameQuestion(QStringLiteral("P"), QStringLiteral("P"));
    expectImportError();
    {
        const FileSizeLimit fullDisk(300'000);
        run();
    }
    EXPECT_EQ(visible(), QString());
    EXPECT_EQ(library.value(QStringLiteral("PRAGMA integrity_check")), QStringLiteral("ok"));
}

TEST_F(Import, PackagesOfOtherProgramsAreRead)
{
    const QTemporaryDir folder;
    for (const RawMember& member : soundPackage()) {
        writeFile(folder.filePath(QString::fromLatin1(member.name)), member.data);
    }
    QDir(folder.path()).mkdir(QStringLiteral("a folder"));
    // Stored, deflated, with data descriptors, with folders and extra fields.
    const std::vector<std::pair<const char*, const char*>> commands{
        {"zip", "-q -r -0 %1 ."},
        {"zip", "-q -r -9 -X -fd %1 ."},
        {"zip", "-q -r -fz %1 ."},
        {"bsdtar", "--format zip -cf %1 topics.txt subtopics.txt questions.txt "
                   "AssessmentInfo.txt 3.jpg 4.jpg"},
        {"bsdtar", "--format zip -cf - --options zip:compression=store --strip-components 0 "
                   "topics.txt subtopics.txt questions.txt AssessmentInfo.txt 3.jpg 4.jpg"},
        {"7z", "a -tzip -bd %1 ."},
        {"7z", "a -tzip -mx0 -bd %1 ."},
        {"python3", "-m zipfile -c %1 topics.txt subtopics.txt questions.txt "
                    "AssessmentInfo.txt 3.jpg 4.jpg"},
        {"jar", "cfM %1 ."}};
    int made = 0;
    for (const auto& [program, arguments] : commands) {
        if (QStandardPaths::findExecutable(QLatin1String(program)).isEmpty()) {
            continue;
        }
        SCOPED_TRACE(std::string(program) + ' ' + arguments);
        QFile::remove(package());
        const QString target = QLatin1String(arguments);
        QProcess process;
        if (!target.contains(QStringLiteral("%1"))) {
            process.setStandardOutputFile(package());
        }
        process.setWorkingDirectory(folder.path());
        process.start(
            QLatin1String(program),
            (target.contains(QStringLiteral("%1")) ? target.arg(package()) : target).split(u' '));
        ASSERT_TRUE(process.waitForFinished());
        ASSERT_EQ(process.exitCode(), 0) << process.readAllStandardError().toStdString();
        const QString name = QStringLiteral("P%1").arg(++made);
        expectNameQuestion(QStringLiteral("P"), name);
        expectImported(1, 1, 2);
        run();
        EXPECT_EQ(content(name).size(), 4);
    }
    EXPECT_GE(made, 3);
}

} // namespace
} // namespace varnholt
