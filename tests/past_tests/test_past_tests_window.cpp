#include "class_results/frmResults.h"
#include "class_results/results_csv.h"
#include "library/Library.h"
#include "library/test_pictures.h"
#include "library/test_versions.h"
#include "past_tests/frmTests.h"
#include "presentation/pptx/pptx_program.h"
#include "selection/build_run.h"
#include "selection/frmSelect.h"
#include "selection/past_build.h"
#include "selection/test_record.h"
#include "store/catalogue.h"
#include "store/errors.h"
#include "support/file_size_limit.h"
#include "support/gui.h"
#include "support/test_files.h"
#include "support/test_services.h"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QTimer>
#include <QTreeWidget>

#include <gtest/gtest.h>

#include <cerrno>
#include <random>

namespace varnholt::test {
namespace {

using namespace Qt::StringLiterals;

/// Writes presentations as files that all say the same date.
class PptxFiles : public PresentationPrograms
{
public:
    QTemporaryDir folder;

    [[nodiscard]] std::unique_ptr<PresentationProgram> start(SlidesInto, const KeepGoing&) override
    {
        PptxSettings settings;
        settings.programFolder = folder.path();
        settings.now = [] { return QDateTime::fromSecsSinceEpoch(1'700'000'000); };
        settings.open = [](const QString&) { return true; };
        return std::make_unique<PptxProgram>(settings);
    }
    /// The bytes of the one that was written since.
    QByteArray take() const
    {
        const QDir written(folder.filePath(u"Presentations"_s));
        const QStringList names = written.entryList(QDir::Files);
        QFile file(written.filePath(names.value(0)));
        const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        file.remove();
        return names.size() == 1 ? bytes : QByteArray();
    }
};

class PastTestsWindow : public testing::Test, protected TestWorld
{
protected:
    PastTestsWindow()
    {
        library.addGenerated(u"Maths"_s, 3, 2, 5, true);
        memory.open();
        state.CurrentAssessmentNum = 1;
        LoadCurrentAssessment(state, memory.connection());
    }

    int upTo(int most) { return std::uniform_int_distribution(0, most)(engine); }

    /// Makes the slides of a random draw, as after a review.
    BuildOutcome make(const SlideOptions& options)
    {
        LoadCurrentAssessment(state, memory.connection());
        Draw draw;
        for (const QuestionRecord& question : state.QuestionList) {
            draw.DrawPool.append({question, upTo(1) == 0});
        }
        draw.DrawPool(1).Selected = true;
        std::shuffle(draw.DrawPool.begin(), draw.DrawPool.end(), engine);
        draw.seed = engine();
        NewTest test{NameOfTest(state, draw), 1, u"10B"_s, draw.seed, {}, ItemsOf(state, draw)};
        test.options.topicLine = options.topicLine;
        test.options.answerKey = options.answerKey;
        clock.now += 60'000;
        TestRecord record(memory, test);
        const BuildOutcome outcome = RunBuild(nullptr, services, state, draw, options);
        FinishTest(services, record, outcome);
        return outcome;
    }
    PastTest newest() { return memory.pastTests().list(1).at(0); }

    /// Edits, files elsewhere, deletes and repaints questions.
    void change(int changes)
    {
        for (int i = 0; i < changes; ++i) {
            const int key = 1 + upTo(29);
            switch (upTo(4)) {
            case 0:
                memory.editQuestion(key, 1, 1, u"new %1"_s.arg(upTo(99)));
                break;
            case 1:
                memory.editQuestion(key, 1 + upTo(2), 1 + upTo(5), u"A"_s);
                break;
            case 2:
                memory.deleteQuestion(key);
                break;
            case 3:
                memory.rename({ItemKind::Topic, 1 + upTo(2)}, u"Topic %1"_s.arg(upTo(99)));
                break;
            default:
                memory.replacePicture(key, [this](const QString& path) {
                    testPicture({40, 30}, upTo(9999)).save(path);
                });
            }
        }
    }

    Library memory{library.folder(), clock};
    std::mt19937 engine{7};
};

TEST_F(PastTestsWindow, MakesTheSameBytesWhateverBecameOfTheQuestions)
{
    PptxFiles pptx;
    services.presentationPrograms = &pptx;
    for (int round = 0; round < 200; ++round) {
        if (round % 20 == 0) {
            library.sql(u"UPDATE Questions SET Available = 1"_s);
        }
        ASSERT_EQ(make({upTo(1) == 0, upTo(1) == 0}).end, BuildOutcome::End::Complete);
        const QByteArray first = pptx.take();
        ASSERT_FALSE(first.isEmpty());
        const PastTest test = newest();
        change(6);
        const auto changed =
            ChangedAnswers(memory.connection(), memory.pastTests().items(test.TestID)).size();
        if (changed > 0) {
            const auto one = u"1 answer has changed since. Use the new one?"_s;
            const auto more = u"%1 answers have changed since. Use the new ones?"_s.arg(changed);
            messages.expectYesNo(u"Past Tests"_s, changed == 1 ? one : more, false,
                                 MessageBoxes::Answer::Yes);
        }
        clock.now += 60'000;
        ASSERT_EQ(MakeTestAgain(nullptr, services, memory, test).end, BuildOutcome::End::Complete);
        ASSERT_EQ(pptx.take(), first) << round;
        EXPECT_EQ(memory.pastTests().items(newest().TestID), memory.pastTests().items(test.TestID));
    }
    EXPECT_EQ(memory.pastTests().list().size(), 400U);
}

TEST_F(PastTestsWindow, AKeptDrawBecomesTheTestThatIsMadeOfItWithItsNewAnswers)
{
    const QByteArray sha = PictureSha(library.picturePath(1));
    NewTest kept{u"kept"_s, 1, u"10B"_s, 1, {}, {{1, 1, u"old"_s, u"T"_s, sha}}};
    const std::int32_t key = memory.keepTest(kept);
    for (const bool complete : {false, true}) {
        presentations.cancelled = !complete;
        messages.expectYesNo(u"Past Tests"_s, u"1 answer has changed since. Use the new one?"_s,
                             true, MessageBoxes::Answer::Yes);
        MakeTestAgain(nullptr, services, memory, newest());
        kept.items.front().answer = complete ? u"A1"_s : u"old"_s;
        EXPECT_EQ(memory.pastTests().items(key), kept.items);
        EXPECT_EQ(memory.pastTests().uses(key).size(), complete ? 1U : 0U);
    }
    EXPECT_EQ(memory.pastTests().list().size(), 1U);
}

TEST_F(PastTestsWindow, ADrawKeptInTheMiddleOfItsReviewGoesOnWithTheOthers)
{
    memory.keepTest({u"kept"_s, 1, {}, 1, {true, true, 0, 0, false, 4}, {{1, 7, u"A7"_s, {}, {}}}});
    frmTests window(services, memory);
    present(window);
    click(&window, "cmdChange");
    const auto* review = window.findChild<frmSelect*>();
    ASSERT_NE(review, nullptr);
    EXPECT_EQ(review->draw().RequestedQuestionCount, 4);
    EXPECT_EQ(review->draw().DrawPool(1).SOLIndex, 7);
}

TEST_F(PastTestsWindow, PaperIsAUseWithTheClassThatStandsOnIt)
{
#ifndef VARNHOLT_PAPER
    GTEST_SKIP() << "built without tests on paper (libhpdf-dev)";
#endif
    memory.keepTest({u"kept"_s, 1, u"10B"_s, 1, {}, {{1, 1, u"A1"_s, u"T"_s, {}}}});
    files.answers = {library.folder() + u"/1"_s, library.folder() + u"/2"_s,
                     library.folder() + u"/3"_s};
    QTimer::singleShot(0, qApp, [] {
        auto* paper = QApplication::activeModalWidget();
        click(paper, "cmdSavePdf");
        click(paper, "cmdSavePdf");
        control<QLineEdit>(paper, "txtClass")->setText(u"10C"_s);
        click(paper, "cmdSavePdf");
        click(paper, "cmdClose");
    });
    PrintTestAgain(nullptr, services, memory, newest());
    EXPECT_EQ(library
                  .sql(u"SELECT ClassName || Kind || ' ' || count(*) FROM PlusTests JOIN "
                       "PlusClasses USING (ClassID) JOIN PlusUses USING (TestID) GROUP BY "
                       "TestID"_s)
                  .join(u','),
              u"10B3 1,10C3 1"_s);
    EXPECT_EQ(memory.pastTests().list().size(), 2U) << "the draw that was kept is one of them";
}

TEST_F(PastTestsWindow, WorksByKeyboard)
{
    make({});
    const PastTest first = newest();
    frmTests window(services, memory);
    window.show();
    auto* list = control<QTreeWidget>(&window, "lstTests");
    const auto shown = [&] {
        QApplication::processEvents();
        QStringList rows;
        for (int i = 0; i < list->topLevelItemCount(); ++i) {
            rows.append(list->topLevelItem(i)->text(2) + u'|' + list->topLevelItem(i)->text(4));
        }
        return rows.join(u'/');
    };
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window, 60'000));
    list->setFocus();
    EXPECT_EQ(shown(), first.name + u"|Slides"_s);
    QTest::keyClick(list, Qt::Key_Return);
    EXPECT_EQ(shown(), u"%1|Slides/%1|Slides"_s.arg(first.name));
    list->setCurrentItem(list->topLevelItem(1));
    click(&window, "cmdNewVersion");
    EXPECT_TRUE(shown().contains(u" – version B"_s));
    list->setCurrentItem(list->topLevelItem(0));
    click(&window, "cmdNewVersion");
    EXPECT_TRUE(shown().contains(u" – version C"_s));
    EXPECT_EQ(newest().options.versionOf, first.TestID);
    const auto items = [&](int row) {
        std::vector<std::int32_t> keys;
        const auto all = memory.pastTests().list();
        for (const TestItem& item :
             memory.pastTests().items(all[static_cast<std::size_t>(row)].TestID)) {
            keys.push_back(item.SOLIndex);
        }
        return keys;
    };
    EXPECT_TRUE(items(0) != items(1) && items(1) != items(3));
    const auto drawn = items(3);
    const auto versionC = items(0);
    const auto order = VersionOrder(first.seed, 2, first.questions).value();
    for (std::size_t i = 0; i < order.size(); ++i) {
        EXPECT_EQ(versionC.at(i), drawn[static_cast<std::size_t>(order[i])]) << "also made from B";
    }

    list->setCurrentItem(list->topLevelItem(0));
    auto* questions = control<QListWidget>(&window, "lstQuestions");
    const auto outcomes = [&] {
        QString result;
        for (const TestItem& item : memory.pastTests().items(newest().TestID)) {
            const auto uses = memory.pastTests().uses(newest().TestID);
            result += QString::number(static_cast<int>(uses.at(item.SOLIndex).outcome));
        }
        return result.left(4);
    };
    questions->setFocus();
    for (const char key : {'1', '3', '2', '2'}) {
        QTest::keyClick(questions, key);
        shown();
    }
    EXPECT_EQ(outcomes(), u"1322"_s) << "each key goes on to the next question";
    EXPECT_TRUE(questions->item(1)->text().endsWith(u"most knew it"_s));
    questions->setCurrentRow(0);
    QTest::keyClick(questions, Qt::Key_Right, Qt::ShiftModifier);
    QTest::keyClick(questions, Qt::Key_Delete);
    EXPECT_EQ(outcomes(), u"0022"_s);
    QTest::keyClick(questions, Qt::Key_Z, Qt::ControlModifier);
    shown();
    EXPECT_EQ(outcomes(), u"1322"_s);

    click(&window, "cmdUnused");
    list->setFocus();
    EXPECT_TRUE(shown().contains(u"Slides, not used"_s));
    QTest::keyClick(list, Qt::Key_Delete);
    EXPECT_FALSE(shown().contains(u"version C"_s));
    QTest::keyClick(list, Qt::Key_Z, Qt::ControlModifier);
    QTest::keyClick(list, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(shown().contains(u"version C|Slides/"_s));
    messages.expectInform(u"Past Tests"_s, u"A name is needed."_s);
    messages.beforeAnswer = [&] { EXPECT_TRUE(list->hasFocus()); };
    for (const QString& name : {u" "_s, u"Rosa's"_s}) {
        QTest::keyClick(list, Qt::Key_F2);
        QWidget* editor = QApplication::focusWidget();
        QTest::keyClicks(editor, name);
        QTest::keyClick(editor, Qt::Key_Return);
        QTest::qWait(0); // the editor goes
        shown();
    }
    EXPECT_TRUE(shown().contains(u"Rosa's|"_s));
    // A test made again is one of its own: it has its own versions, and was used.
    const PastTest again = memory.pastTests().list().at(2);
    memory.setTestUsed(again.TestID, false);
    const PastTest unused = memory.pastTests().list().at(2);
    MakeNewVersion(nullptr, services, memory, memory.pastTests().list(), unused);
    EXPECT_TRUE(newest().name.endsWith(u"version B"_s) && !newest().options.unused);
    MakeTestAgain(nullptr, services, memory, unused);
    EXPECT_FALSE(newest().options.unused);
}

TEST_F(PastTestsWindow, ShowsHowClassesDid)
{
    // Classes A, B, C; questions 1 to 4, with how many knew them at each use.
    const struct
    {
        QString className;
        std::int32_t key;
        Outcome outcome;
    } uses[] = {{u"C"_s, 1, Outcome::Unknown}, {u"A"_s, 1, Outcome::Most},
                {u"A"_s, 1, Outcome::Few},     {u"B"_s, 1, Outcome::Few},
                {u"A"_s, 2, Outcome::Few},     {u"B"_s, 2, Outcome::Half},
                {u"C"_s, 3, Outcome::Unknown}, {QString(), 30, Outcome::Few}};
    for (const auto& use : uses) {
        clock.now += 60'000;
        const std::int32_t show = memory.beginShow({u"test"_s, 1, use.className, 1, {}, {}});
        memory.recordOutcome({memory.recordUse(show, use.key)}, use.outcome);
    }
    const ClassResults results = ClassResults::read(memory, 1, clock.now / 1000);
    EXPECT_EQ(results.hardForAll(), 1);
    EXPECT_TRUE(results.questions[0].hardForAll);
    EXPECT_EQ(results.subtopics.front().used, (std::vector{3, 2, 2, 2}));
    EXPECT_EQ(results.subtopics.back().used, (std::vector{1, 0, 0, 0}));
    EXPECT_EQ(results.subtopics.back().questions, 5);
    const QByteArray csv = Csv({{u"=1+1"_s, u"-2"_s, u"a\"b,c"_s, u"x;y"_s, u"1\n2"_s}}, u',');
    EXPECT_EQ(csv, "\xEF\xBB\xBF'=1+1,-2,\"a\"\"b,c\",x;y,\"1\n2\"\r\n");
    EXPECT_EQ(QuestionRows(results)[1].back() + QuestionRows(results)[2].back(), u"yes"_s);
    EXPECT_LT(results.lastUse(1), results.lastUse(2));
    EXPECT_EQ(QuestionRows(results)[2].mid(6, 4).join(u'|').left(18), u"1|few knew it|2023"_s);

    frmResults window(services, memory, 1);
    window.show();
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window, 60'000));
    window.setFocus();
    auto* table = control<QTableView>(&window, "tblQuestions");
    const auto shown = [&](int row, int column) {
        QApplication::processEvents();
        return table->model()->index(row, column).data().toString().section(u" · "_s, 0, 1);
    };
    EXPECT_EQ(shown(0, 2) + u'/' + shown(0, 3), u"few knew it · 4 ×/few knew it · 2 ×"_s);
    click(&window, "chkHard");
    EXPECT_EQ(table->model()->rowCount(), 1);
    click(&window, "chkHard");
    table->setFocus();
    table->setCurrentIndex(table->model()->index(0, 2));
    QTest::keyClick(table, Qt::Key_F3);
    EXPECT_EQ(shown(0, 0) + shown(1, 0) + shown(2, 0) + shown(3, 0), u"A30A1A2A3"_s)
        << "what went worst, and what was used last";
    table->setCurrentIndex(table->model()->index(0, 4));
    QTest::keyClick(table, Qt::Key_F3);
    EXPECT_EQ(shown(0, 0) + shown(1, 0) + shown(2, 0), u"A1A2A30"_s) << "else as before";
    QTest::keyClick(table, Qt::Key_F3);
    table->setCurrentIndex(table->model()->index(28, 4));
    EXPECT_EQ(shown(28, 0) + shown(28, 4), u"A2half knew it · 1 ×"_s);
    QTest::keyClick(table, Qt::Key_3);
    EXPECT_EQ(shown(28, 4), u"most knew it · 1 ×"_s) << "and it stays where it is";
    EXPECT_EQ(table->currentIndex().row(), 29);
    QTest::keyClick(table, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(shown(28, 4), u"half knew it · 1 ×"_s);

    control<QTabWidget>(&window, "tabs")->setCurrentIndex(2);
    auto* classes = control<QTreeWidget>(&window, "lstClasses");
    classes->setFocus();
    EXPECT_EQ(classes->topLevelItem(0)->text(1), u"2 of 30"_s);
    QTest::keyClick(classes, Qt::Key_Delete);
    QApplication::processEvents();
    EXPECT_EQ(classes->topLevelItemCount(), 2);
    EXPECT_TRUE(control<QLabel>(&window, "lblNote")->isVisible());
    EXPECT_EQ(shown(29, 2), u"few knew it · 4 ×"_s) << "its uses go on counting";
    QTest::keyClick(classes, Qt::Key_Z, Qt::ControlModifier);
    QApplication::processEvents();
    EXPECT_EQ(classes->topLevelItemCount(), 3);
    memory.deleteQuestion(30);
    EXPECT_EQ(ClassResults::read(memory, 1, 0).questions.size(), 29U);
    const QString path = library.folder() + u"/out.csv"_s;
    control<QTabWidget>(&window, "tabs")->setCurrentIndex(1);
    files.answers = {path};
    click(&window, "cmdCsv");
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray saved = file.readAll();
    EXPECT_TRUE(saved.contains("Topic 1,Subtopic 1.1,5,3,2,2,2\r\n"));
    VARNHOLT_SKIP_ON_WINDOWS("the disk cannot be made to look full");
    QString told;
    try {
        const FileSizeLimit full(saved.size() - 10);
        SaveCsv(path, SubtopicRows(results));
    } catch (const Error& error) {
        told = error.message();
    }
    EXPECT_TRUE(told.contains(qt_error_string(EFBIG))) << qPrintable(told);
    EXPECT_EQ(readFile(path), saved);
}

} // namespace
} // namespace varnholt::test
