// What the journal costs a change, and how soon a full trash is there.

#include "library/Library.h"
#include "store/services.h"
#include "store/statements.h"
#include "support/big_library.h"
#include "support/report.h"

#include <QTemporaryDir>

namespace {

using namespace varnholt;

class FixedClock : public Clock
{
public:
    [[nodiscard]] std::int64_t millisecondsSinceEpoch() const override { return 1'700'000'000'000; }
};

/// A library of its own with 100,000 questions.
struct World
{
    World()
    {
        bench::makeBigLibrary(folder.filePath(QStringLiteral("Varnholt.mdb")), questions);
        library.open();
    }

    static constexpr int questions = 100'000;
    QTemporaryDir folder;
    FixedClock clock;
    Library library{folder.path(), clock};
};

double deleteRatio()
{
    constexpr int perRound = 1000;
    World journalled;
    World plain;
    int own = 0;
    int peer = 0;
    return bench::ratio(
        21,
        [&] {
            for (int i = 0; i < perRound; ++i) {
                journalled.library.deleteQuestion(++own);
            }
        },
        [&] {
            for (int i = 0; i < perRound; ++i) {
                Transaction transaction(plain.library.connection());
                plain.library.connection().execute(statements::DeleteQuestion(++peer));
                transaction.commit();
            }
        });
}

/// Opening includes the texts of what a window shows at first.
double trashMilliseconds()
{
    World world;
    for (int key = 1; key <= World::questions; key += 2) {
        world.library.deleteQuestion(key);
    }
    // As the program leaves it a second later.
    world.library.connection().settle();
    std::vector<double> times;
    for (int i = 0; i < 21; ++i) {
        times.push_back(1000 * bench::cpuOf([&] {
                            const Trash trash = world.library.trash();
                            for (std::size_t row = 0; row < 50; ++row) {
                                if (trash.texts(trash.entries().at(row).item).place.size() != 3) {
                                    std::abort();
                                }
                            }
                            if (trash.entries().size() != World::questions / 2) {
                                std::abort();
                            }
                        }));
    }
    return bench::median(times);
}

} // namespace

int main(int argc, char** argv)
{
    return bench::report(
        {{"undo.step", deleteRatio(), 1.5, 1.2, "ratio", "the same delete without a journal"},
         {"trash.50k", trashMilliseconds(), 50, 16, "ms", "one frame, of CPU time"}},
        argc, argv);
}
