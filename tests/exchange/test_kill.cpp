// Kills the program (SIGKILL) at random moments of an export and an import and looks whether the
// library and the package are sound afterwards (for its other changes see test_library_model and
// test_many_kill): VARNHOLT_KILLS times, 20 unless set.

#include "exchange/exchange_world.h"
#include "exchange/package_export.h"
#include "exchange/package_import.h"
#include "store/library_file.h"

#include <QElapsedTimer>
#include <QRandomGenerator>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace varnholt {
namespace {

using namespace test;

class Kill : public testing::Test, protected ExchangeWorld
{
protected:
    /// True when it succeeded.
    bool exportOrImport(bool imports)
    {
        const auto showNothing = [](ExchangeWork, std::int64_t, std::int64_t) {};
        Library afresh(library.folder(), clock);
        afresh.open();
        if (imports) {
            PackageImport import(afresh, showNothing);
            const Package read = import.read(package());
            QString name = *read.AssessmentName;
            while (!import.CheckAssessmentName(name)) {
                name += u'+';
            }
            import.apply(read, PlanImport(read, name));
            import.cleanUp();
            return true;
        }
        state.CurrentAssessmentNum = 1;
        LoadCurrentAssessment(state, afresh.connection());
        PackageExport assessment(library.folder(), state, u"A"_s, showNothing);
        return assessment.collect() && !assessment.pack(package());
    }

    /// In a process of its own, killed after a while unless negative. True when it succeeded.
    [[nodiscard]] bool runApart(bool imports, std::int64_t microseconds = -1)
    {
        const pid_t child = fork();
        if (child == 0) {
            _exit(exportOrImport(imports) ? 0 : 1);
        }
        if (microseconds >= 0) {
            usleep(static_cast<useconds_t>(microseconds));
            kill(child, SIGKILL);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return WIFEXITED(status) && WEXITSTATUS(status) == 0;
    }
};

TEST_F(Kill, AtAnyMomentLeavesTheLibrarySound)
{
    library.addGenerated(u"A"_s, 3, 5, 10, true);
    const QStringList whole = content(u"A"_s);
    opened.close();
    ASSERT_TRUE(runApart(false));
    const qsizetype packageSize = readFile(package()).size();

    const int kills = qEnvironmentVariableIntValue("VARNHOLT_KILLS");
    int killed = 0;
    for (int i = 0; i < (kills > 0 ? kills : 20) && !HasFailure(); ++i) {
        const bool imports = i % 2;
        SCOPED_TRACE(imports ? "import" : "export");
        QElapsedTimer stopwatch;
        stopwatch.start();
        EXPECT_TRUE(runApart(imports)) << "the next operation does not work";
        const qint64 longest = stopwatch.nsecsElapsed() / 1000;
        killed += runApart(imports, QRandomGenerator::global()->bounded(longest)) ? 0 : 1;

        EXPECT_NO_THROW(OpenLibraryDatabase(connection, library.folder()));
        connection.close();
        EXPECT_EQ(library.value(u"PRAGMA integrity_check"_s), u"ok"_s);
        for (const QString& name :
             library.sql(u"SELECT AssessmentName FROM Assessments WHERE Available"_s)) {
            EXPECT_EQ(content(name), whole) << name.toStdString();
        }
        // The package is the old one or the new one.
        const QByteArray bytes = readFile(package());
        EXPECT_TRUE(bytes.endsWith(QByteArray("PK\5\6\0\0\0\0", 8) + bytes.last(14)));
        EXPECT_GE(bytes.size(), packageSize);
        library.sql(u"UPDATE Assessments SET Available = 0 WHERE AssessmentNum > 1"_s);
    }
    std::printf("killed in the middle: %d\n", killed);
    EXPECT_GT(killed, 0);
    EXPECT_TRUE(runApart(false) && runApart(true));
}

} // namespace
} // namespace varnholt
