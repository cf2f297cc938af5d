// Impress itself, on a display and a profile of its own. What it holds is read back by the
// office's macro language.

#include "files/FolderLock.h"
#include "presentation/build_fixture.h"
#include "presentation/default_programs.h"
#include "presentation/impress/impress_plugin.h"
#include "presentation/office_host.h"
#include "presentation/pptx/pptx_program.h"
#include "store/errors.h"
#include "support/run_program.h"

#include <csignal>

using namespace Qt::StringLiterals;
using namespace varnholt;
using namespace varnholt::test;

namespace {

class Impress : public BuildFixture
{
protected:
    static void SetUpTestSuite() { host_ = std::make_unique<OfficeHost>(); }
    static void TearDownTestSuite() { host_.reset(); }

    void SetUp() override
    {
        ASSERT_EQ(host_->problem(), QString());
        ASSERT_NE(ImpressPlugin::instance().entry(), nullptr)
            << qPrintable(ImpressPlugin::instance().reason());
        writePicture(picture(1), {600, 350}, 0);
        writePicture(picture(2), {600, 350}, 150);
        addQuestion(longAnswer, u"Ümlaut & O'Brien - \U0001F600"_s);
        addQuestion(u"two\r\nlines\tand a tab"_s, QString(10'000, u'w'));
    }

    static std::unique_ptr<PresentationProgram> start(ImpressSettings settings = host_->settings())
    {
        return ImpressPlugin::instance().start(settings);
    }

    /// Settings with which slides go there call by call, or in a file.
    static ImpressSettings settings(bool file)
    {
        ImpressSettings settings = host_->settings();
        settings.manySlides = file ? 1 : 1000;
        return settings;
    }

    /// What Impress holds of a build; `look` is asked for before it closes. Both ways to it must
    /// lead to the same.
    QStringList built(bool topic, const std::function<void()>& look,
                      const std::function<void()>& accident = {})
    {
        QStringList shapes[2];
        std::string looks[2];
        for (const bool file : {false, true}) {
            int done = 0;
            const auto progress = [&](int slide, int slides) {
                EXPECT_GE(slide * 1000 / slides, done);
                done = slide * 1000 / slides;
                if (accident && slide == 1) {
                    accident();
                }
            };
            EXPECT_EQ(build(*start(settings(file)), topic, true, progress).end, End::Complete);
            EXPECT_GT(done, 100);
            look();
            looks[file] = host_->runMacro(u"Looks"_s).toStdString();
            shapes[file] = held();
        }
        EXPECT_EQ(shapes[0].join(u'\n').toStdString(), shapes[1].join(u'\n').toStdString());
        EXPECT_EQ(looks[0], looks[1]);
        return shapes[0];
    }

    /// In the PDF of what Impress shows the long answer stands on one line.
    static void expectLongAnswerOnOneLine()
    {
        const QString pdf = host_->runMacro(u"StorePdf"_s, {host_->filePath(u"slides.pdf"_s)});
        const QByteArray text = output(u"pdftotext"_s, {u"-layout"_s, pdf, u"-"_s});
        EXPECT_TRUE(text.contains("1) " + longAnswer.toUtf8())) << text.constData();
    }

    static inline const QString longAnswer = u"a<b & c, which is wider than a hundred points"_s;

    /// What Impress shows, and closes then: "document;..." first, then "slide;..." and for each
    /// of its shapes "shape;left;top;width;height;description;text".
    static QStringList held()
    {
        const QString dump = host_->runMacro(u"Dump"_s);
        host_->runMacro(u"CloseAll"_s);
        return dump.split(u'\n', Qt::SkipEmptyParts);
    }

    static inline std::unique_ptr<OfficeHost> host_;
};

/// The same lines; their numbers, hundredths of a millimetre, may differ by one.
void expectSame(const QStringList& built, const QStringList& read)
{
    ASSERT_EQ(built.size(), read.size());
    for (int line = 0; line < built.size(); ++line) {
        const QStringList ours = built.at(line).split(u';');
        const QStringList theirs = read.at(line).split(u';');
        ASSERT_EQ(ours.size(), theirs.size());
        for (int i = 0; i < ours.size(); ++i) {
            EXPECT_TRUE(ours.at(i) == theirs.at(i) ||
                        std::abs(ours.at(i).toInt() - theirs.at(i).toInt()) == 1)
                << qPrintable(built.at(line)) << "\nis not\n"
                << qPrintable(read.at(line));
        }
    }
}

TEST_F(Impress, HoldsTheSameShapesAsItReadsFromThePptxFile)
{
    for (const bool topic : {false, true}) {
        QStringList built = Impress::built(topic, expectLongAnswerOnOneLine);
        // Three slides, the first on show, changed, without a file, in a visible window.
        EXPECT_EQ(built.takeFirst(), u"document;3;1;True;False;True");
        EXPECT_EQ(built.first(), u"slide;33867;19050;20;0;0;");
        EXPECT_TRUE(built.at(topic ? 3 : 2).endsWith(u";Question 1;"));
        EXPECT_TRUE(built.last().endsWith(u";2) two|lines\tand a tab"));

        PptxSettings settings;
        settings.programFolder = folder_.path();
        PptxProgram pptx(settings);
        EXPECT_EQ(build(pptx, topic, true).end, End::Complete);
        host_->runMacro(u"OpenFile"_s, {pptx.writtenPath()});
        expectLongAnswerOnOneLine();
        expectSame(built, held().mid(1));
    }
}

TEST_F(Impress, HoldsWhatIsWishedForAsItReadsItFromThePptxFile)
{
    wishes_ = {true, true, true, true, 30, true};
    name_ = u"Physics 2026-11-21"_s;
    topics_ = {u"Ümlaut & O'Brien"_s, u"Second"_s};
    const QString killed = QDir::temp().filePath(u"varnholt-slides-killed"_s);
    const QString living = QDir::temp().filePath(u"varnholt-slides-living"_s);
    EXPECT_TRUE(QDir().mkpath(killed + u"/rest"_s) && QDir().mkpath(living));
    const FolderLock lock(living.toStdString());
    QStringList built = Impress::built(true, [] {
        const QString pdf = host_->runMacro(u"StorePdf"_s, {host_->filePath(u"twins.pdf"_s)});
        const QByteArray pages = output(u"pdftotext"_s, {pdf, u"-"_s});
        EXPECT_EQ(pages.count('\f'), 5);
        EXPECT_FALSE(pages.left(pages.indexOf('\f')).contains("a<b"));
        EXPECT_TRUE(pages.mid(pages.indexOf('\f')).contains("Answer: a<b"));
    });
    EXPECT_FALSE(QDir(killed).exists());
    EXPECT_TRUE(QDir().rmdir(living)) << "another program may still need it";
    // Without a place for the file the calls are made.
    const QByteArray temporary = qgetenv("TMPDIR");
    EXPECT_EQ(Impress::built(
                  true, [] {}, [] { qputenv("TMPDIR", "/no/such/folder"); }),
              built);
    qputenv("TMPDIR", temporary.isEmpty() ? "/tmp" : temporary);
    EXPECT_EQ(built.takeFirst(), u"document;5;1;True;False;True");
    EXPECT_EQ(built.first(), u"slide;33867;19050;19;1;30;Answer: "_s + longAnswer);
    EXPECT_TRUE(built.at(1).endsWith(u";Question 1, Ümlaut & O'Brien"));
    EXPECT_TRUE(built.at(2).contains(u";Question 1, Ümlaut & O'Brien;"));
    PptxSettings settings;
    settings.programFolder = folder_.path();
    PptxProgram pptx(settings);
    EXPECT_EQ(build(pptx, true, true).end, End::Complete);
    host_->runMacro(u"OpenFile"_s, {pptx.writtenPath()});
    expectSame(built, held().mid(1));
}

TEST_F(Impress, AMissingPictureAClosedAndAKilledOfficeAbort)
{
    const QList<std::function<void()>> accidents{[this] { QFile::remove(picture(2)); },
                                                 [] { host_->runMacro(u"CloseAll"_s); },
                                                 [] { host_->signalOffice(SIGKILL); }};
    for (qsizetype i = 0; i < 2 * accidents.size(); ++i) {
        const auto& happens = accidents.at(i / 2);
        const bool file = i % 2 != 0;
        if (file && i / 2 == 1) {
            continue; // there is nothing yet to be closed
        }
        const auto secondSlide = [&](int slide, int) {
            if (slide == 2) {
                happens();
            }
        };
        const BuildOutcome outcome = build(*start(settings(file)), true, true, secondSlide);
        EXPECT_EQ(outcome.end, End::Aborted);
        EXPECT_EQ(outcome.number, file && QFile::exists(picture(2)) ? 0 : 2);
        EXPECT_EQ(outcome.pictureIsBad, !QFile::exists(picture(2)));
        if (outcome.pictureIsBad) {
            const QStringList lines = held();
            EXPECT_TRUE(lines.first().startsWith(u"document;2;2;")) << "slides, the one on show";
            EXPECT_TRUE(lines.last().endsWith(u";;")) << "a number box without its number";
            writePicture(picture(2), {60, 35}, 150);
        }
    }
    EXPECT_NO_THROW(start()) << "the next build starts another one";
}

TEST_F(Impress, AFrozenOfficeCanBeLeftAlone)
{
    for (const bool file : {false, true}) {
        ImpressSettings settings = Impress::settings(file);
        bool frozen = false;
        int asked = 0;
        settings.keepGoing = [&] { return !frozen || ++asked < 3; };
        {
            const auto program = start(settings);
            const auto freezes = [&](int slide, int) {
                if (slide == 2) {
                    host_->signalOffice(SIGSTOP);
                    frozen = true;
                }
            };
            EXPECT_EQ(build(*program, true, true, freezes).end, End::Cancelled);
            EXPECT_EQ(asked, 3);
            EXPECT_THROW(program->appendBlankSlide(), Cancelled);
        }
        EXPECT_THROW(start(settings), Cancelled);
        host_->signalOffice(SIGCONT);
        host_->signalOffice(SIGKILL);
        EXPECT_TRUE(host_->ends());
    }
}

TEST_F(Impress, AnOfficeStartedAheadServesTheBuildAndStaysOnlyWhereItIsUsed)
{
    PresentationSettings settings;
    settings.program = u"impress"_s;
    settings.impress = host_->settings();
    const QString starter = QLatin1String(officeStarterName);
    const auto fresh = [] {
        host_->signalOffice(SIGKILL);
        ASSERT_TRUE(host_->ends());
    };
    const QList<std::pair<bool, std::function<void(PresentationPrograms&)>>> uses{
        {false, [](PresentationPrograms&) {}},
        {false,
         [](PresentationPrograms&) {
             while (host_->processes(u"soffice.bin"_s).isEmpty()) {
             }
         }},
        {true,
         [this](PresentationPrograms& programs) {
             // Joins a start that is under way.
             EXPECT_EQ(build(*programs.start(SlidesInto::Program, {}), true, true).end,
                       End::Complete);
         }},
        {true, [this](PresentationPrograms&) { host_->runMacro(u"OpenFile"_s, {picture(1)}); }}};
    for (const auto& [stays, use] : uses) {
        fresh();
        DefaultPresentationPrograms programs(folder_.path(), settings);
        std::shared_ptr<void> ready = programs.prepare();
        ASSERT_NE(ready, nullptr);
        EXPECT_EQ(programs.prepare(), ready) << "one start for all who want it";
        while (host_->processes(starter).isEmpty()) {
        }
        use(programs);
        ready.reset();
        EXPECT_TRUE(host_->ends(starter));
        EXPECT_EQ(!host_->processes().isEmpty(), stays);
    }
    // One that runs already is left alone, with nothing open in it as well.
    host_->runMacro(u"CloseAll"_s);
    DefaultPresentationPrograms programs(folder_.path(), settings);
    std::shared_ptr<void> ready = programs.prepare();
    while (host_->processes(starter).isEmpty()) {
    }
    ready.reset();
    EXPECT_TRUE(host_->ends(starter));
    EXPECT_FALSE(host_->processes().isEmpty());
}

TEST_F(Impress, AnOfficeThatDoesNotStartIsAnError)
{
    host_->signalOffice(SIGKILL);
    const QString silent = folder_.filePath(u"silent"_s);
    QFile script(silent);
    ASSERT_TRUE(script.open(QIODevice::WriteOnly));
    script.write("#!/bin/sh\necho $$ > \"$0.pid\"\nexec sleep 20\n");
    script.setPermissions(script.permissions() | QFile::ExeOwner);
    script.close();
    addQuestion(u"A"_s);
    PresentationSettings settings;
    settings.program.clear();
    settings.hasDisplay = [] { return true; };
    settings.open = [](const QString&) { return true; };
    settings.impress.handOverMs = 100;
    for (const auto& [program, reason] :
         {std::pair{silent, u"The office suite does not answer."_s},
          std::pair{u"/bin/false"_s, u"The office suite ends as soon as it is started."_s}}) {
        settings.impress.program = program;
        settings.impress.startLimitMs = program == silent ? 1500 : 60'000;
        // Meanwhile the teacher has her slides in a file.
        DefaultPresentationPrograms programs(folder_.path(), settings);
        const auto file = programs.start(SlidesInto::Program, {});
        ASSERT_NE(dynamic_cast<PptxProgram*>(file.get()), nullptr);
        const QString notice = build(*file, true, true).notice;
        EXPECT_TRUE(notice.startsWith(u"Impress did not start: %1\n\nThe slides were written to a "
                                      "presentation file instead."_s.arg(reason)))
            << qPrintable(notice);
    }
    QFile pid(silent + u".pid"_s);
    ASSERT_TRUE(pid.open(QIODevice::ReadOnly));
    QFile commandLine(u"/proc/%1/cmdline"_s.arg(pid.readAll().toInt()));
    EXPECT_TRUE(!commandLine.open(QIODevice::ReadOnly) || commandLine.readAll().isEmpty())
        << "what never answered is ended";
    settings.impress.program = u"/no/such/program"_s;
    EXPECT_THROW(start(settings.impress), Error);
}

} // namespace
