// Kills a program that takes pictures in and saves them at random moments and looks whether every
// question has its picture, every picture its question, and no picture is lost or there twice:
// VARNHOLT_KILLS times, 20 unless set.

#include "library/Library.h"
#include "many/PendingPictures.h"
#include "support/fakes.h"
#include "support/test_library.h"

#include <QDir>
#include <QElapsedTimer>
#include <QThread>

#include <gtest/gtest.h>

#include <csignal>
#include <random>
#include <set>

#include <sys/wait.h>
#include <unistd.h>

namespace varnholt::test {

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int pictures = 12;

/// The width tells the pictures apart.
QImage numbered(int number)
{
    return testPicture({100 + number, 40}, 5);
}

void work(const QString& folder)
{
    FakeClock clock;
    Library library(folder, clock);
    library.open();
    PendingPictures pending(library);
    for (const int number : pending.resume()) {
        pending.save(number, {1, 1, 1}, u"4"_s);
    }
    library.close();
}

} // namespace

TEST(ManyKilled, EveryQuestionHasItsPictureAndEveryPictureItsQuestion)
{
    const QByteArray wanted = qgetenv("VARNHOLT_KILLS");
    const int kills = wanted.isEmpty() ? 20 : wanted.toInt();
    std::mt19937 random(7);
    int inTheMiddle = 0;
    double longestMs = 200;
    for (int kill = 0; kill < kills && !testing::Test::HasFailure(); ++kill) {
        SCOPED_TRACE(kill);
        TestLibrary library;
        library.addSubTopic(library.addAssessment(u"Maths"_s), library.addTopic(1, u"A"_s), u"B"_s);
        FakeClock clock;
        {
            Library owner(library.folder(), clock);
            owner.open();
            PendingPictures pending(owner);
            for (int i = 1; i <= pictures; ++i) {
                pending.add(numbered(i), Margins::Keep);
            }
        }
        QElapsedTimer ran;
        ran.start();
        const pid_t child = fork();
        if (child == 0) {
            try {
                work(library.folder());
            } catch (const std::exception&) {
                _exit(1);
            }
            _exit(0);
        }
        QThread::usleep(static_cast<unsigned long>(
            1000 * std::uniform_real_distribution<>(0, longestMs)(random)));
        ::kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        if (WIFEXITED(status)) {
            EXPECT_EQ(WEXITSTATUS(status), 0);
            longestMs = static_cast<double>(ran.elapsed());
        }
        std::multiset<int> widths;
        Library owner(library.folder(), clock);
        owner.open();
        PendingPictures pending(owner);
        for (const int number : pending.resume()) {
            widths.insert(QImage(pending.path(number)).width());
        }
        const QStringList keys = library.sql(u"SELECT SOLIndex FROM Questions"_s);
        for (const QString& key : keys) {
            widths.insert(QImage(library.picturePath(key.toInt())).width());
        }
        EXPECT_EQ(QDir(library.folder() + u"/Files"_s).entryList({u"*.jpg"_s}).size(), keys.size());
        std::multiset<int> all;
        for (int i = 1; i <= pictures; ++i) {
            all.insert(100 + i);
        }
        EXPECT_EQ(widths, all);
        inTheMiddle += !keys.isEmpty() && keys.size() < pictures ? 1 : 0;
    }
    EXPECT_GT(inTheMiddle, kills / 10) << "hardly any was killed at work";
}

} // namespace varnholt::test
