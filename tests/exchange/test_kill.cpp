// Kills the program (SIGKILL) at random moments of an export, an import and the saving of
// questions and looks whether the library is sound afterwards (for its other changes see
// test_library_model): VARNHOLT_KILLS times, 20 unless set. VARNHOLT_KILL_SEED
// repeats a run.

#include "authoring/question_save.h"
#include "exchange/exchange_world.h"
#include "exchange/package_export.h"
#include "exchange/package_import.h"
#include "library/Library.h"
#include "store/catalogue.h"
#include "store/library_file.h"

#include <QElapsedTimer>
#include <QRandomGenerator>

#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace varnholt {
namespace {

using namespace test;

// Keys of the assessments: one goes out and comes in, the other is worked on.
constexpr std::int32_t packed = 1;
constexpr std::int32_t workedOn = 2;

/// Agrees to everything.
class AnyMessages : public MessageBoxes
{
public:
    void inform(const QString&, const QString&) override {}
    bool yesNo(const QString&, const QString&, Answer) override { return true; }
    QString inputText(const QString&, const QString&, const QString& text) override
    {
        return text + QString::number(QRandomGenerator::global()->generate());
    }
};

/// What an operation is given: services that agree, and a library opened afresh.
struct Killable
{
    Killable(const QString& programFolder, const QString& thePackage, std::int32_t assessment)
        : package(thePackage)
        , library(programFolder, clock)
    {
        services.messageBoxes = &messages;
        services.programFolder = programFolder;
        library.open();
        state.CurrentAssessmentNum = assessment;
        LoadCurrentAssessment(state, connection);
    }

    AnyMessages messages;
    QString package;
    Services services;
    ProgramState state;
    FakeClock clock;
    Library library;
    Connection& connection = library.connection();
};

/// An operation that writes. True when it succeeded.
struct Operation
{
    const char* name;
    std::int32_t assessment;
    bool (*run)(Killable&);
    int killed = 0;
};

bool runImport(Killable& program)
{
    PackageImport import(program.library, [](ExchangeWork, std::int64_t, std::int64_t) {});
    const Package package = import.read(program.package);
    QString name = *package.AssessmentName;
    do {
        name = program.messages.inputText({}, {}, name);
    } while (!import.CheckAssessmentName(name));
    import.apply(package, PlanImport(package, name));
    import.cleanUp();
    return true;
}

bool runExport(Killable& program)
{
    PackageExport assessment(program.services.programFolder, program.state, QStringLiteral("A"),
                             [](ExchangeWork, std::int64_t, std::int64_t) {});
    return assessment.collect() && !assessment.pack(program.package);
}

/// Answers tell the filing, so that a question filed by halves shows.
QString answerFor(std::int32_t topic, std::int32_t subTopic)
{
    return QStringLiteral("%1/%2").arg(topic).arg(subTopic);
}

bool runAuthoring(Killable& program)
{
    const QImage picture = testPicture({1272, 624}, 3);
    const SubTopicRecord& place = program.state.SubTopicList(1);
    for (int i = 0; i < 4; ++i) {
        NewQuestion question{{workedOn, place.TopicID, place.SubtopicNum},
                             answerFor(place.TopicID, place.SubtopicNum)};
        SaveQuestion(program.library, question, picture);
    }
    return true;
}

class Kill : public testing::Test, protected ExchangeWorld
{
protected:
    /// In a process of its own, killed after a while unless negative. True when it succeeded.
    [[nodiscard]] bool runApart(const Operation& operation, std::int64_t microseconds)
    {
        const pid_t child = fork();
        if (child == 0) {
            Killable program(library.folder(), package(), operation.assessment);
            _exit(operation.run(program) ? 0 : 1);
        }
        if (microseconds >= 0) {
            usleep(static_cast<useconds_t>(microseconds));
            kill(child, SIGKILL);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }

    void expectSound()
    {
        Connection again;
        ASSERT_NO_THROW(OpenLibraryDatabase(again, library.folder()));
        again.close();
        EXPECT_EQ(library.value(QStringLiteral("PRAGMA integrity_check")), QStringLiteral("ok"));
        for (const QString& name : library.sql(
                 QStringLiteral("SELECT AssessmentName FROM Assessments WHERE Available AND "
                                "AssessmentName NOT IN ('Mine')"))) {
            ASSERT_EQ(content(name), whole) << name.toStdString();
        }
        const QStringList mine = library.sql(
            QStringLiteral("SELECT SOLIndex, Answer = TopicID || '/' || SubTopicNum FROM "
                           "Questions WHERE AssessmentNum = %1 AND Available")
                .arg(workedOn));
        EXPECT_GE(mine.size(), 2);
        for (const QString& row : mine) {
            EXPECT_TRUE(row.endsWith(QStringLiteral("|1"))) << row.toStdString();
            const QByteArray bytes = readFile(library.picturePath(row.section(u'|', 0, 0).toInt()));
            EXPECT_TRUE(bytes.startsWith("\xff\xd8") && bytes.endsWith("\xff\xd9"))
                << row.toStdString();
        }
        // The package is the old one or the new one.
        const QByteArray bytes = readFile(package());
        EXPECT_TRUE(bytes.endsWith(QByteArray("PK\5\6\0\0\0\0", 8) + bytes.last(14)));
        EXPECT_GE(bytes.size(), packageSize);
    }

    std::array<Operation, 3> operations{{{"export", packed, runExport},
                                         {"import", packed, runImport},
                                         {"authoring", workedOn, runAuthoring}}};
    QStringList whole;
    qsizetype packageSize = 0;
};

TEST_F(Kill, AtAnyMomentLeavesTheLibrarySound)
{
    ASSERT_EQ(library.addGenerated(QStringLiteral("A"), 3, 5, 10, true), packed);
    ASSERT_EQ(library.addGenerated(QStringLiteral("Mine"), 1, 1, 5, true), workedOn);
    library.sql(QStringLiteral("UPDATE Questions SET Answer = TopicID || '/' || SubTopicNum "
                               "WHERE AssessmentNum = 2"));
    whole = content(QStringLiteral("A"));
    connection.close();
    ASSERT_TRUE(runApart(operations[0], -1));
    packageSize = readFile(package()).size();

    const int kills = qEnvironmentVariableIntValue("VARNHOLT_KILLS");
    bool given = false;
    const int seed = qEnvironmentVariableIntValue("VARNHOLT_KILL_SEED", &given);
    std::mt19937 dice(given ? static_cast<unsigned>(seed) : std::random_device{}());
    for (int i = 0; i < (kills > 0 ? kills : 20) && !HasFailure(); ++i) {
        Operation& operation = operations[std::size_t(i) % operations.size()];
        SCOPED_TRACE(operation.name);
        QElapsedTimer stopwatch;
        stopwatch.start();
        EXPECT_TRUE(runApart(operation, -1)) << "the next operation does not work";
        const std::int64_t longest = stopwatch.nsecsElapsed() / 1000;
        operation.killed += runApart(operation, std::int64_t(dice() % unsigned(longest))) ? 0 : 1;
        expectSound();
        library.sql(QStringLiteral("UPDATE Assessments SET Available = 0 WHERE AssessmentNum > 2"));
    }
    int killed = 0;
    for (const Operation& operation : operations) {
        std::printf("killed in the middle of %s: %d\n", operation.name, operation.killed);
        killed += operation.killed;
        EXPECT_TRUE(runApart(operation, -1)) << operation.name;
    }
    EXPECT_GT(killed, 0);
}

} // namespace
} // namespace varnholt
