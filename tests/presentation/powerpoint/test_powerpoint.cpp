// Builds through real automation, with a server of our own in PowerPoint's place. It is registered
// under PowerPoint's name, so this is for a private Wine prefix and never touches a Windows.

#include "presentation/build_fixture.h"
#include "presentation/default_programs.h"
#include "presentation/powerpoint/automation.h"
#include "presentation/powerpoint/fake_powerpoint.h"
#include "presentation/powerpoint/powerpoint_document.h"
#include "presentation/pptx/pptx_program.h"
#include "store/errors.h"

#include <QDir>
#include <QRegularExpression>

#include <objbase.h>

#include <optional>
#include <thread>

using namespace Qt::StringLiterals;
using namespace varnholt;
using namespace varnholt::test;
using automation::Object;
using automation::Value;

namespace {

void registerServer(const QString& program)
{
    const auto set = [](const QString& key, const QString& value) {
        const std::wstring text = value.toStdWString();
        RegSetKeyValueW(HKEY_LOCAL_MACHINE, (u"Software\\Classes\\"_s + key).toStdWString().c_str(),
                        nullptr, REG_SZ, text.c_str(), DWORD((text.size() + 1) * sizeof(wchar_t)));
    };
    const QString id = QString::fromWCharArray(fakeClassId);
    set(u"powerpoint.application\\CLSID"_s, id);
    set(u"CLSID\\"_s + id + u"\\LocalServer32"_s,
        QDir::toNativeSeparators(QFileInfo(program).absoluteFilePath()));
}

class PowerPointBuilds : public BuildFixture
{
protected:
    void SetUp() override
    {
        if (!GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version")) {
            GTEST_SKIP() << "the fake server stands in for PowerPoint only under Wine";
        }
        CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        registerServer(QStringLiteral(VARNHOLT_FAKE_POWERPOINT));
        connect();
        powerPoint_ = FindPowerPoint();
        fill(1);
    }
    void TearDown() override
    {
        powerPoint_.reset();
        control_ = Object();
        CoUninitialize();
    }

    void fill(int questions)
    {
        pool_.clear();
        topics_.clear();
        for (int i = 1; i <= questions; ++i) {
            addQuestion(i == 1 ? u"\u03C0 \u2248 3,14 \U0001F600"_s : u"B"_s,
                        u"Algebra - \u0130ki\u00E7\u0131kar\u0131m\nsecond line"_s);
            if (!QFile::exists(picture(i))) {
                writePicture(picture(i), {8, 8}, 96);
            }
        }
    }

    /// Our own line to the server; it may be busy or have died.
    void connect()
    {
        control_ = Object::create(PowerPointDocument::className, [](auto) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            return true;
        });
        script_.id = log_.id = objects_.id = DISPID_UNKNOWN;
    }
    void script(const QString& text) { control_.put(script_, Value(text.toStdWString())); }
    int objects() { return control_.getNumber(objects_); }
    QStringList calls()
    {
        const QString path = QDir::toNativeSeparators(folder_.filePath(u"log"_s));
        control_.call(log_, {Value(path.toStdWString())});
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        return QString(reinterpret_cast<const QChar*>(bytes.constData()), bytes.size() / 2)
            .remove(QDir::toNativeSeparators(folder_.path()) + u'\\')
            .split(u'\n', Qt::SkipEmptyParts);
    }
    static QStringList expected(const QString& scenario)
    {
        QFile file(QStringLiteral(VARNHOLT_EXPECTED_CALLS "/") + scenario);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(scenario);
        return QString::fromUtf8(file.readAll()).remove(u'\r').split(u'\n', Qt::SkipEmptyParts);
    }

    static std::string shown(const QStringList& lines) { return lines.join(u'\n').toStdString(); }

    /// What the user is told of the build of 1_1_1_0.txt: "complete", "cancelled", "aborted: " or
    /// "bad picture: " and why, or why it failed before the first picture.
    QString outcome(const KeepGoing& keepGoing = {})
    {
        try {
            const BuildOutcome outcome = build(*powerPoint_->start(keepGoing), true, true);
            switch (outcome.end) {
            case BuildOutcome::End::Complete:
                return u"complete"_s;
            case BuildOutcome::End::Cancelled:
                return u"cancelled"_s;
            default:
                return (outcome.pictureIsBad ? u"bad picture: "_s : u"aborted: "_s) +
                       outcome.reason;
            }
        } catch (const Cancelled&) {
            return u"cancelled"_s;
        } catch (const Error& error) {
            return error.message();
        }
    }

    /// Lets `fault` happen at one call after the other, every seventh of them unless told more.
    void atEachCall(const QString& fault, const QString& message)
    {
        const QStringList all = expected(u"1_1_1_0.txt"_s);
        // Before the first picture a failure is the caller's. Six calls bring it in.
        const auto picture = all.indexOf(QRegularExpression(u"^call Shapes.AddPicture.*"_s)) - 4;
        const auto prefix = [&](int call) {
            return call <= picture                           ? QString()
                   : fault == u"fail" && call <= picture + 6 ? u"bad picture: "_s
                                                             : u"aborted: "_s;
        };
        bool told = false;
        const int step = qEnvironmentVariableIntValue("VARNHOLT_FAULT_STEP", &told);
        for (int n = 1; n <= all.size(); n += told ? step : 7) {
            script(u"%1 %2"_s.arg(fault).arg(n));
            EXPECT_EQ(outcome(), prefix(n) + message) << n;
            if (fault == u"die") {
                connect();
            } else {
                EXPECT_EQ(calls().size(), n);
            }
        }
        EXPECT_EQ(outcome(), u"complete");
    }

    std::unique_ptr<PowerPoint> powerPoint_;
    Object control_;
    automation::Member script_{L"FakeScript"};
    automation::Member log_{L"FakeLog"};
    automation::Member objects_{L"FakeObjects"};
};

TEST_F(PowerPointBuilds, IsAskedForExactlyTheCallsOfTheObjectModel)
{
    const QStringList scenarios =
        QDir(QStringLiteral(VARNHOLT_EXPECTED_CALLS)).entryList(QDir::Files);
    ASSERT_EQ(scenarios.size(), 9);
    for (const QString& scenario : scenarios) {
        SCOPED_TRACE(qPrintable(scenario));
        const QStringList parts = scenario.section(u'.', 0, 0).split(u'_');
        const int missing = parts.at(3).toInt();
        fill(parts.at(0).toInt());
        script({});
        if (missing > 0) {
            QFile::remove(picture(missing));
        }
        EXPECT_EQ(build(*powerPoint_->start({}), parts.at(1) == u"1", parts.at(2) == u"1").end,
                  missing > 0 ? BuildOutcome::End::Aborted : BuildOutcome::End::Complete);
        EXPECT_EQ(shown(calls()), shown(expected(scenario)));
        EXPECT_EQ(objects(), 2) << "ours and the one for the next build";
    }
    powerPoint_.reset();
    EXPECT_EQ(objects(), 1);
}

TEST_F(PowerPointBuilds, AFailureOfAnyCallIsTold)
{
    atEachCall(u"fail"_s, u"PowerPoint reported: The clipboard is on fire."_s);
}

TEST_F(PowerPointBuilds, ADeathAtAnyCallIsToldAndTheNextBuildStartsAnother)
{
    atEachCall(u"die"_s, u"PowerPoint, or the presentation in it, was closed."_s);
}

TEST_F(PowerPointBuilds, ABusyOneIsWaitedForAsLongAsTheUserWants)
{
    const QString busy = u"PowerPoint is busy. Please look whether one of its windows waits for "
                         "an answer, and try again."_s;
    const auto with = [&](const QString& fault, int limitMs, const KeepGoing& keepGoing) {
        script(fault);
        powerPoint_ = FindPowerPoint(std::chrono::milliseconds(limitMs));
        return outcome(keepGoing);
    };
    int asked = 0;
    const KeepGoing notForLong = [&] { return ++asked % 10 != 0; };
    // While it is started, before the first picture and after it.
    for (const auto& [request, told] :
         {std::pair{1, busy}, {20, busy}, {110, u"aborted: "_s + busy}}) {
        SCOPED_TRACE(request);
        EXPECT_EQ(with(u"busy %1 5"_s.arg(request), 60'000, {}), u"complete");
        EXPECT_EQ(shown(calls()), shown(expected(u"1_1_1_0.txt"_s)));
        EXPECT_EQ(with(u"busy %1 200"_s.arg(request), 200, {}), told);
        asked = 0;
        EXPECT_EQ(with(u"busy %1 200"_s.arg(request), 60'000, notForLong), u"cancelled");
        EXPECT_EQ(asked, 10);
        script({});
        EXPECT_EQ(outcome(), u"complete") << "with a new line to it";
    }
    asked = 0;
    EXPECT_EQ(with(u"hang 30"_s, 60'000, notForLong), u"cancelled");
    EXPECT_EQ(outcome(), u"complete");
}

TEST_F(PowerPointBuilds, IsTheFirstChoiceAndReplacedByAFileWhereItDoesNotStart)
{
    writePicture(picture(1), {8, 8}, 96);
    PresentationSettings settings;
    settings.program.clear();
    settings.hasDisplay = [] { return true; };
    settings.open = [](const QString&) { return true; };
    const auto notice = [&] {
        DefaultPresentationPrograms programs(folder_.path(), settings);
        EXPECT_TRUE(programs.canWriteFileInstead());
        return build(*programs.start(SlidesInto::Program, {}), true, true).notice;
    };
    script({});
    EXPECT_EQ(notice(), QString());
    EXPECT_EQ(shown(calls()), shown(expected(u"1_1_1_0.txt"_s)));

    // One that runs would be attached to, wherever the registry points.
    script(u"die 1"_s);
    outcome();
    powerPoint_.reset();
    control_ = Object();
    registerServer(u"C:\\no such program.exe"_s);
    const QString instead = notice();
    EXPECT_TRUE(instead.startsWith(u"PowerPoint did not start: Windows reported: "))
        << qPrintable(instead);
    settings.program = u"powerpoint"_s;
    EXPECT_THROW(
        static_cast<void>(
            DefaultPresentationPrograms(folder_.path(), settings).start(SlidesInto::Program, {})),
        Error);
}

} // namespace
