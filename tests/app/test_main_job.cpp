// The main job from the supplied library to slides, through the real windows: once into a
// .pptx file, once into Impress on a display of its own. The result is read back from the PDF
// that the office makes of it.

#include "app/frmAssessment.h"
#include "presentation/default_programs.h"
#include "presentation/office_host.h"
#include "store/catalogue.h"
#include "store/library_file.h"
#include "support/fakes.h"
#include "support/gui.h"
#include "toolkit/ComboBox.h"
#include "toolkit/ListBox.h"
#include "toolkit/desktop_services.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>

#include <gtest/gtest.h>

namespace varnholt {
namespace {

using test::click;
using test::control;

QString outputOf(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForFinished(60'000) && process.exitCode() == 0)
        << program.toStdString();
    return QString::fromUtf8(process.readAllStandardOutput());
}

class MainJob : public testing::TestWithParam<const char*>
{
protected:
    static void SetUpTestSuite() { host = std::make_unique<test::OfficeHost>(); }
    static void TearDownTestSuite() { host.reset(); }

    void SetUp() override
    {
        ASSERT_EQ(host->problem().toStdString(), "");
        services.programFolder = ChooseProgramFolder({folder.filePath(QStringLiteral("none")),
                                                      folder.filePath(QStringLiteral("library")),
                                                      QStringLiteral(VARNHOLT_SUPPLIED_LIBRARY)});
        PresentationSettings settings;
        settings.program = QLatin1String(GetParam());
        settings.impress = host->settings();
        settings.open = [this](const QString& path) {
            written = path;
            return true;
        };
        programs = std::make_unique<DefaultPresentationPrograms>(messages, services.programFolder,
                                                                 settings);
        services.messageBoxes = &messages;
        services.clock = &clock;
        services.random = &random;
        services.presentationPrograms = programs.get();
        frame = std::make_unique<frmAssessment>(services, state, QString());
        frame->show();
        control<QAction>(frame.get(), "mnuCreate")->trigger();
    }

    /// Pages and text of what stands in the presentation program now.
    [[nodiscard]] std::pair<int, QString> read()
    {
        QString pdf;
        if (written.isEmpty()) {
            EXPECT_EQ(host->runMacro(QStringLiteral("StorePdf")).toStdString(), "stored");
            pdf = host->filePath(QStringLiteral("held.pdf"));
            host->runMacro(QStringLiteral("CloseAll"));
        } else {
            host->convertToPdf(written);
            pdf = host->filePath(QFileInfo(written).completeBaseName() + QStringLiteral(".pdf"));
        }
        const QString info = outputOf(QStringLiteral("pdfinfo"), {pdf});
        const int pages = info.section(QStringLiteral("Pages:"), 1).section(u'\n', 0, 0).toInt();
        return {pages, outputOf(QStringLiteral("pdftotext"),
                                {QStringLiteral("-layout"), pdf, QStringLiteral("-")})};
    }

    /// Each chosen question has its numbered slide with its topic, and its answer on the key.
    void expectSlides(const List1<QuestionRecord>& chosen, const QString& text)
    {
        int number = 0;
        const QStringList pages = text.split(u'\f');
        const QString key = pages.mid(chosen.upperBound()).join(u'\n');
        for (const QuestionRecord& question : chosen) {
            const QString& page = pages.at(number++);
            EXPECT_TRUE(page.contains(QStringLiteral("#%1").arg(number))) << page.toStdString();
            EXPECT_TRUE(page.contains(GetTopicText(state, question))) << page.toStdString();
            EXPECT_TRUE(key.contains(QStringLiteral("%1) %2").arg(number).arg(question.Answer)))
                << number << ' ' << question.Answer.toStdString() << '\n'
                << key.toStdString();
        }
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
    const int available = state.SelectedQuestionCount;
    ASSERT_GT(available, 12);

    // Without review: the first twelve as drawn.
    control<QRadioButton>(frame.get(), "optSelectNo")->setChecked(true);
    control<QLineEdit>(frame.get(), "txtQuestions")->setText(QStringLiteral("12"));
    click(frame.get(), "cmdCreate");
    List1<QuestionRecord> chosen;
    for (int i = 1; i <= 12; ++i) {
        chosen.append(state.DrawPool(i));
        EXPECT_NE(state.DrawPool(i).SubtopicNum, subTopics->itemData(0));
    }
    const auto [pages, text] = read();
    EXPECT_EQ(pages, 13);
    expectSlides(chosen, text);

    // With review: every other one, until three are included.
    control<QRadioButton>(frame.get(), "optSelectYes")->setChecked(true);
    control<QLineEdit>(frame.get(), "txtQuestions")->setText(QStringLiteral("3"));
    click(frame.get(), "cmdCreate");
    auto* review = control<QWidget>(frame.get(), "frmSelect");
    EXPECT_FALSE(frame->childWindow()->isEnabled());
    chosen.clear();
    for (int i = 1; i <= 6; ++i) {
        EXPECT_EQ(control<QLabel>(review, "lblCount2")->text().toStdString(),
                  "Questions Left to View: " + std::to_string(available - i + 1));
        if (i % 2 == 0) {
            chosen.append(state.DrawPool(i));
        }
        click(review, i % 2 == 0 ? "cmdInclude" : "cmdExclude");
    }
    EXPECT_TRUE(frame->childWindow()->isEnabled());
    const auto [reviewedPages, reviewedText] = read();
    EXPECT_EQ(reviewedPages, 4);
    expectSlides(chosen, reviewedText);
}

INSTANTIATE_TEST_SUITE_P(Into, MainJob, testing::Values("pptx", "impress"),
                         [](const auto& program) { return std::string(program.param); });

} // namespace
} // namespace varnholt
