// A tick in the real selection window over a large library, and the draw.

#include "library/Library.h"
#include "selection/draw_order.h"
#include "selection/frmMain.h"
#include "selection/question_draw.h"
#include "store/services.h"
#include "support/big_library.h"
#include "support/report.h"
#include "toolkit/ListBox.h"
#include "toolkit/desktop_services.h"

#include <QApplication>
#include <QLabel>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdlib>
#include <random>

namespace {

using namespace varnholt;

/// Median milliseconds from the tick of a topic to the standing counts and captions,
/// painting included.
double tickMilliseconds(int questions)
{
    const QTemporaryDir folder;
    bench::makeBigLibrary(folder.filePath(QStringLiteral("Varnholt.mdb")), questions);
    DesktopMessageBoxes messages;
    SystemClock clock;
    Library library(folder.path(), clock);
    library.open();
    SplitMix64 random;
    Services services;
    services.messageBoxes = &messages;
    services.clock = &clock;
    services.random = &random;
    services.programFolder = folder.path();
    ProgramState state;
    frmMain window(services, state, library);
    window.resize(1000, 700);
    window.show();
    QApplication::processEvents();

    auto* topics = window.findChild<ListBox*>(QStringLiteral("lstTopics"));
    std::vector<double> times;
    for (int i = 0; i < 41; ++i) {
        topics->setListIndex(i);
        QApplication::processEvents();
        times.push_back(1000 * bench::cpuOf([&] {
                            topics->setSelected(i, i % 2 != 0);
                            QApplication::processEvents();
                        }));
    }
    const auto* count = window.findChild<QLabel*>(QStringLiteral("lblQuestionCount"));
    if (count->text().toInt() != questions - 21 * 100) {
        std::abort();
    }
    return bench::median(times);
}

double drawRatio(int questions)
{
    List1<DrawnQuestion> pool;
    for (int i = 1; i <= questions; ++i) {
        pool.append({{i, i, i / 100, i / 10, QString(QChar(u'A' + i % 4))}});
    }
    const std::vector<DrawnQuestion> records(pool.begin(), pool.end());
    SplitMix64 random;
    std::mt19937_64 engine;
    return bench::ratio(
        15,
        [&] {
            List1<DrawnQuestion> drawn = pool;
            ShuffleDrawPool(drawn, random);
        },
        [&] {
            std::vector<DrawnQuestion> shuffled = records;
            std::shuffle(shuffled.begin(), shuffled.end(), engine);
        });
}

/// A draw of fresh questions, with the ranks that the window has ready, against one by chance.
double freshRatio(int questions, int uses, int quotas)
{
    List1<DrawnQuestion> pool;
    for (int i = 1; i <= questions; ++i) {
        pool.append({{i, i, i / (questions / 100), i / 10, QString(QChar(u'A' + i % 4))}});
    }
    std::mt19937 engine(1);
    std::vector<Use> used;
    for (int i = 0; i < uses; ++i) {
        used.push_back({static_cast<std::int32_t>(engine() % static_cast<unsigned>(questions)) + 1,
                        1, i / 12, static_cast<Outcome>(engine() % 4)});
    }
    const FreshRanks ranks = UseBook(used).ranks(1, uses);
    Quotas wanted;
    for (int topic = 0; topic < quotas; ++topic) {
        wanted[topic] = 2;
    }
    const std::int32_t asked = 120;
    SplitMix64 random;
    return bench::ratio(
        15,
        [&] {
            List1<DrawnQuestion> drawn = pool;
            ShuffleDrawPool(drawn, random);
            if (uses > 0) {
                PreferFresh(drawn, ranks, DrawRule::Fresh, asked);
            }
            const QuotaOrder order(wanted, drawn, asked);
        },
        [&] {
            List1<DrawnQuestion> drawn = pool;
            ShuffleDrawPool(drawn, random);
        });
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const double small = tickMilliseconds(10'000);
    const double large = tickMilliseconds(100'000);
    return bench::report(
        {{"tick.100k", large, 16, 4, "ms", "one frame"},
         {"tick.growth", large / small, -1, 10, "ratio", "a tick at 10,000 questions"},
         {"draw.100k", drawRatio(100'000), 5, -1, "ratio", "std::shuffle of the same records"},
         {"fresh.100k", freshRatio(100'000, 80'000, 0), 3, 2, "ratio", "the draw by chance alone"},
         {"quota.100k", freshRatio(100'000, 0, 50), -1, 2, "ratio", "the draw by chance alone"}},
        argc, argv);
}
