#include "library/Library.h"
#include "library/test_pictures.h"
#include "past_tests/frmTests.h"
#include "presentation/pptx/pptx_program.h"
#include "selection/build_run.h"
#include "selection/past_build.h"
#include "selection/test_record.h"
#include "store/catalogue.h"
#include "support/gui.h"
#include "support/test_services.h"

#include <QApplication>
#include <QDir>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeWidget>

#include <gtest/gtest.h>

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
            const QString picture = library.picturePath(key);
            switch (upTo(3)) {
            case 0:
                memory.editQuestion(key, 1, 1, u"new %1"_s.arg(upTo(99)));
                break;
            case 1:
                memory.editQuestion(key, 1 + upTo(2), 1 + upTo(5), u"A"_s);
                break;
            case 2:
                memory.deleteQuestion(key);
                break;
            default:
                QDir().mkpath(library.folder() + u"/Files/Old"_s);
                QFile::rename(picture, KeptPictureFile(library.folder(), key, PictureSha(picture)));
                testPicture({40, 30}, upTo(9999)).save(picture);
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
    list->setFocus();
    EXPECT_EQ(shown(), first.name + u"|Slides"_s);
    QTest::keyClick(list, Qt::Key_Return);
    EXPECT_EQ(shown(), u"%1|Slides/%1|Slides"_s.arg(first.name));
    list->setCurrentItem(list->topLevelItem(1));
    click(&window, "cmdNewVersion");
    list->setCurrentItem(list->topLevelItem(2));
    click(&window, "cmdNewVersion");
    EXPECT_TRUE(shown().contains(u" – version C"_s));
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
    EXPECT_TRUE(std::is_permutation(versionC.begin(), versionC.end(), drawn.begin(), drawn.end()));

    list->setCurrentItem(list->topLevelItem(0));
    click(&window, "cmdUnused");
    EXPECT_TRUE(shown().contains(u"Slides, not used"_s));
    QTest::keyClick(list, Qt::Key_Delete);
    EXPECT_FALSE(shown().contains(u"version C"_s));
    QTest::keyClick(list, Qt::Key_Z, Qt::ControlModifier);
    QTest::keyClick(list, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(shown().contains(u"version C|Slides/"_s));
    QTest::keyClick(list, Qt::Key_F2);
    QWidget* editor = list->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    QTest::keyClicks(editor, u"Rosa's"_s);
    QTest::keyClick(editor, Qt::Key_Return);
    EXPECT_TRUE(shown().startsWith(u"Rosa's|"_s));
}

} // namespace
} // namespace varnholt::test
