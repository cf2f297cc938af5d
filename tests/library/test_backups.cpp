#include "library/Library.h"
#include "library/backup/backup_restore.h"
#include "library/backup/retention.h"
#include "library/file_steps.h"
#include "support/fakes.h"
#include "support/file_size_limit.h"
#include "support/test_library.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>

#include <algorithm>
#include <map>
#include <random>
#include <set>

#ifndef _WIN32
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace varnholt {
namespace {

using namespace test;
using State = BackupManifest::State;

constexpr std::int64_t day = 86'400;
constexpr std::int64_t start = 1'700'000'000;

int fromEnvironment(const char* name, int usual)
{
    return qEnvironmentVariableIsSet(name) ? qEnvironmentVariableIntValue(name) : usual;
}

QByteArray bytesOf(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeBytes(const QString& path, const QByteArray& bytes)
{
    QFile::remove(path);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

const QString rowsOfAll = QStringLiteral(
    "SELECT 1,AssessmentNum,AssessmentName,Available,0,0 FROM Assessments UNION ALL "
    "SELECT 2,TopicID,Topic,Available,AssessmentNum,0 FROM Topics UNION ALL "
    "SELECT 3,SubtopicNum,SubTopic,Available,AssessmentNum,TopicID FROM SubTopics UNION ALL "
    "SELECT 4,SOLIndex,Answer,Available,SubTopicNum,TopicID FROM Questions ORDER BY 1,2");

/// A library of 2 x 2 x 2 questions in each of two assessments, and its backups.
struct World
{
    World()
    {
        first = files.addGenerated(QStringLiteral("First"), 2, 2, 2);
        second = files.addGenerated(QStringLiteral("Second"), 2, 2, 2);
        for (int key = 1; key <= 16; ++key) {
            writeBytes(files.picturePath(key), QByteArray("picture ") + QByteArray::number(key));
        }
        writeBytes(files.folder() + QStringLiteral("/Files/notes.txt"), "of somebody else");
        library.open();
    }

    [[nodiscard]] QStringList rows() const { return files.sql(rowsOfAll); }
    [[nodiscard]] std::map<QString, QByteArray> pictures() const
    {
        std::map<QString, QByteArray> result;
        const QDir folder(files.folder() + QStringLiteral("/Files"));
        for (const QString& name : folder.entryList({QStringLiteral("*.jpg")}, QDir::Files)) {
            result[name] = bytesOf(folder.filePath(name));
        }
        return result;
    }
    std::int32_t add(const QString& answer)
    {
        return library.addQuestion({first, 1, 1}, answer, [](const QString& path) {
            writeBytes(path, "new " + path.toUtf8());
        });
    }
    /// One change of every kind.
    void change()
    {
        library.deleteQuestion(1);
        library.editQuestion(2, 1, 1, QStringLiteral("other"));
        library.editQuestion(3, 1, 1, QStringLiteral("A3"));
        newKey = add(QStringLiteral("newer"));
        library.addTopic(first, QStringLiteral("newer topic"));
        library.deleteAssessment(second);
        QFile::remove(files.picturePath(4));
        writeBytes(files.picturePath(5), "drawn over");
    }
    BackupResult backUp(std::int64_t at = start) { return store.make(library, at); }

    TestLibrary files;
    std::int32_t first = 0;
    std::int32_t second = 0;
    std::int32_t newKey = 0;
    FakeClock clock;
    Library library{files.folder(), clock};
    BackupStore store{BackupStore::folderBeside(files.folder())};
};

TEST(Retention, Keeps_what_a_slow_reading_of_the_rule_keeps_over_400_days)
{
    std::mt19937 random(7);
    constexpr std::int64_t offset = 2 * 3600;
    std::vector<std::int64_t> kept;
    for (std::int64_t now = start; now < start + 400 * day; now += 3600) {
        if (random() % 9 == 0) {
            kept.push_back(now - static_cast<std::int64_t>(random() % 600));
        }
        if (now / 3600 % 24 != 20) {
            continue;
        }
        std::set<std::int64_t> expected;
        std::map<QString, std::int64_t> newest[3];
        for (const std::int64_t time : kept) {
            if (time >= now - 2 * day) {
                expected.insert(time);
            }
            const QDate date = QDateTime::fromSecsSinceEpoch(time + offset, Qt::UTC).date();
            int year = 0;
            const int week = date.weekNumber(&year);
            const QString names[] = {
                date.toString(QStringLiteral("yyyyMMdd")),
                QStringLiteral("%1-%2").arg(year).arg(week, 2, 10, QChar(u'0')),
                date.toString(QStringLiteral("yyyyMM"))};
            for (int i = 0; i < 3; ++i) {
                newest[i][names[i]] = std::max(newest[i][names[i]], time);
            }
        }
        for (int i = 0; i < 3; ++i) {
            int left = std::array{12, 10, 9}[static_cast<std::size_t>(i)];
            for (auto it = newest[i].rbegin(); it != newest[i].rend() && left > 0; ++it, --left) {
                expected.insert(it->second);
            }
        }
        std::shuffle(kept.begin(), kept.end(), random);
        const std::vector<bool> stays = KeptBackups(kept, now, offset);
        std::set<std::int64_t> found;
        for (std::size_t i = 0; i < kept.size(); ++i) {
            if (stays[i]) {
                found.insert(kept[i]);
            }
        }
        ASSERT_EQ(found, expected) << now;
        kept.assign(found.begin(), found.end());
    }
    EXPECT_GT(kept.size(), 25U);
    // What a clock gone wrong has dated ahead takes no place of another's.
    std::vector<std::int64_t> ahead{start};
    for (int month = 1; month < 20; ++month) {
        ahead.push_back(start + (100 + 31 * month) * day);
    }
    EXPECT_EQ(KeptBackups(ahead, start + 9 * day, 0), std::vector<bool>(ahead.size(), true));
}

TEST(Backups, Restore_every_row_and_picture_and_hand_out_no_key_again)
{
    for (const bool journalFromTheStart : {false, true}) {
        World world;
        if (journalFromTheStart) {
            world.library.deleteQuestion(8);
        }
        const QStringList rows = world.rows();
        const auto pictures = world.pictures();
        const QString id = world.backUp().backup.id;
        world.change();
        // Of a row that is no more.
        world.files.sql(
            QStringLiteral("UPDATE sqlite_sequence SET seq = seq + 5 WHERE name = 'Questions'"));
        const QString libraryId =
            world.files.value(QStringLiteral("SELECT LibraryID FROM PlusInfo"));

        const BackupPlan plan = PlanBackup(world.library, world.store, id, start + 50);
        // Back: question 1, and the eight of the assessment but for one deleted before.
        EXPECT_EQ(plan, (BackupPlan{9, 1, 1, 1, 1, 2, 1, 1})) << journalFromTheStart;
        LibraryChange told;
        QObject::connect(&world.library, &Library::changed,
                         [&](const LibraryChange& change) { told = change; });
        const BackupRestored restored =
            RestoreBackup(world.library, world.store, world.store, id, start + 50);
        EXPECT_EQ(restored.done, plan);
        EXPECT_TRUE(restored.picturesLost.empty());
        EXPECT_EQ(told.items.size(), 6U);

        QStringList after = world.rows();
        QStringList newer;
        for (const QString& row : after) {
            if (!rows.contains(row)) {
                newer << row;
            }
        }
        EXPECT_EQ(newer.size(), 2);
        for (const QString& row : newer) {
            after.removeAll(row);
            EXPECT_EQ(row.section(u'|', 3, 3), QStringLiteral("0")) << row.toStdString();
        }
        EXPECT_EQ(after, rows);
        auto found = world.pictures();
        EXPECT_EQ(found.erase(QStringLiteral("%1.jpg").arg(world.newKey)), 1U);
        EXPECT_EQ(found, pictures);
        EXPECT_EQ(bytesOf(world.files.picturePath(5) + QStringLiteral(".bak")), "drawn over");

        EXPECT_EQ(world.files.value(QStringLiteral("SELECT LibraryID FROM PlusInfo")), libraryId);
        EXPECT_EQ(world.library.undoStep().has_value(), journalFromTheStart);
        const Trash trash = world.library.trash();
        EXPECT_TRUE(std::any_of(trash.entries().begin(), trash.entries().end(), [&](auto& entry) {
            return entry.item == Item{ItemKind::Question, world.newKey} &&
                   entry.deletedAt == start + 50;
        }));
        EXPECT_EQ(world.add(QStringLiteral("next")), world.newKey + 6);

        // And back to the state before, which was backed up by itself.
        RestoreBackup(world.library, world.store, world.store, restored.backupOfBefore, start + 99);
        EXPECT_EQ(
            world.files.value(QStringLiteral("SELECT Answer FROM Questions WHERE SOLIndex=2")),
            QStringLiteral("other"));
        EXPECT_EQ(bytesOf(world.files.picturePath(5)), "drawn over");
    }
}

TEST(Backups, Read_and_write_only_the_pictures_that_are_new)
{
    for (const AtStep fileSystem : {AtStep::Nothing, AtStep::NoLinks}) {
        World world;
        for (int key = 1; key <= 16; ++key) {
            QFile file(world.files.picturePath(key));
            ASSERT_TRUE(file.open(QIODevice::ReadWrite));
            file.setFileTime(QDateTime::currentDateTime().addDays(-1),
                             QFileDevice::FileModificationTime);
        }
        setFileSteps(fileSystem);
        EXPECT_EQ(world.backUp().picturesWritten, 16U);
        EXPECT_FALSE(world.store.isDue(start + 3601));
        world.add(QStringLiteral("new"));
        world.store.noteChange();
        EXPECT_FALSE(world.store.isDue(start + 3599));
        EXPECT_TRUE(world.store.isDue(start + 3601));
        BackupResult next = world.backUp(start + 7200);
        EXPECT_EQ(next.picturesRead, 1U);
        EXPECT_EQ(next.picturesWritten, 1U);
        EXPECT_FALSE(world.store.isDue(start + 99'999));
        EXPECT_EQ(world.store.list().front().added, 1);
        // Written just before that backup looked: its time may not tell of one more change.
        EXPECT_EQ(world.backUp(start + 7300).picturesRead, 1U);
        // A picture that only old backups have goes with them.
        QFile::remove(world.files.picturePath(7));
        next = world.backUp(start + 800 * day);
        const QDir pool(world.store.folder() + QStringLiteral("/Pictures"));
        for (int month = 1; month < 20; ++month) {
            world.backUp(start + (800 + 31 * month) * day);
        }
        EXPECT_EQ(pool.entryList(QDir::Files).size(), 17);
        world.store.tidy(start + (800 + 31 * 19) * day, 0);
        EXPECT_EQ(pool.entryList(QDir::Files).size(), 16);
        for (const BackupInfo& backup : world.store.list()) {
            EXPECT_TRUE(world.store.verify(backup.id).whole);
        }
        setFileSteps(AtStep::Nothing);
    }
}

TEST(Backups, Find_every_flipped_byte_and_never_offer_what_is_damaged_first)
{
    World world;
    setFileSteps(AtStep::NoLinks);
    const QString good = world.backUp().backup.id;
    setFileSteps(AtStep::Nothing);
    world.add(QStringLiteral("new"));
    const QString id = world.backUp(start + 100).backup.id;
    const QString base = world.store.folder() + u'/' + id;
    std::mt19937 random(3);
    for (int i = 0; i < fromEnvironment("VARNHOLT_FLIPS", 60); ++i) {
        const QString path =
            std::array{base + QStringLiteral(".manifest"), base + QStringLiteral(".mdb"),
                       world.store.folder() + QStringLiteral("/Pictures/") +
                           QDir(world.store.folder() + QStringLiteral("/Pictures"))
                               .entryList(QDir::Files)
                               .at(static_cast<qsizetype>(random() % 17))}[random() % 3];
        const QByteArray bytes = bytesOf(path);
        QByteArray flipped = bytes;
        const auto at = static_cast<qsizetype>(random() % static_cast<unsigned>(bytes.size()));
        flipped[at] = static_cast<char>(flipped[at] ^ (1 << random() % 8));
        writeBytes(path, flipped);
        ASSERT_FALSE(world.store.verify(id).whole) << path.toStdString() << " " << at;
        const std::vector<BackupInfo> list = world.store.list();
        ASSERT_EQ(list.back().state, State::Damaged);
        ASSERT_FALSE(list.back().reason.isEmpty());
        ASSERT_TRUE(list.front().state == State::Damaged || list.front().id == good);
        QFile::remove(path + QStringLiteral(".damaged"));
        writeBytes(path, bytes);
    }
    EXPECT_TRUE(world.store.verify(id).whole);
    // One of a newer program is refused with its version.
    BackupManifest manifest;
    ASSERT_EQ(world.store.read(id, manifest), State::Whole);
    manifest.tables = 99;
    manifest.program = QStringLiteral("7.5");
    writeBytes(base + QStringLiteral(".manifest"), manifest.text());
    EXPECT_EQ(world.store.list().back().state, State::Newer);
    try {
        RestoreBackup(world.library, world.store, world.store, id, start + 200);
        ADD_FAILURE();
    } catch (const Error& refusal) {
        EXPECT_TRUE(refusal.message().contains(QStringLiteral("(7.5)")));
    }
}

TEST(Backups, At_a_second_place_stay_whole_when_it_is_full_or_pulled_out)
{
    VARNHOLT_SKIP_ON_WINDOWS("no disk can be made to look full");
    World world;
    const QString place = world.files.folder() + QStringLiteral("/stick");
    const auto copy = [&] { return world.store.copyNewestTo(place, start, 0); };
    world.backUp();
    EXPECT_EQ(copy(), BackupStore::CopyOutcome::NotThere);
    QDir().mkpath(place);
    EXPECT_EQ(copy(), BackupStore::CopyOutcome::Copied);
    EXPECT_EQ(copy(), BackupStore::CopyOutcome::NothingNew);
    world.change();
    world.backUp(start + 100);
    for (int n = 1; n < 200; ++n) {
        setFileSteps(AtStep::DiskFull, n);
        bool failed = false;
        try {
            copy();
        } catch (const Error& error) {
            failed = true;
            EXPECT_TRUE(error.message().endsWith(u'.') || error.message().contains(u'\n'));
        }
        setFileSteps(AtStep::Nothing);
        BackupStore there = BackupStore::storesAt(place).at(0);
        const std::vector<BackupInfo> list = there.list();
        ASSERT_EQ(list.size(), failed ? 1U : 2U);
        for (const BackupInfo& backup : list) {
            ASSERT_TRUE(there.verify(backup.id).whole);
        }
        if (!failed) {
            break;
        }
        ASSERT_LT(n, 199);
    }
    // The library is restored from there as from its own.
    BackupStore there = BackupStore::storesAt(place).at(0);
    RestoreBackup(world.library, world.store, there, there.list().at(1).id, start + 200);
    EXPECT_EQ(bytesOf(world.files.picturePath(5)), "picture 5");
}

TEST(Backups, Take_the_place_of_a_library_that_cannot_be_read)
{
    for (const bool readable : {true, false}) {
        World world;
        const QStringList rows = world.rows();
        const auto pictures = world.pictures();
        const QString id = world.backUp().backup.id;
        world.change();
        world.library.close();
        const QString path = world.files.databasePath();
        if (!readable) {
            writeBytes(path, "torn");
            writeBytes(path + QStringLiteral("-wal"), "of the torn one");
            EXPECT_THROW(world.library.open(), DatabaseError);
        }
        const QByteArray before = bytesOf(path);
        const BackupRestored done = ReplaceLibrary(world.files.folder(), world.store, id, start);
        EXPECT_EQ(done.done.newerQuestionsToTrash, readable ? 1 : 0);
        EXPECT_EQ(bytesOf(path + QStringLiteral(".damaged")), before);
        world.library.open();
        FinishRestore(world.library, world.store);
        QStringList found = world.rows();
        EXPECT_EQ(found.removeIf([&](const QString& row) { return !rows.contains(row); }),
                  readable ? 2 : 0);
        EXPECT_EQ(found, rows);
        auto shown = world.pictures();
        shown.erase(QStringLiteral("%1.jpg").arg(world.newKey));
        EXPECT_EQ(shown, pictures);
        EXPECT_EQ(world.add(QStringLiteral("next")), world.newKey + 1);
    }
}

TEST(Backups, Say_why_when_the_disk_is_full_and_change_nothing)
{
    VARNHOLT_SKIP_ON_WINDOWS("no disk can be made to look full");
    World world;
    const QString id = world.backUp().backup.id;
    world.change();
    const QStringList rows = world.rows();
    for (int n = 1, failures = 0;; n += 3, ++failures) {
        setFileSteps(AtStep::DiskFull, n);
        try {
            RestoreBackup(world.library, world.store, world.store, id, start + 100 + n);
            setFileSteps(AtStep::Nothing);
            EXPECT_GT(failures, 5);
            break;
        } catch (const Error& error) {
            setFileSteps(AtStep::Nothing);
            ASSERT_FALSE(error.message().isEmpty());
        }
        ASSERT_EQ(world.rows(), rows) << n;
        ASSERT_TRUE(world.store.verify(id).whole) << n;
    }
}

#ifndef _WIN32
TEST(Backups, A_killed_program_leaves_the_library_of_today_or_the_chosen_one)
{
    World world;
    const QStringList chosen = world.rows();
    const auto chosenPictures = world.pictures();
    const QString id = world.backUp().backup.id;
    world.change();
    const QStringList today = world.rows();
    const auto todayPictures = world.pictures();
    world.library.close();
    const QString saved = world.files.folder() + QStringLiteral("-saved");
    const auto system = [](const QString& command) {
        ASSERT_EQ(std::system(command.toUtf8().constData()), 0);
    };
    system(QStringLiteral("cp -a %1 %2").arg(world.files.folder(), saved));

    std::mt19937 random(static_cast<unsigned>(fromEnvironment("VARNHOLT_KILL_SEED", 1)));
    const auto work = [&](bool restore, int killAt) {
        const pid_t child = fork();
        if (child == 0) {
            setFileSteps(killAt > 0 ? AtStep::Kill : AtStep::Nothing, killAt);
            int result = 255;
            try {
                world.library.open();
                if (restore) {
                    RestoreBackup(world.library, world.store, world.store, id, start + 100);
                } else {
                    world.store.make(world.library, start + 100);
                }
                world.library.close();
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
    int kills = 0;
    int restoredOnes = 0;
    const int runs = fromEnvironment("VARNHOLT_BACKUP_KILLS", 30);
    for (int i = 0; i < runs + 2; ++i) {
        const bool restore = i % 2 == 0;
        // The first two tell how many steps there are.
        static int length[2];
        const int killAt =
            i < 2 ? 0 : 1 + static_cast<int>(random() % static_cast<unsigned>(length[restore]));
        const int status = work(restore, killAt);
        if (i < 2) {
            ASSERT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) < 254) << status;
            length[restore] = WEXITSTATUS(status);
        }
        kills += WIFSIGNALED(status) ? 1 : 0;
        world.library.open();
        FinishRestore(world.library, world.store);
        world.library.close();

        const QStringList rows = world.rows();
        const auto pictures = world.pictures();
        const bool isToday = rows == today;
        restoredOnes += isToday ? 0 : 1;
        for (const QString& row : chosen) {
            ASSERT_TRUE(isToday || rows.contains(row)) << i << " at " << killAt;
        }
        ASSERT_EQ(rows.size(), today.size());
        for (const auto& [name, bytes] : isToday ? todayPictures : chosenPictures) {
            ASSERT_EQ(pictures.at(name), bytes) << i << " at " << killAt << name.toStdString();
        }
        ASSERT_EQ(world.files.value(QStringLiteral("PRAGMA integrity_check")),
                  QStringLiteral("ok"));
        for (const BackupInfo& backup : world.store.list()) {
            ASSERT_TRUE(backup.state == State::Whole && world.store.verify(backup.id).whole);
        }
        system(QStringLiteral("rm -r %1/* && cp -a %2/* %1").arg(world.files.folder(), saved));
    }
    system(QStringLiteral("rm -r %1").arg(saved));
    RecordProperty("kills", kills);
    std::printf("%d kills of %d, %d restored\n", kills, runs, restoredOnes);
    EXPECT_EQ(kills, runs);
}
#endif

} // namespace
} // namespace varnholt
