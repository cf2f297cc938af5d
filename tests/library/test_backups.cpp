#include "library/backup/backup_files.h"
#include "library/backup/retention.h"
#include "library/backup_world.h"
#include "support/file_size_limit.h"

#include <QDateTime>

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>
#include <random>
#include <set>

namespace varnholt {
namespace {

using namespace test;
using State = BackupManifest::State;

constexpr std::int64_t day = 86'400;

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
        std::sort(kept.begin(), kept.end(), std::greater());
        std::set<std::int64_t> expected;
        std::array<std::set<QString>, 3> seen;
        for (const std::int64_t time : kept) {
            if (time >= now - 2 * day) {
                expected.insert(time);
            }
            const QDate date = QDateTime::fromSecsSinceEpoch(time + offset, Qt::UTC).date();
            int year = 0;
            const int week = date.weekNumber(&year);
            const QString parts[] = {date.toString(u"yyyyMMdd"_s), u"%1-%2"_s.arg(year).arg(week),
                                     date.toString(u"yyyyMM"_s)};
            for (std::size_t i = 0; i < 3; ++i) {
                if (seen[i].size() < std::array{12U, 10U, 9U}[i] &&
                    seen[i].insert(parts[i]).second) {
                    expected.insert(time);
                }
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
        world.files.sql(u"UPDATE sqlite_sequence SET seq = seq + 5 WHERE name = 'Questions'"_s);
        const QString libraryId = world.files.value(u"SELECT LibraryID FROM PlusInfo"_s);

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
        EXPECT_EQ(after.removeIf([&](const QString& row) {
            return !rows.contains(row) && row.section(u'|', 3, 3) == u"0"_s;
        }),
                  2);
        EXPECT_EQ(after, rows);
        auto found = world.pictures();
        EXPECT_EQ(found.erase(u"%1.jpg"_s.arg(world.newKey)), 1U);
        EXPECT_EQ(found, pictures);
        EXPECT_EQ(readFile(world.files.picturePath(5) + u".bak"_s), "drawn over");

        EXPECT_EQ(world.files.value(u"SELECT LibraryID FROM PlusInfo"_s), libraryId);
        EXPECT_EQ(world.library.undoStep().has_value(), journalFromTheStart);
        const Trash trash = world.library.trash();
        EXPECT_TRUE(std::any_of(trash.entries().begin(), trash.entries().end(), [&](auto& entry) {
            return entry.item == Item{ItemKind::Question, world.newKey} &&
                   entry.deletedAt == start + 50;
        }));
        EXPECT_EQ(world.add(u"next"_s), world.newKey + 6);

        // And back to the state before, which was backed up by itself.
        RestoreBackup(world.library, world.store, world.store, restored.backupOfBefore, start + 99);
        EXPECT_EQ(world.files.value(u"SELECT Answer FROM Questions WHERE SOLIndex=2"_s),
                  u"other"_s);
        EXPECT_EQ(readFile(world.files.picturePath(5)), "drawn over");
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
        world.add(u"new"_s);
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
        const QDir pool(world.store.folder() + u"/Pictures"_s);
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
    world.add(u"new"_s);
    const QString id = world.backUp(start + 100).backup.id;
    const QString base = world.store.folder() + u'/' + id;
    std::mt19937 random(3);
    for (int i = 0; i < fromEnvironment("VARNHOLT_FLIPS", 60); ++i) {
        const QString path =
            std::array{base + u".manifest"_s, base + u".mdb"_s,
                       world.store.folder() + u"/Pictures/"_s +
                           QDir(world.store.folder() + u"/Pictures"_s)
                               .entryList(QDir::Files)
                               .at(static_cast<qsizetype>(random() % 17))}[random() % 3];
        const QByteArray bytes = readFile(path);
        QByteArray flipped = bytes;
        const auto at = static_cast<qsizetype>(random() % static_cast<unsigned>(bytes.size()));
        flipped[at] = static_cast<char>(flipped[at] ^ (1 << random() % 8));
        writeFile(path, flipped);
        if (!path.endsWith(u".jpg")) {
            ASSERT_THROW(RestoreBackup(world.library, world.store, world.store, id, start + 150),
                         Error);
        }
        ASSERT_FALSE(world.store.verify(id).whole) << path.toStdString() << " " << at;
        const std::vector<BackupInfo> list = world.store.list();
        ASSERT_EQ(list.back().state, State::Damaged);
        ASSERT_FALSE(list.back().reason.isEmpty());
        ASSERT_TRUE(list.front().state == State::Damaged || list.front().id == good);
        QFile::remove(path + u".damaged"_s);
        writeFile(path, bytes);
    }
    EXPECT_TRUE(world.store.verify(id).whole);
    // A damaged picture is not put back.
    BackupManifest manifest;
    ASSERT_EQ(world.store.read(id, manifest), State::Whole);
    QFile::remove(world.files.picturePath(4));
    writeFile(Shown(world.store.pictureOf(manifest.find(4)->sha)), "damaged");
    EXPECT_EQ(RestoreBackup(world.library, world.store, world.store, id, start + 150).picturesLost,
              std::vector{4});
    EXPECT_FALSE(QFile::exists(world.files.picturePath(4)));
    // One of a newer program is refused with its version.
    manifest.tables = 99;
    manifest.program = u"7.5"_s;
    writeFile(base + u".manifest"_s, manifest.text());
    EXPECT_EQ(world.store.list().back().state, State::Newer);
    try {
        RestoreBackup(world.library, world.store, world.store, id, start + 200);
        ADD_FAILURE();
    } catch (const Error& refusal) {
        EXPECT_TRUE(refusal.message().contains(u"(7.5)"_s));
    }
}

TEST(Backups, At_a_second_place_stay_whole_when_it_is_full_or_pulled_out)
{
    VARNHOLT_SKIP_ON_WINDOWS("no disk can be made to look full");
    World world;
    const QString place = world.files.folder() + u"/stick"_s;
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
    // The library is restored from there as from its own, with which it shares no bytes.
    BackupStore there = BackupStore::storesAt(place).at(0);
    BackupManifest manifest;
    ASSERT_EQ(there.read(there.newestId(), manifest), State::Whole);
    EXPECT_EQ(std::filesystem::hard_link_count(there.pictureOf(manifest.pictures.at(0).sha)), 1U);
    RestoreBackup(world.library, world.store, there, there.list().at(1).id, start + 200);
    EXPECT_EQ(readFile(world.files.picturePath(5)), "picture 5");
}

TEST(Backups, Take_the_place_of_a_library_that_cannot_be_read)
{
    for (const bool readable : {true, false}) {
        World world;
        const QStringList rows = world.rows();
        const QString id = world.backUp().backup.id;
        world.change();
        world.library.close();
        const QString path = world.files.databasePath();
        if (!readable) {
            writeFile(path, "torn");
            writeFile(path + u"-wal"_s, "of the torn one");
            EXPECT_THROW(world.library.open(), DatabaseError);
        }
        const BackupRestored done = ReplaceLibrary(world.files.folder(), world.store, id, start);
        EXPECT_EQ(done.done.newerQuestionsToTrash, readable ? 1 : 0);
        world.library.open();
        QStringList found = world.rows();
        EXPECT_EQ(found.removeIf([&](const QString& row) { return !rows.contains(row); }),
                  readable ? 2 : 0);
        EXPECT_EQ(found, rows);
        EXPECT_EQ(readFile(world.files.picturePath(4)) + readFile(world.files.picturePath(5)),
                  "picture 4picture 5");
        EXPECT_EQ(world.add(u"next"_s), world.newKey + 1);
    }
}

TEST(Backups, Say_why_when_the_disk_is_full_and_change_nothing)
{
    VARNHOLT_SKIP_ON_WINDOWS("no disk can be made to look full");
    World world;
    const QString id = world.backUp().backup.id;
    world.change();
    const QStringList rows = world.rows();
    // Nor over what another program does meanwhile.
    EXPECT_THROW(RestoreBackup(world.library, world.store, world.store, id, start + 99,
                               [&](std::size_t, std::size_t) {
                                   world.files.sql(u"UPDATE History SET LastID = LastID + 1"_s);
                               }),
                 Error);
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

} // namespace
} // namespace varnholt
