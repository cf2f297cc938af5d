// Kills the program (SIGKILL) at random moments of an export, an import and the saving of
// questions and looks whether the library is sound afterwards (for its other changes see
// test_library_model): VARNHOLT_KILLS times, 20 unless set.

#include "authoring/question_save.h"
#include "exchange/exchange_world.h"
#include "exchange/package_export.h"
#include "exchange/package_import.h"
#include "library/Library.h"
#include "store/catalogue.h"
#include "store/library_file.h"

#include <QElapsedTimer>
#include <QRandomGenerator>

#include <sys/wait.h>
#include <unistd.h>

namespace varnholt {
namespace {

using namespace test;

// Keys of the assessments: one goes out and comes in, the other is worked on.
constexpr std::int32_t packed = 1;
constexpr std::int32_t workedOn = 2;

void showNothing(ExchangeWork, std::int64_t, std::int64_t) {}

bool runExport(Library& library, const ProgramState& state, const QString& archive)
{
    PackageExport assessment(library.programFolder(), state, QStringLiteral("A"), showNothing);
    return assessment.collect() && !assessment.pack(archive);
}

bool runImport(Library& library, const ProgramState&, const QString& archive)
{
    PackageImport import(library, showNothing);
    const Package package = import.read(archive);
    QString name = *package.AssessmentName;
    while (!import.CheckAssessmentName(name)) {
        name += u'+';
    }
    import.apply(package, PlanImport(package, name));
    import.cleanUp();
    return true;
}

bool runAuthoring(Library& library, const ProgramState& state, const QString&)
{
    const SubTopicRecord& place = state.SubTopicList(1);
    for (int i = 0; i < 4; ++i) {
        // Answers tell the filing, so that a question filed by halves shows.
        NewQuestion question{{workedOn, place.TopicID, place.SubtopicNum},
                             QStringLiteral("%1/%2").arg(place.TopicID).arg(place.SubtopicNum)};
        SaveQuestion(library, question, testPicture({1272, 624}, 3));
    }
    return true;
}

/// What writes. True when it succeeded.
struct Operation
{
    const char* name;
    std::int32_t assessment;
    bool (*run)(Library&, const ProgramState&, const QString& archive);
};

constexpr std::array<Operation, 3> operations{{{"export", packed, runExport},
                                               {"import", packed, runImport},
                                               {"authoring", workedOn, runAuthoring}}};

class Kill : public testing::Test, protected ExchangeWorld
{
protected:
    /// In a process of its own, killed after a while unless negative. True when it succeeded.
    [[nodiscard]] bool runApart(const Operation& operation, std::int64_t microseconds)
    {
        const pid_t child = fork();
        if (child == 0) {
            Library afresh(library.folder(), clock);
            afresh.open();
            state.CurrentAssessmentNum = operation.assessment;
            LoadCurrentAssessment(state, afresh.connection());
            _exit(operation.run(afresh, state, package()) ? 0 : 1);
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
        for (const QString& name :
             library.sql(QStringLiteral("SELECT AssessmentName FROM Assessments WHERE Available "
                                        "AND NOT AssessmentNum = 2"))) {
            ASSERT_EQ(content(name), whole) << name.toStdString();
        }
        const QStringList mine = library.sql(
            QStringLiteral("SELECT SOLIndex, Answer = TopicID || '/' || SubTopicNum FROM "
                           "Questions WHERE AssessmentNum = 2 AND Available"));
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
    int killed = 0;
    for (int i = 0; i < (kills > 0 ? kills : 20) && !HasFailure(); ++i) {
        const Operation& operation = operations[std::size_t(i) % operations.size()];
        SCOPED_TRACE(operation.name);
        QElapsedTimer stopwatch;
        stopwatch.start();
        EXPECT_TRUE(runApart(operation, -1)) << "the next operation does not work";
        const qint64 longest = stopwatch.nsecsElapsed() / 1000;
        killed += runApart(operation, QRandomGenerator::global()->bounded(longest)) ? 0 : 1;
        expectSound();
        library.sql(QStringLiteral("UPDATE Assessments SET Available = 0 WHERE AssessmentNum > 2"));
    }
    std::printf("killed in the middle: %d\n", killed);
    EXPECT_GT(killed, 0);
    for (const Operation& operation : operations) {
        EXPECT_TRUE(runApart(operation, -1)) << operation.name;
    }
}

} // namespace
} // namespace varnholt
