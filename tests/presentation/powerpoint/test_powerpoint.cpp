// Builds through real automation, with a server of our own in PowerPoint's place. It is registered
// under PowerPoint's name, so this is for a private Wine prefix and never touches a Windows.

#include "presentation/build_fixture.h"
#include "presentation/default_programs.h"
#include "presentation/powerpoint/powerpoint.h"
#include "store/errors.h"

#include <QDir>
#include <QLocale>
#include <QTest>

#include <windows.h>

using namespace Qt::StringLiterals;
using namespace varnholt;
using namespace varnholt::test;

namespace {

void registerServer(const QString& program)
{
    const auto set = [](const QString& key, const QString& value) {
        const std::wstring text = value.toStdWString();
        RegSetKeyValueW(HKEY_LOCAL_MACHINE, (u"Software\\Classes\\"_s + key).toStdWString().c_str(),
                        nullptr, REG_SZ, text.c_str(), DWORD((text.size() + 1) * sizeof(wchar_t)));
    };
    const QString id = QString::fromWCharArray(FAKE_CLASS);
    set(u"powerpoint.application\\CLSID"_s, id);
    set(u"CLSID\\"_s + id + u"\\LocalServer32"_s, QDir::toNativeSeparators(program));
}

class PowerPointBuilds : public BuildFixture
{
protected:
    void SetUp() override
    {
        if (!GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version")) {
            GTEST_SKIP() << "the fake server stands in for PowerPoint only under Wine";
        }
        registerServer(server_);
        powerPoint_ = FindPowerPoint();
        name_ = u"Spring: 2nd"_s;
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Switzerland));
        fill(1);
    }
    void TearDown() override { EXPECT_TRUE(letGo()); }

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

    void script(const QString& text)
    {
        QFile file(server_ + u".script"_s);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text.toUtf8());
    }
    QStringList lines(const QString& path)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << qPrintable(path);
        const QByteArray bytes = file.readAll();
        return QString(reinterpret_cast<const QChar*>(bytes.constData()), bytes.size() / 2)
            .remove(QDir::toNativeSeparators(folder_.path()) + u'\\')
            .split(u'\n', Qt::SkipEmptyParts);
    }
    QStringList calls() { return lines(server_ + u".log"_s); }
    QStringList expected(const QString& scenario = u"1_1_1_0.txt"_s)
    {
        return lines(QStringLiteral(EXPECTED_CALLS "/") + scenario);
    }
    static std::string shown(const QStringList& lines) { return lines.join(u'\n').toStdString(); }

    /// Lets go of PowerPoint; true when it has none of its objects to keep then.
    bool letGo()
    {
        powerPoint_.reset();
        return QTest::qWaitFor([&] { return calls().endsWith(u"end"_s); }, 30'000);
    }

    /// What the user is told of the build of 1_1_1_0.txt: "complete", "cancelled", "aborted: " or
    /// "bad picture: " and why, or why it failed before the first picture.
    QString outcome(const KeepGoing& keepGoing = {})
    {
        try {
            const BuildOutcome outcome = build(*powerPoint_->start(keepGoing), true, true);
            return outcome.end == End::Complete    ? u"complete"_s
                   : outcome.end == End::Cancelled ? u"cancelled"_s
                   : outcome.pictureIsBad          ? u"bad picture: "_s + outcome.reason
                                                   : u"aborted: "_s + outcome.reason;
        } catch (const Cancelled&) {
            return u"cancelled"_s;
        } catch (const Error& error) {
            return error.message();
        }
    }

    const QString server_ = QStringLiteral(FAKE_POWERPOINT);
    std::unique_ptr<PowerPoint> powerPoint_;
};

TEST_F(PowerPointBuilds, AreExactlyTheCallsOfTheObjectModel)
{
    const QStringList scenarios = QDir(QStringLiteral(EXPECTED_CALLS)).entryList(QDir::Files);
    ASSERT_EQ(scenarios.size(), 10);
    for (const QString& scenario : scenarios) {
        SCOPED_TRACE(qPrintable(scenario));
        const QStringList parts = scenario.section(u'.', 0, 0).split(u'_');
        const int missing = parts.at(3).toInt();
        wishes_ = parts.size() > 4 ? SlideWishes{true, true, true, true, 30} : SlideWishes();
        fill(parts.at(0).toInt());
        script({});
        if (missing > 0) {
            QFile::remove(picture(missing));
        }
        EXPECT_EQ(build(*powerPoint_->start({}), parts.at(1) == u"1", parts.at(2) == u"1").end,
                  missing > 0 ? End::Aborted : End::Complete);
        EXPECT_EQ(shown(calls()), shown(expected(scenario)));
    }
}

TEST_F(PowerPointBuilds, AFailureOrDeathAtAnyCallIsTold)
{
    bool told = false;
    const int every = qEnvironmentVariableIntValue("VARNHOLT_FAULT_STEP", &told);
    const QStringList all = expected();
    // Before the first picture a failure is the caller's. Six calls bring it in.
    const auto picture = all.indexOf(all.filter(u"AddPicture"_s).value(0)) - 4;
    for (const auto& [fault, words] :
         {std::pair{u"fail"_s, u"PowerPoint reported: The clipboard is on fire."_s},
          {u"die"_s, u"PowerPoint, or the presentation in it, was closed."_s}}) {
        for (int n = 1; n <= all.size(); n += told ? every : 7) {
            script(u"%1 %2"_s.arg(fault).arg(n));
            EXPECT_EQ(outcome(), (n <= picture                           ? QString()
                                  : fault == u"fail" && n <= picture + 6 ? u"bad picture: "_s
                                                                         : u"aborted: "_s) +
                                     words)
                << n;
            EXPECT_EQ(shown(calls()), shown(all.first(n)));
        }
        script({});
        EXPECT_EQ(outcome(), u"complete");
    }
}

TEST_F(PowerPointBuilds, ABusyOneIsWaitedForAsLongAsTheUserWants)
{
    const QString busy = u"PowerPoint is busy. Please look whether one of its windows waits for "
                         "an answer, and try again."_s;
    const auto with = [&](const QString& fault, int limitMs, const KeepGoing& keepGoing) {
        letGo();
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
        EXPECT_EQ(shown(calls()), shown(expected()));
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

TEST_F(PowerPointBuilds, AreTheFirstChoiceAndReplacedByAFileWherePowerPointDoesNotStart)
{
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
    ASSERT_TRUE(letGo());
    EXPECT_EQ(shown(calls()), shown(expected() << u"end"_s));

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
