#include "log/ProgramLog.h"

#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace varnholt {

using namespace Qt::StringLiterals;
namespace {

TEST(ProgramLogTest, StaysWithinItsBoundsAndKeepsTheNewestWholeLinesFromEveryThread)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"new/varnholt.log"_s);
    constexpr int lines = 4000;
    static std::atomic<int> passedOn;
    const QtMessageHandler before = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString&) { ++passedOn; });
    {
        const ProgramLog log(path);
        const auto report = [](char name) {
            for (int i = 0; i < lines; ++i) {
                qCInfo(logProgram, "%c%d\nsecond line %s", name, i, std::string(60, '.').c_str());
            }
        };
        std::thread other(report, 'b');
        report('a');
        other.join();
        qCDebug(logProgram, "not worth keeping");
        qCWarning(logSlides, "the last one");
    }
    qInfo("after its end");
    qInstallMessageHandler(before);
    EXPECT_EQ(passedOn, 2 * lines + 3);

    for (const char* end : {"", ".old"}) {
        EXPECT_LE(QFileInfo(path + QLatin1String(end)).size(), ProgramLog::maxBytes + 2000) << end;
    }
    const QStringList tail = ProgramLog::tail(path, 3000).split(u'\n');
    ASSERT_EQ(tail.size(), 3000) << "the part before is read, too";
    EXPECT_TRUE(tail.last().endsWith(u"varnholt.slides warning: the last one"_s));
    int a = -1;
    for (const QString& line : tail.mid(0, 2999)) {
        ASSERT_TRUE(line.contains(u"varnholt.program info: "_s) && line.endsWith(u'.'))
            << line.toStdString();
        const QString text = line.section(u"info: "_s, 1).section(u' ', 0, 0);
        if (text.startsWith(u'a')) {
            EXPECT_TRUE(a < 0 || text.mid(1).toInt() == a + 1) << "a line is missing";
            a = text.mid(1).toInt();
        }
    }
}

} // namespace
} // namespace varnholt
