// Kills a program (SIGKILL) at random steps of backing up, restoring and replacing a library:
// VARNHOLT_BACKUP_KILLS times, 40 unless set.

#include "library/backup_world.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <random>

#include <sys/wait.h>
#include <unistd.h>

namespace varnholt {
namespace {

using namespace test;
using State = BackupManifest::State;

TEST(Backups, A_killed_program_leaves_the_library_of_today_or_the_chosen_one)
{
    enum Work
    {
        Make,
        Restore,
        Replace,
        ReplaceTorn // which cannot be opened
    };
    World world;
    const QStringList chosen = world.rows();
    const auto chosenPictures = world.pictures();
    const QString id = world.backUp().backup.id;
    world.change();
    const QStringList today = world.rows();
    const auto todayPictures = world.pictures();
    world.library.close();
    const QString path = world.files.databasePath();
    const QString saved = world.files.folder() + u"-saved"_s;
    const auto system = [](const QString& command) {
        ASSERT_EQ(std::system(command.toUtf8().constData()), 0);
    };
    system(u"cp -a %1 %2"_s.arg(world.files.folder(), saved));

    const auto run = [&](int work, int killAt) {
        const pid_t child = fork();
        if (child == 0) {
            setFileSteps(killAt > 0 ? AtStep::Kill : AtStep::Nothing, killAt);
            int result = 255;
            try {
                if (work >= Replace) {
                    ReplaceLibrary(world.files.folder(), world.store, id, start + 100);
                } else {
                    world.library.open();
                    work == Make ? (void)world.store.make(world.library, start + 100)
                                 : (void)RestoreBackup(world.library, world.store, world.store, id,
                                                       start + 100);
                    world.library.close();
                }
                result = std::min(fileSteps(), 254);
            } catch (const Error& error) {
                std::fprintf(stderr, "%s\n", error.what());
            }
            _exit(result);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return status;
    };
    std::mt19937 random(static_cast<unsigned>(fromEnvironment("VARNHOLT_KILL_SEED", 1)));
    int kills = 0;
    int restored[4] = {};
    int length[4] = {};
    const int runs = fromEnvironment("VARNHOLT_BACKUP_KILLS", 40);
    for (int i = 0; i < runs + 4; ++i) {
        const int work = i % 4;
        // The first ones tell how many steps there are, the others go from the last, where most
        // happens, to the first.
        const int stride = work < Replace ? 5 : 2;
        const int back = stride * (i / 4 - 1) + static_cast<int>(random() % 2);
        const int killAt = i < 4 ? 0 : length[work] - back % length[work];
        SCOPED_TRACE(testing::Message() << "work " << work << " killed at " << killAt);
        if (work == ReplaceTorn) {
            writeFile(path, "torn");
        }
        const QByteArray before = readFile(path);
        const int status = run(work, killAt);
        if (i < 4) {
            ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) < 254) << status;
            length[work] = WEXITSTATUS(status);
        }
        kills += WIFSIGNALED(status) ? 1 : 0;
        const bool torn = readFile(path) == "torn";
        if (!torn) {
            world.library.open();
            FinishRestore(world.library, world.store);
            world.library.close();
        }
        const QStringList rows = torn ? today : world.rows();
        const auto pictures = world.pictures();
        const bool isToday = rows == today;
        restored[work] += isToday ? 0 : 1;
        for (const QString& row : chosen) {
            ASSERT_TRUE(isToday || rows.contains(row));
        }
        ASSERT_EQ(rows.size(), isToday || work != ReplaceTorn ? today.size() : chosen.size());
        ASSERT_TRUE(isToday || work < Replace || readFile(path + u".damaged"_s) == before);
        for (const auto& [name, bytes] : isToday ? todayPictures : chosenPictures) {
            ASSERT_EQ(pictures.at(name), bytes) << name.toStdString();
        }
        ASSERT_TRUE(torn || world.files.value(u"PRAGMA integrity_check"_s) == u"ok"_s);
        for (const BackupInfo& backup : world.store.list()) {
            ASSERT_TRUE(backup.state == State::Whole && world.store.verify(backup.id).whole);
        }
        // The next try works.
        ASSERT_TRUE(!torn || WIFEXITED(run(work, 0)));
        world.library.open();
        ASSERT_GT(world.add(u"next"_s), world.newKey) << "a key is used twice";
        world.library.close();
        system(u"rm -r %1/* && cp -a %2/* %1"_s.arg(world.files.folder(), saved));
    }
    system(u"rm -r %1"_s.arg(saved));
    std::printf("%d kills of %d; restored %d, replaced %d and %d\n", kills, runs, restored[Restore],
                restored[Replace], restored[ReplaceTorn]);
    EXPECT_EQ(kills, runs);
}

} // namespace
} // namespace varnholt
