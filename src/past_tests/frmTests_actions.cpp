// What the window of past tests does with them.
#include "past_tests/frmTests.h"

#include "library/Library.h"
#include "library/test_pictures.h"
#include "manage/undo_words.h"
#include "selection/QuestionStrip.h"
#include "selection/build_run.h"
#include "selection/draw_wishes.h"
#include "selection/frmSelect.h"
#include "selection/past_build.h"
#include "selection/test_record.h"
#include "store/catalogue.h"
#include "toolkit/HintLabel.h"
#include "toolkit/controls.h"

#include <QPushButton>
#include <QTreeWidget>

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace varnholt {

void frmTests::cmdOpenAgain_Click()
{
    if (const PastTest* test = current()) {
        const PastTest copy = *test;
        tryTo([&] { MakeTestAgain(window(), services_, library_, copy); });
    }
}

void frmTests::cmdNewVersion_Click()
{
    if (const PastTest* test = current()) {
        const PastTest copy = *test;
        const std::vector<PastTest> all = tests_;
        tryTo([&] { MakeNewVersion(window(), services_, library_, all, copy); });
    }
}

void frmTests::cmdChange_Click()
{
    const PastTest* chosen = current();
    if (!chosen || review_) {
        return;
    }
    const PastTest test = *chosen;
    tryTo([&] {
        state_ = {};
        state_.CurrentAssessmentNum = test.AssessmentNum;
        services_.messageBoxes->informEach(tr("Database Error"),
                                           LoadStructure(state_, library_.connection()));
        LoadQuestions(state_, library_.connection());
        // Its questions in their order, and behind them what can come in their place.
        std::unordered_map<std::int32_t, const QuestionRecord*> records;
        for (const QuestionRecord& question : state_.QuestionList) {
            records.emplace(question.SOLIndex, &question);
        }
        Draw draw;
        for (const TestItem& item : library_.pastTests().items(test.TestID)) {
            if (const auto found = records.find(item.SOLIndex); found != records.end()) {
                draw.DrawPool.append({*found->second});
                records.erase(found);
            }
        }
        if (draw.DrawPool.isEmpty()) {
            throw Error(tr("None of the questions of this test is in the library any more."));
        }
        const std::int32_t taken = draw.DrawPool.upperBound();
        draw.seed = test.seed;
        List1<DrawnQuestion> others;
        for (const QuestionRecord& question : state_.QuestionList) {
            if (records.contains(question.SOLIndex)) {
                others.append({question});
            }
        }
        ShuffleDrawPool(others, *services_.random);
        for (const DrawnQuestion& question : others) {
            draw.DrawPool.append(question);
        }
        // Of a draw that was kept in the middle of its review the others are still to come.
        draw.RequestedQuestionCount =
            std::clamp(test.kind == TestKind::Kept ? test.options.asked : taken, taken,
                       draw.DrawPool.upperBound());
        const auto newTest = [this, test](const Draw& judged) {
            NewTest changed{
                NameOfTest(state_, judged), test.AssessmentNum, test.className, judged.seed, {},
                ItemsOf(state_, judged)};
            changed.options.topicLine = test.options.topicLine;
            changed.options.answerKey = test.options.answerKey;
            changed.options.slides = test.options.slides;
            return changed;
        };
        const auto build = [this, test, newTest](QWidget* over, const Draw& judged) {
            TestRecord record(library_, newTest(judged));
            const BuildOutcome outcome =
                RunBuild(over, services_, state_, judged,
                         {test.options.topicLine, test.options.answerKey, test.options.slides});
            FinishTest(services_, record, outcome);
            return outcome;
        };
        constexpr std::int64_t millisecondsPerSecond = 1000;
        const auto uses = [this, book = library_.useBook(test.AssessmentNum),
                           now = services_.clock->millisecondsSinceEpoch() /
                                 millisecondsPerSecond](const QuestionRecord& question) {
            return UseInWords(library_, book, question.SOLIndex, now);
        };
        const auto keep = [this, newTest](const Draw& judged) {
            return tryTo([&] {
                NewTest kept = newTest(judged);
                kept.options.asked = judged.RequestedQuestionCount;
                KeepTest(library_, std::move(kept));
            });
        };
        setEnabled(false);
        review_ = new frmSelect(
            services_, state_, Review(std::move(draw)),
            {build, uses, keep, [this] { return services_.presentationPrograms->prepare(); }},
            window());
        connect(review_, &frmSelect::unloaded, this, [this] {
            setEnabled(true);
            lstTests_->setFocus();
        });
        review_->Form_Load();
    });
}

void frmTests::cmdShow_Click()
{
    if (const PastTest* test = current()) {
        const PastTest copy = *test;
        tryTo([&] { ShowTestAgain(window(), services_, library_, copy); });
    }
}

void frmTests::cmdPaper_Click()
{
    if (const PastTest* test = current()) {
        const PastTest copy = *test;
        tryTo([&] { PrintTestAgain(window(), services_, library_, copy); });
    }
}

void frmTests::cmdUnused_Click()
{
    if (const PastTest* test = current()) {
        const bool used = test->options.unused;
        tryTo([&] {
            library_.setTestUsed(test->TestID, used);
            lblNote_->say(used ? tr("The questions of this test count as used again.")
                               : tr("The questions of this test do not count as used. Ctrl+Z "
                                    "takes that back."));
        });
    }
}

void frmTests::cmdDelete_Click()
{
    if (const PastTest* test = current(); test && cmdDelete_->isEnabled()) {
        const QString name = test->name;
        tryTo([&] {
            library_.deleteTest(test->TestID);
            lblNote_->say(tr("“%1” is in the trash. Ctrl+Z brings it back.").arg(name));
        });
    }
}

void frmTests::noteOutcome(Outcome outcome)
{
    std::vector<std::int64_t> useIds;
    const std::vector<std::int32_t> keys = lstQuestions_->selectedKeys();
    for (const std::int32_t key : keys) {
        if (const auto use = uses_.find(key); use != uses_.end()) {
            useIds.push_back(use->second.UseID);
        }
    }
    tryTo([&] { library_.recordOutcome(useIds, outcome); });
    // One after the other without another key.
    if (keys.size() == 1 && lstQuestions_->hasFocus() &&
        lstQuestions_->currentRow() + 1 < lstQuestions_->count()) {
        lstQuestions_->setCurrentRow(lstQuestions_->currentRow() + 1,
                                     QItemSelectionModel::ClearAndSelect);
    }
}

void frmTests::undo()
{
    tryTo([this] { lblNote_->say(UndoMemoryStep(library_)); });
}

void frmTests::rename(int row)
{
    if (filling_ || row < 0 || row >= static_cast<int>(tests_.size())) {
        return;
    }
    const PastTest& test = tests_[static_cast<std::size_t>(row)];
    const QString name = lstTests_->topLevelItem(row)->text(Name);
    if (name != test.name) {
        whenEditorHasGone(this, [this, key = test.TestID, name] {
            tryTo([&] { library_.rename({ItemKind::Test, key}, name); });
            reload();
        });
    }
}

} // namespace varnholt
