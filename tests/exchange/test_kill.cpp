// Kills the program (SIGKILL) at random moments of its writing operations and looks whether
// the library is sound afterwards: VARNHOLT_KILLS times, 20 unless set. VARNHOLT_KILL_SEED
// repeats a run.

#include "exchange/exchange_world.h"
#include "exchange/package_export.h"
#include "exchange/package_import.h"
#include "exchange/zip_maker.h"
#include "store/catalogue.h"

#include <QElapsedTimer>

#include <QRandomGenerator>

#include <random>
#include <sys/wait.h>
#include <unistd.h>

namespace varnholt {
namespace {

using namespace test;

/// Agrees to everything.
class AnyMessages : public MessageBoxes
{
public:
    void inform(const QString& title, const QString&) override { last = title; }
    bool yesNo(const QString&, const QString&) override { return true; }
    QString inputText(const QString&, const QString&, const QString& text) override
    {
        return text + QString::number(QRandomGenerator::global()->generate());
    }

    QString last;
};

/// What an operation is given: services that agree, and a library opened afresh.
struct Killable
{
    explicit Killable(const QString& programFolder, const QString& package)
    {
        services.messageBoxes = &messages;
        services.fileDialogs = &files;
        services.programFolder = programFolder;
        files.answers.emplace_back(package);
        OpenLibraryDatabase(connection, programFolder);
    }

    AnyMessages messages;
    ScriptedFileDialogs files;
    Services services;
    ProgramState state;
    Connection connection;
    FakeView view;
};

/// An operation that writes. New ones are added to `operations`. True when it succeeded.
struct Operation
{
    const char* name;
    bool (*run)(Killable&);
};

bool runImport(Killable& program)
{
    PackageImport(program.services, program.connection).run(program.view);
    return program.messages.last == QStringLiteral("Import Complete");
}

bool runExport(Killable& program)
{
    program.state.CurrentAssessmentNum = 1;
    LoadCurrentAssessment(program.state, program.connection, program.messages);
    PackageExport(program.services, program.state, QStringLiteral("A")).run(program.view);
    return program.messages.last == QStringLiteral("Export Complete");
}

constexpr std::array<Operation, 2> operations{{{"import", runImport}, {"export", runExport}}};
constexpr int questions = 150;

class Kill : public testing::Test, protected ExchangeWorld
{
protected:
    /// In a process of its own, killed after a while unless negative. True when it succeeded.
    [[nodiscard]] bool runApart(const Operation& operation, std::int64_t microseconds)
    {
        const pid_t child = fork();
        if (child == 0) {
            Killable program(library.folder(), package());
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
        Connection opened;
        ASSERT_NO_THROW(OpenLibraryDatabase(opened, library.folder()));
        opened.close();
        EXPECT_EQ(library.value(QStringLiteral("PRAGMA integrity_check")), QStringLiteral("ok"));
        const QStringList names =
            library.sql(QStringLiteral("SELECT AssessmentName FROM Assessments WHERE Available"));
        for (const QString& name : names) {
            ASSERT_EQ(content(name), whole) << name.toStdString();
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
    library.addGenerated(QStringLiteral("A"), 3, 5, questions / 15, true);
    whole = content(QStringLiteral("A"));
    connection.close();
    ASSERT_TRUE(runApart(operations[1], -1));
    packageSize = readFile(package()).size();

    const int kills = qEnvironmentVariableIntValue("VARNHOLT_KILLS");
    bool given = false;
    const int seed = qEnvironmentVariableIntValue("VARNHOLT_KILL_SEED", &given);
    std::mt19937 dice(given ? static_cast<unsigned>(seed) : std::random_device{}());
    int killed = 0;
    for (int i = 0; i < (kills > 0 ? kills : 20) && !HasFailure(); ++i) {
        const Operation& operation = operations[std::size_t(i) % operations.size()];
        SCOPED_TRACE(operation.name);
        QElapsedTimer stopwatch;
        stopwatch.start();
        EXPECT_TRUE(runApart(operation, -1)) << "the next operation does not work";
        const std::int64_t longest = stopwatch.nsecsElapsed() / 1000;
        killed += runApart(operation, std::int64_t(dice() % unsigned(longest))) ? 0 : 1;
        expectSound();
        library.sql(QStringLiteral("UPDATE Assessments SET Available = 0 WHERE AssessmentNum > 1"));
    }
    RecordProperty("killed", killed);
    std::printf("killed %d times in the middle\n", killed);
    EXPECT_GT(killed, 0);
    EXPECT_TRUE(runApart(operations[0], -1));
}

} // namespace
} // namespace varnholt
