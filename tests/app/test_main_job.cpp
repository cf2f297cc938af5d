// The main job from the supplied library to slides, through the real windows: once into a
// .pptx file, once into Impress on a display of its own. The result is read back from the PDF
// that the office makes of it.

#include "app/frmAssessment.h"
#include "presentation/default_programs.h"
#include "presentation/office_host.h"
#include "presentation/package_reader.h"
#include "selection/frmSelect.h"
#include "store/catalogue.h"
#include "store/library_file.h"
#include "support/fakes.h"
#include "support/gui.h"
#include "toolkit/ListBox.h"
#include "toolkit/desktop_services.h"

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>

#include <gtest/gtest.h>

namespace varnholt {
namespace {

using namespace Qt::StringLiterals;
using test::click;
using test::control;

class MainJob : public testing::TestWithParam<const char*>
{
protected:
    static void SetUpTestSuite() { host = std::make_unique<test::OfficeHost>(); }
    static void TearDownTestSuite() { host.reset(); }

    void SetUp() override
    {
        ASSERT_EQ(host->problem().toStdString(), "");
        services.programFolder =
            ChooseProgramFolder({folder.filePath(u"none"_s), folder.filePath(u"library"_s),
                                 QStringLiteral(VARNHOLT_SUPPLIED_LIBRARY)});
        PresentationSettings settings;
        settings.program = QLatin1String(GetParam());
        settings.impress = host->settings();
        settings.open = [this](const QString& path) {
            written = path;
            return true;
        };
        programs = std::make_unique<DefaultPresentationPrograms>(services.programFolder, settings);
        services.messageBoxes = &messages;
        services.clock = &clock;
        services.random = &random;
        services.presentationPrograms = programs.get();
        frame = std::make_unique<frmAssessment>(services, state, QString());
        frame->show();
        control<QAction>(frame.get(), "mnuCreate")->trigger();
    }

    /// What Impress holds, or reads from the file, has a numbered slide with its topic and its
    /// picture for each chosen question, and then the key with its answer.
    void expectSlides(const List1<QuestionRecord>& chosen)
    {
        if (!written.isEmpty()) {
            host->runMacro(u"OpenFile"_s, {written});
        }
        const QString pdf = host->runMacro(u"StorePdf"_s, {host->filePath(u"held.pdf"_s)});
        host->runMacro(u"CloseAll"_s);
        const QByteArray text = test::output(u"pdftotext"_s, {u"-layout"_s, pdf, u"-"_s});
        const QStringList pages = QString::fromUtf8(text).split(u'\f', Qt::SkipEmptyParts);
        ASSERT_EQ(pages.size(), chosen.upperBound() + 1) << text.constData();
        int number = 0;
        for (const QuestionRecord& question : chosen) {
            const QString& page = pages.at(number++);
            EXPECT_TRUE(page.contains(u"#%1"_s.arg(number))) << page.toStdString();
            EXPECT_TRUE(page.contains(GetTopicText(state, question))) << page.toStdString();
            EXPECT_TRUE(pages.last().contains(u"%1) %2"_s.arg(number).arg(question.Answer)))
                << number << ' ' << question.Answer.toStdString() << '\n'
                << pages.last().toStdString();
        }
        EXPECT_EQ(test::output(u"pdfimages"_s, {u"-list"_s, pdf}).count(" image "), number);
    }

    static inline std::unique_ptr<test::OfficeHost> host;
    QTemporaryDir folder;
    test::ScriptedMessageBoxes messages;
    SystemClock clock;
    SplitMix64 random;
    Services services;
    ProgramState state;
    std::unique_ptr<DefaultPresentationPrograms> programs;
    std::unique_ptr<frmAssessment> frame;
    QString written;
};

TEST_P(MainJob, FromTheSuppliedLibraryToSlides)
{
    auto* topics = control<ListBox>(frame.get(), "lstTopics");
    auto* subTopics = control<ListBox>(frame.get(), "lstSubTopics");
    click(frame.get(), "cmdClearAllTopics");
    topics->setSelected(0, true);
    topics->setSelected(2, true);
    topics->setListIndex(2);
    subTopics->setListIndex(0);
    subTopics->setSelected(0, false);
    Selection ticks;
    ticks.setTopics({{topics->itemData(0), true}, {topics->itemData(2), true}});
    ticks.SetSubTopicSelected(topics->itemData(2), subTopics->itemData(0), false);

    control<QRadioButton>(frame.get(), "optSelectNo")->setChecked(true);
    control<QLineEdit>(frame.get(), "txtQuestions")->setText(u"12"_s);
    SplitMix64 sameNumbers = random;
    click(frame.get(), "cmdCreate");
    const Draw draw =
        std::get<Draw>(DrawQuestions(state.QuestionList, ticks, u"12"_s, sameNumbers));
    List1<QuestionRecord> chosen;
    for (int i = 1; i <= 12; ++i) {
        chosen.append(draw.DrawPool(i));
    }
    expectSlides(chosen);

    // Again with the review: every other question, until three are included.
    control<QRadioButton>(frame.get(), "optSelectYes")->setChecked(true);
    control<QLineEdit>(frame.get(), "txtQuestions")->setText(u"3"_s);
    click(frame.get(), "cmdCreate");
    const QPointer<frmSelect> review = control<frmSelect>(frame.get(), "frmSelect");
    const Draw reviewed = review->draw();
    EXPECT_FALSE(frame->childWindow()->isEnabled());
    chosen.clear();
    for (int i = 1; i <= 6; ++i) {
        if (i % 2 == 0) {
            chosen.append(reviewed.DrawPool(i));
        }
        QApplication::processEvents(); // nothing is judged before it was painted
        click(review, i % 2 == 0 ? "cmdInclude" : "cmdExclude");
    }
    EXPECT_TRUE(frame->childWindow()->isEnabled());
    expectSlides(chosen);
}

// Impress first: the office's own libraries leak a little where the plug-in is not the first
// to connect, and the leak check would tell.
INSTANTIATE_TEST_SUITE_P(Into, MainJob, testing::Values("impress", "pptx"),
                         [](const auto& program) { return std::string(program.param); });

} // namespace
} // namespace varnholt
