// What a backup of a library with 10,000 pictures costs when one of them is new, and putting back
// all of them, against a common backup program and a plain copy.

#include "library/Library.h"
#include "library/backup/backup_restore.h"
#include "store/services.h"
#include "support/big_library.h"
#include "support/program_cost.h"
#include "support/report.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QThread>

#include <cstdlib>

#include <unistd.h>

namespace {

using namespace varnholt;

class FixedClock : public Clock
{
public:
    [[nodiscard]] std::int64_t millisecondsSinceEpoch() const override { return 1'700'000'000'000; }
};

constexpr int pictures = 10'000;
constexpr std::int64_t made = 1'700'000'000;

using bench::cpuOfProgram;

struct World
{
    World()
    {
        QDir(folder.path()).mkpath(QStringLiteral("Files"));
        bench::makeBigLibrary(folder.filePath(QStringLiteral("Varnholt.mdb")), pictures);
        for (int key = 1; key <= pictures; ++key) {
            addPicture(key);
        }
        library.open();
    }

    void addPicture(int key) const
    {
        // The size of a picture of a question on average.
        QByteArray bytes(36 * 1024, Qt::Uninitialized);
        QRandomGenerator(static_cast<quint32>(key))
            .fillRange(reinterpret_cast<quint32*>(bytes.data()), bytes.size() / 4);
        QFile file(folder.filePath(QStringLiteral("Files/%1.jpg").arg(key)));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) {
            std::exit(1);
        }
    }

    QTemporaryDir folder;
    FixedClock clock;
    Library library{folder.path(), clock};
    BackupStore store{BackupStore::folderBeside(folder.path())};
};

} // namespace

int main(int argc, char** argv)
{
    World world;
    // Younger pictures would be read again: see `BackupStore`.
    QThread::sleep(3);
    const QString id = world.store.make(world.library, made).backup.id;
    QTemporaryDir other;
    const QString repository = other.filePath(QStringLiteral("repository"));
    qputenv("RESTIC_PASSWORD", "bench");
    qputenv("RESTIC_CACHE_DIR", other.filePath(QStringLiteral("cache")).toLocal8Bit());
    const QStringList common{QStringLiteral("-q"), QStringLiteral("-r"), repository};
    const QStringList backUp =
        common + QStringList{QStringLiteral("backup"),
                             world.folder.filePath(QStringLiteral("Files")),
                             world.folder.filePath(QStringLiteral("Varnholt.mdb"))};
    cpuOfProgram(QStringLiteral("restic"), common + QStringList{QStringLiteral("init")});
    cpuOfProgram(QStringLiteral("restic"), backUp);

    std::vector<double> ratios;
    std::vector<double> milliseconds;
    constexpr int rounds = 3;
    for (int i = 1; i <= rounds; ++i) {
        world.addPicture(pictures + i);
        const double own = bench::cpuOf([&] {
            // The picture of the round before is read again when that was just now.
            if (world.store.make(world.library, made + i).picturesWritten != 1) {
                std::exit(1);
            }
            world.store.tidy(made + i, 0);
        });
        milliseconds.push_back(1000 * own);
        ratios.push_back(own / cpuOfProgram(QStringLiteral("restic"), backUp));
    }

    // All pictures gone; beside it a plain copy of as many.
    const QString files = world.folder.filePath(QStringLiteral("Files"));
    std::vector<double> restores;
    for (int i = 0; i < 3; ++i) {
        QDir(files).removeRecursively();
        const double own = bench::cpuOf([&] {
            const auto restored =
                RestoreBackup(world.library, world.store, world.store, id, made + 100 + i);
            if (restored.done.picturesMissing != pictures || !restored.picturesLost.empty()) {
                std::exit(1);
            }
        });
        const QString copy = other.filePath(QStringLiteral("copy%1").arg(i));
        restores.push_back(own /
                           cpuOfProgram(QStringLiteral("cp"), {QStringLiteral("-a"), files, copy}));
        QDir(copy).removeRecursively();
    }
    return bench::report(
        {{"backup.10k", bench::median(ratios), 0.5, 0.15, "ratio", "restic's second run"},
         {"backup.10k.ms", bench::median(milliseconds), 300, 100, "ms", "of CPU time"},
         {"restore.10k", bench::median(restores), 1.2, 1.0, "ratio", "cp -a of the pictures"}},
        argc, argv);
}
