#include "selection/past_build.h"

#include "library/Library.h"
#include "library/test_pictures.h"
#include "library/test_versions.h"
#include "pictures/picture_files.h"
#include "selection/build_run.h"
#include "selection/paper_run.h"
#include "selection/test_record.h"
#include "show/show_run.h"
#include "store/catalogue.h"
#include "store/services.h"

#include <QCoreApplication>

#include <algorithm>
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

std::vector<TestItem> itemsToday(Services& services, Library& library, std::int32_t testId)
{
    std::vector<TestItem> items = library.pastTests().items(testId);
    const std::vector<ChangedAnswer> changed = ChangedAnswers(library.connection(), items);
    if (!changed.empty() &&
        services.messageBoxes->yesNo(Words::tr("Past Tests"),
                                     Words::tr("%n answer(s) have changed since. Use the new ones?",
                                               nullptr, static_cast<int>(changed.size())),
                                     MessageBoxes::Answer::Yes)) {
        takeNewAnswers(items, changed);
    }
    return items;
}

BuildOutcome make(QWidget* window, Services& services, Library& library, TestRecord& record,
                  const NewTest& test)
{
    const Draw draw = DrawOf(test.items);
    std::unordered_map<std::int32_t, const TestItem*> itemOf;
    for (const TestItem& item : test.items) {
        itemOf.emplace(item.SOLIndex, &item);
    }
    BuildOutcome outcome = RunBuild(
        window, services,
        {draw.DrawPool, test.options.topicLine, test.options.answerKey,
         [&](const QuestionRecord& question) { return itemOf.at(question.SOLIndex)->topicText; },
         [&](const QuestionRecord& question) {
             return FindTestPicture(library.programFolder(), *itemOf.at(question.SOLIndex));
         },
         test.options.slides, test.name});
    FinishTest(services, record, outcome);
    return outcome;
}

/// The test as it was drawn.
std::int32_t rootOf(const PastTest& test)
{
    return test.options.version > 0 ? test.options.versionOf : test.TestID;
}

NewTest sameTest(const PastTest& test, std::vector<TestItem> items)
{
    NewTest same{test.name, test.AssessmentNum, test.className,
                 test.seed, test.options,       std::move(items)};
    same.options.unused = false;
    return same;
}

/// Of a draw that was kept, else 0.
std::int32_t keptKey(const PastTest& test)
{
    return test.kind == TestKind::Kept ? test.TestID : 0;
}

} // namespace

BuildOutcome MakeTestAgain(QWidget* window, Services& services, Library& library,
                           const PastTest& test)
{
    const NewTest again = sameTest(test, itemsToday(services, library, test.TestID));
    TestRecord record(library, again, keptKey(test));
    return make(window, services, library, record, again);
}

void ShowTestAgain(QWidget* window, Services& services, Library& library, const PastTest& test)
{
    NewTest again = sameTest(test, itemsToday(services, library, test.TestID));
    ProgramState state;
    state.CurrentAssessmentNum = test.AssessmentNum;
    services.messageBoxes->informEach(Words::tr("Database Error"),
                                      LoadStructure(state, library.connection()));
    LoadQuestions(state, library.connection());

    ShowTest show;
    show.topicLine = test.options.topicLine;
    show.take = [&](const QuestionRecord& question) {
        return ShowItem{question, GetTopicText(state, question),
                        FindPictureFile(services.programFolder, question.PictureIndex)};
    };
    std::unordered_map<std::int32_t, QuestionRecord> records;
    List1<DrawnQuestion> others;
    for (const QuestionRecord& question : state.QuestionList) {
        records.emplace(question.SOLIndex, question);
    }
    for (const TestItem& item : again.items) {
        const auto found = records.find(item.SOLIndex);
        QuestionRecord question{item.SOLIndex, item.SOLIndex, 0, 0, {}};
        if (found != records.end()) {
            question = found->second;
            records.erase(found);
        }
        question.Answer = item.answer;
        show.items.push_back(
            {question, item.topicText, FindTestPicture(library.programFolder(), item)});
    }
    for (const QuestionRecord& question : state.QuestionList) {
        if (records.contains(question.SOLIndex)) {
            others.append({question});
        }
    }
    ShuffleDrawPool(others, *services.random);
    show.spares.assign(others.begin(), others.end());
    RunShow(window, services, library, std::move(show), std::move(again), keptKey(test));
}

void PrintTestAgain(QWidget* window, Services& services, Library& library, const PastTest& test)
{
    DrawnTest drawn{{}, sameTest(test, itemsToday(services, library, test.TestID))};
    drawn.paper.title = test.name;
    for (const TestItem& item : drawn.record.items) {
        drawn.paper.questions.push_back(
            {item.answer, item.topicText, FindTestPicture(library.programFolder(), item)});
    }
    RunPaper(window, services, library, std::move(drawn), keptKey(test));
}

std::optional<int> NextVersion(const std::vector<PastTest>& tests, const PastTest& test)
{
    int next = 1;
    for (const PastTest& other : tests) {
        if (other.options.version > 0 && rootOf(other) == rootOf(test)) {
            next = std::max(next, other.options.version + 1);
        }
    }
    return VersionOrder(test.seed, next, test.questions) ? std::optional(next) : std::nullopt;
}

BuildOutcome MakeNewVersion(QWidget* window, Services& services, Library& library,
                            const std::vector<PastTest>& tests, const PastTest& test)
{
    const int version = NextVersion(tests, test).value();
    const std::vector<TestItem> drawn = itemsToday(services, library, rootOf(test));
    const std::vector<int> order =
        VersionOrder(test.seed, version, static_cast<int>(drawn.size())).value();
    QString name = test.name;
    for (const PastTest& other : tests) {
        name = other.TestID == rootOf(test) ? other.name : name;
    }
    NewTest made{Words::tr("%1 – version %2").arg(name, VersionLetter(version)),
                 test.AssessmentNum,
                 test.className,
                 test.seed,
                 test.options,
                 drawn};
    made.options.version = version;
    made.options.versionOf = rootOf(test);
    made.options.unused = false;
    for (std::size_t i = 0; i < drawn.size(); ++i) {
        made.items[i] = drawn[static_cast<std::size_t>(order[i])];
        made.items[i].position = drawn[i].position;
    }
    TestRecord record(library, made);
    return make(window, services, library, record, made);
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
