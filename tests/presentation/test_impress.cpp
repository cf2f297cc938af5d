// Impress itself, on a display and a profile of its own. What it holds is read back by the
// office's macro language and from the PDF it makes.

#include "presentation/build_fixture.h"
#include "presentation/default_programs.h"
#include "presentation/impress/impress_plugin.h"
#include "presentation/office_host.h"
#include "presentation/package_reader.h"
#include "presentation/pptx/pptx_program.h"
#include "store/errors.h"

#include <QElapsedTimer>

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
        addQuestion(u"a<b & c"_s, u"Ümlaut & O'Brien - \U0001F600"_s);
        addQuestion(u"two\nlines\tand a tab"_s, QString(10'000, u'w'));
    }

    static std::unique_ptr<PresentationProgram> start(ImpressSettings settings = host_->settings())
    {
        return ImpressPlugin::instance().start(settings);
    }

    /// "kind;left;top;width;height;description;text" of each shape, the slides as "slide".
    static QList<QStringList> held()
    {
        QList<QStringList> lines;
        for (const QString& line : host_->runMacro(u"Dump"_s).split(u'\n', Qt::SkipEmptyParts)) {
            lines.append(line.split(u';'));
        }
        return lines;
    }

    static inline std::unique_ptr<OfficeHost> host_;
};

TEST_F(Impress, HoldsTheSameShapesAsThePptxFile)
{
    for (const bool topic : {false, true}) {
        {
            const auto program = start();
            ASSERT_EQ(build(*program, topic, true), BuildOutcome::complete);
        }
        PptxSettings settings;
        settings.programFolder = folder_.path();
        PptxProgram pptx(settings);
        ASSERT_EQ(build(pptx, topic, true), BuildOutcome::complete);
        const PackageReader package(pptx.writtenPath());

        QList<QStringList> lines = held();
        ASSERT_FALSE(lines.isEmpty());
        // Three slides, the first on show, changed, without a file, in a visible window.
        EXPECT_EQ(lines.takeFirst(),
                  (QStringList{u"document"_s, u"3"_s, u"1"_s, u"True"_s, u"False"_s, u"True"_s}));
        for (int slide = 1; slide <= 3; ++slide) {
            EXPECT_EQ(lines.takeFirst(),
                      (QStringList{u"slide"_s, u"33867"_s, u"19050"_s, u"20"_s}));
            for (const QList<qint64>& box : package.boxes(slide)) {
                const QStringList shape = lines.takeFirst();
                for (int side = 0; side < 4; ++side) {
                    constexpr double emuPerHundredthMm = 360;
                    EXPECT_NEAR(shape.at(1 + side).toDouble(),
                                double(box.at(side)) / emuPerHundredthMm, 1)
                        << qPrintable(shape.join(u' ').left(200)) << ", side " << side;
                }
            }
        }
        EXPECT_TRUE(lines.isEmpty());
        host_->runMacro(u"CloseAll"_s);
    }
}

TEST_F(Impress, TextsAndPicturesAreInThePdfItMakes)
{
    {
        const auto program = start();
        ASSERT_EQ(build(*program, true, true), BuildOutcome::complete);
    }
    const QList<QStringList> shapes = held();
    EXPECT_EQ(shapes.at(2).last(), u"Ümlaut & O'Brien - \U0001F600");
    EXPECT_EQ(shapes.at(4).at(5), u"Question 1");
    EXPECT_EQ(shapes.at(6).last().size(), 10'000);
    EXPECT_EQ(shapes.last().last(), u"2) two|lines\tand a tab");

    host_->runMacro(u"StorePdf"_s);
    const QString pdf = host_->filePath(u"held.pdf"_s);
    EXPECT_TRUE(output(u"pdfinfo"_s, {pdf}).contains("Pages:           3\n"));
    const QByteArray text = output(u"pdftotext"_s, {u"-layout"_s, pdf, u"-"_s});
    for (const char* expected : {"Ümlaut & O'Brien", "#1", "#2", "Answer Key", "1) a<b & c"}) {
        EXPECT_TRUE(text.contains(expected)) << expected;
    }
    EXPECT_EQ(output(u"pdfimages"_s, {u"-list"_s, pdf}).count(" image "), 2);
    host_->runMacro(u"CloseAll"_s);
}

TEST_F(Impress, OpensThePptxFile)
{
    PptxSettings settings;
    settings.programFolder = folder_.path();
    settings.now = [] { return QDateTime(QDate(2026, 11, 21), QTime(14, 5)); };
    PptxProgram program(settings);
    ASSERT_EQ(build(program, true, true), BuildOutcome::complete);
    host_->convertToPdf(program.writtenPath());
    const QString pdf = host_->filePath(u"Varnholt 2026-11-21 14.05.pdf"_s);
    EXPECT_TRUE(output(u"pdfinfo"_s, {pdf}).contains("Pages:           3\n"));
    const QByteArray text = output(u"pdftotext"_s, {u"-layout"_s, pdf, u"-"_s});
    for (const char* expected : {"Ümlaut & O'Brien", "#1", "#2", "Answer Key", "1) a<b & c"}) {
        EXPECT_TRUE(text.contains(expected)) << expected;
    }
    EXPECT_EQ(output(u"pdfimages"_s, {u"-list"_s, pdf}).count(" image "), 2);
}

TEST_F(Impress, AMissingPictureAborts)
{
    addQuestion(u"C"_s);
    const auto program = start();
    boxes_.expectInform(abortTitle, abortText);
    EXPECT_EQ(build(*program, true, true), BuildOutcome::aborted);
    const QList<QStringList> shapes = held();
    EXPECT_EQ(shapes.first().at(1), u"3");
    EXPECT_EQ(shapes.last().last(), QString()) << "a number box without its number";
    host_->runMacro(u"CloseAll"_s);
}

TEST_F(Impress, ClosedOrKilledInMidBuildAborts)
{
    const QList<std::function<void()>> ends{[] { host_->runMacro(u"CloseAll"_s); },
                                            [] { host_->signalOffice(SIGKILL); }};
    for (const auto& end : ends) {
        const auto program = start();
        boxes_.expectInform(abortTitle, abortText);
        const BuildInput input{pool_, false, true, {}, [&](const QuestionRecord& question) {
                                   if (question.PictureIndex == 2) {
                                       end();
                                   }
                                   return picture(question.PictureIndex);
                               }};
        EXPECT_EQ(BuildPresentation(*program, input, boxes_), BuildOutcome::aborted);
    }
    EXPECT_NO_THROW(start()) << "the next build starts another one";
}

TEST_F(Impress, AFrozenOfficeCanBeLeftAlone)
{
    ImpressSettings settings = host_->settings();
    settings.patienceMs = 300;
    int asked = 0;
    int alive = 0;
    settings.keepWaiting = [&] { return ++asked < 2; };
    settings.alive = [&] { ++alive; };
    {
        const auto program = start(settings);
        program->addPresentation();
        asked = 0;
        alive = 0;
        host_->signalOffice(SIGSTOP);
        EXPECT_THROW(program->addBlankSlide(1), Cancelled);
        EXPECT_EQ(asked, 2);
        EXPECT_GT(alive, 10);
        EXPECT_THROW(program->addBlankSlide(1), Cancelled);
    }
    EXPECT_THROW(start(settings), Cancelled);
    host_->signalOffice(SIGCONT);
    host_->signalOffice(SIGKILL);
}

TEST_F(Impress, AnOfficeThatDoesNotStartIsAnError)
{
    host_->signalOffice(SIGKILL);
    for (const QString& program : {u"/bin/false"_s, u"/no/such/program"_s}) {
        ImpressSettings settings = host_->settings();
        settings.program = program;
        settings.handOverMs = 100;
        EXPECT_THROW(start(settings), Error) << qPrintable(program);
    }
    // Meanwhile the teacher has her slides in a file.
    PresentationSettings settings;
    settings.hasDisplay = [] { return true; };
    settings.program.clear();
    settings.impress.program = u"/bin/false"_s;
    settings.impress.handOverMs = 100;
    boxes_.expectInform(u"Presentation"_s, u"Impress did not start: The office suite ends as soon "
                                           "as it is started.\n\nThe slides are written to a "
                                           "presentation file instead."_s);
    DefaultPresentationPrograms programs(boxes_, folder_.path(), settings);
    EXPECT_NE(dynamic_cast<PptxProgram*>(programs.start().get()), nullptr);
}

} // namespace
