// What the journal costs a change, and how soon a full trash is there.

#include "library/Library.h"
#include "store/plus_statements.h"
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

/// Recording a test with the uses of its questions, and the same rows written by hand in one
/// transaction.
double recordRatio()
{
    constexpr int questions = 100;
    World own;
    World peer;
    NewTest test{QStringLiteral("Number – 100 questions"), 1, QStringLiteral("10B"), 1, {}, {}};
    for (int i = 1; i <= questions; ++i) {
        test.items.push_back({i, i, QStringLiteral("A"), QStringLiteral("Topic - Subtopic"),
                              QByteArray(32, static_cast<char>(i))});
    }
    own.library.recordTest(test, TestKind::Slides);
    peer.library.recordTest(test, TestKind::Slides);
    return bench::ratio(
        41, [&] { own.library.recordTest(test, TestKind::Slides); },
        [&] {
            Connection& connection = peer.library.connection();
            Transaction transaction(connection);
            Statement insertTest(connection, plus_statements::InsertTest);
            insertTest.bind(1, test.name).bind(2, std::int64_t{1}).bind(3, std::int64_t{1});
            insertTest.bind(4, std::int64_t{1}).bind(5, std::int64_t{1}).bind(6, std::int64_t{1});
            insertTest.bind(7, test.options.toJson()).next();
            const std::int64_t key = insertTest.integer(0);
            insertTest.reset();
            Statement insertItem(connection, plus_statements::InsertTestItem);
            for (const TestItem& item : test.items) {
                insertItem.bind(1, key).bind(2, std::int64_t{item.position});
                insertItem.bind(3, std::int64_t{item.SOLIndex}).bind(4, item.answer);
                insertItem.bind(5, item.topicText).bindBlob(6, item.pictureSha).run();
            }
            Statement(connection, plus_statements::InsertTestUses)
                .bind(1, key)
                .bind(2, std::int64_t{1})
                .run();
            transaction.commit();
        });
}

} // namespace

int main(int argc, char** argv)
{
    return bench::report(
        {{"undo.step", deleteRatio(), 1.5, 1.2, "ratio", "the same delete without a journal"},
         {"test.record", recordRatio(), 2, 1.2, "ratio", "one transaction with the same rows"},
         {"trash.50k", trashMilliseconds(), 50, 16, "ms", "one frame, of CPU time"}},
        argc, argv);
}
