#include "exchange/archive_reader.h"
#include "exchange/exchange_world.h"
#include "exchange/frmExport.h"
#include "exchange/package_export.h"
#include "exchange/package_fields.h"
#include "store/catalogue.h"
#include "support/gui.h"

#include <QLabel>

namespace varnholt {
namespace {

using namespace test;

class Export : public testing::Test, protected ExchangeWorld
{
protected:
    Export()
    {
        assessment = library.addAssessment(u"Algebra/1"_s);
        const auto topic = library.addTopic(assessment, u"Adding, subtracting"_s);
        const auto sub = library.addSubTopic(assessment, topic, u"Fractions"_s);
        first = library.addQuestion(assessment, topic, sub, u"½"_s);
        second = library.addQuestion(assessment, topic, 999, u"b"_s);
        library.sql(u"UPDATE Questions SET Answer = 'a' || char(13,10) || 'b' "
                    "WHERE SOLIndex = 2"_s);
        // As the authoring window of another system may have left it.
        inUpperCase = library.picturePath(first).chopped(3) + u"JPG"_s;
        QFile::rename(library.picturePath(first), inUpperCase);
        state.CurrentAssessmentNum = assessment;
        EXPECT_EQ(LoadAssessments(state, connection), LoadFailures());
        LoadCurrentAssessment(state, connection);
    }

    [[nodiscard]] QString work(const char* file = "") const
    {
        return library.folder() + u"/Export/"_s + QLatin1String(file);
    }

    /// True when the window stays open.
    bool run()
    {
        frmExport form(services, state, opened);
        form.show();
        form.cmdExport_Click();
        EXPECT_FALSE(control<QLabel>(&form, "lblBack")->isVisible());
        reason = control<QLabel>(&form, "lblReason")->text();
        return form.isVisible();
    }

    void expectSuccess(const QString& path)
    {
        files.answers.emplace_back(path);
        expect("Export Complete", "Export was successful.");
    }

    /// A member of the package, byte for byte; the others' names are noted.
    QString contents(const char* member)
    {
        const QTemporaryDir out;
        comment = UnpackArchive(package(), out.path()).comment;
        members = listing(out.path());
        return QString::fromLatin1(readFile(out.filePath(QLatin1String(member))));
    }

    std::int32_t assessment = 0;
    std::int32_t first = 0;
    std::int32_t second = 0;
    QString inUpperCase;
    QString comment;
    QString reason;
    std::string members;
};

TEST_F(Export, WritesThePackageAndCleansUp)
{
    QDir(library.folder()).mkdir(u"Export"_s);
    writeFile(work("77.jpg"), "left by an aborted run");
    const QByteArray picture = readFile(inUpperCase);
    expectSuccess(package());
    messages.beforeAnswer = [this] {
        EXPECT_EQ(listing(work()), u"%1.jpg %2.jpg AssessmentInfo.txt questions.txt "
                                   "subtopics.txt topics.txt"_s.arg(first)
                                       .arg(second)
                                       .toStdString());
    };
    EXPECT_TRUE(run());

    EXPECT_EQ(files.calls.at(0), u"save Zip Files (*.zip)|Algebra-1"_s);
    EXPECT_EQ(listing(work()), "");
    EXPECT_EQ(contents("topics.txt"), u"1,\"Adding, subtracting\"\r\n"_s);
    EXPECT_EQ(contents("subtopics.txt"), u"1,\"Fractions\",1\r\n"_s);
    EXPECT_EQ(contents("AssessmentInfo.txt"), u"\"Algebra/1\"\r\n"_s);
    EXPECT_EQ(contents("questions.txt").toLatin1(),
              QByteArray("1,1,\"\xbd\",1\r\n2,1,\"a\r\nb\",999\r\n"));
    EXPECT_EQ(contents("1.jpg").toLatin1(), picture);
    EXPECT_EQ(comment, QString());
    EXPECT_EQ(readFile(inUpperCase), picture);
}

TEST_F(Export, TextsBeyondTheCodePageMakeTheWholePackageUtf8)
{
    library.sql(u"UPDATE SubTopics SET SubTopic = 'π ≤ 漢字'"_s);
    expectSuccess(package());
    run();
    EXPECT_EQ(contents("subtopics.txt").toLatin1(), "\xef\xbb\xbf"
                                                    "1,\"π ≤ 漢字\",1\r\n");
    EXPECT_EQ(contents("questions.txt").toLatin1().left(12), "\xef\xbb\xbf"
                                                             "1,1,\"½\",");
    EXPECT_EQ(comment, utf8Comment);
}

TEST_F(Export, WhatNobodyCanImportIsToldBeforehand)
{
    EXPECT_TRUE(PackageProblems(state).isEmpty());
    const auto expectProblem = [this](const char* words) {
        const QStringList problems = PackageProblems(state);
        ASSERT_EQ(problems.size(), 1) << words;
        EXPECT_TRUE(problems.first().contains(QLatin1String(words)));
    };
    QString& answer = state.QuestionList(2).Answer;
    for (const auto& [text, words] : std::initializer_list<std::pair<QString, const char*>>{
             {u"5\""_s, "double quote"},
             {u"it's"_s, "such as: it's"},
             {QString(longestField / 2 + 1, u'π'), "1 MiB"}}) {
        answer = text;
        expectProblem(words);
    }
    answer = QString(longestField / 2, u'π');
    EXPECT_TRUE(PackageProblems(state).isEmpty());
    state.AssessmentList(1).AssessmentName.clear();
    expectProblem("no name");
    state.AssessmentList(1).AssessmentName = u"A"_s;
    while (state.TopicList.upperBound() < 32'767) {
        state.TopicList.append({});
    }
    EXPECT_TRUE(PackageProblems(state).isEmpty());
    state.TopicList.append({});
    expectProblem("32,767");
}

TEST_F(Export, EmptyAssessmentIsFourTextFiles)
{
    library.sql(u"UPDATE Assessments SET Available = 0"_s);
    library.addAssessment(u"Empty"_s);
    // Saved into the work folder, the package is what the user wanted, not a leftover.
    expectSuccess(work("mine"));
    run();
    EXPECT_EQ(listing(work()), "mine");
    QFile::rename(work("mine"), package());
    EXPECT_EQ(contents("questions.txt"), QString());
    EXPECT_EQ(members, "AssessmentInfo.txt questions.txt subtopics.txt topics.txt");
}

TEST_F(Export, FailuresEndAsDescribed)
{
    VARNHOLT_SKIP_ON_WINDOWS("it has other words, and folders have no second names");
    // Cancelled: silent, and the work folder stays.
    files.answers.emplace_back(std::nullopt);
    EXPECT_TRUE(run());
    EXPECT_NE(listing(work()), "");

    // The packing has told; no success, and the work folder is emptied.
    files.answers.emplace_back(u"/nowhere/p.zip"_s);
    expect("Varnholt", "Error 5 (No such file or directory) in procedure AddFilesToZip of Modulo "
                       "di classe clsZip");
    run();
    EXPECT_EQ(listing(work()), "");

    EXPECT_TRUE(reason.contains(u"No such file or directory"_s));

    // Nothing of the library is overwritten, whichever way leads there.
    const QString link = packages.filePath(u"link"_s);
    QFile::link(library.folder(), link);
    const std::string sound = listing(library.folder() + u"/Files"_s);
    for (const char* target : {"/Varnholt.mdb", "/VARNHOLT.mdb-wal", "/Files/2.jpg", "/Files/p.zip",
                               "/Export/topics.txt"}) {
        files.answers.emplace_back(link + QLatin1String(target));
        expect("Export Error", "There was an error creating this export file.");
        run();
        EXPECT_TRUE(reason.contains(u"harm"_s)) << target;
    }
    EXPECT_EQ(listing(library.folder() + u"/Files"_s), sound);

    // A picture is missing: no dialog any more.
    QFile::remove(library.picturePath(second));
    files.calls.clear();
    expectMissingPicture();
    EXPECT_FALSE(run());
    EXPECT_TRUE(files.calls.empty());
    EXPECT_TRUE(reason.contains(library.picturePath(second)));
    EXPECT_EQ(listing(work()), "1.jpg AssessmentInfo.txt questions.txt subtopics.txt topics.txt");

    // No place for the text files.
    QDir(work()).removeRecursively();
    writeFile(work().chopped(1), "a file in the way");
    expect("Export Error", "There was an error creating this export file.");
    EXPECT_TRUE(run());

    // The list of assessments.
    connection.close();
    expect("Varnholt", "The question library is not open.");
    expect("Database Error", "There was an error loading the assessments.");
    const frmExport form(services, state, opened);
    EXPECT_TRUE(state.AssessmentList.isEmpty());
}

} // namespace
} // namespace varnholt
