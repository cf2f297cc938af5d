#include "selection/past_build.h"

#include "library/Library.h"
#include "library/test_pictures.h"
#include "selection/build_run.h"
#include "selection/test_record.h"
#include "store/services.h"

#include <QCoreApplication>

#include <unordered_map>

namespace varnholt {

namespace {

struct Words
{
    Q_DECLARE_TR_FUNCTIONS(PastBuild)
};

void takeNewAnswers(std::vector<TestItem>& items, const std::vector<ChangedAnswer>& changed)
{
    for (TestItem& item : items) {
        for (const ChangedAnswer& answer : changed) {
            if (answer.position == item.position) {
                item.answer = answer.answer;
            }
        }
    }
}

} // namespace

BuildOutcome MakeTestAgain(QWidget* window, Services& services, Library& library,
                           const PastTest& test)
{
    std::vector<TestItem> items = library.pastTests().items(test.TestID);
    const std::vector<ChangedAnswer> changed = ChangedAnswers(library.connection(), items);
    if (!changed.empty() &&
        services.messageBoxes->yesNo(Words::tr("Past Tests"),
                                     Words::tr("%n answer(s) have changed since. Use the new ones?",
                                               nullptr, static_cast<int>(changed.size())),
                                     MessageBoxes::Answer::Yes)) {
        takeNewAnswers(items, changed);
    }
    const Draw draw = DrawOf(items);
    std::unordered_map<std::int32_t, const TestItem*> itemOf;
    for (const TestItem& item : items) {
        itemOf.emplace(item.SOLIndex, &item);
    }
    NewTest again{test.name, test.AssessmentNum, test.className, test.seed, test.options, items};
    again.options.unused = false;
    TestRecord record =
        test.kind == TestKind::Kept ? TestRecord(library, test.TestID) : TestRecord(library, again);
    const BuildOutcome outcome = RunBuild(
        window, services,
        {draw.DrawPool, test.options.topicLine, test.options.answerKey,
         [&](const QuestionRecord& question) { return itemOf.at(question.SOLIndex)->topicText; },
         [&](const QuestionRecord& question) {
             return FindTestPicture(library.programFolder(), *itemOf.at(question.SOLIndex));
         }});
    FinishTest(services, record, outcome);
    return outcome;
}

void FinishTest(Services& services, TestRecord& record, const BuildOutcome& outcome)
{
    if (outcome.end != BuildOutcome::End::Complete) {
        return;
    }
    record.complete(TestKind::Slides);
    if (!record.failure().isEmpty()) {
        services.messageBoxes->inform(
            Words::tr("Past Tests"),
            Words::tr("The slides are there, but the library cannot remember the test: %1")
                .arg(record.failure()));
    }
}

} // namespace varnholt
