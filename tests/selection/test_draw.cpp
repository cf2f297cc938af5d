#include "selection/question_draw.h"
#include "selection/question_selection.h"
#include "support/fakes.h"
#include "toolkit/desktop_services.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <map>
#include <set>

namespace varnholt {
namespace {

using test::FakeRandom;
using test::ScriptedMessageBoxes;

ProgramState stateWith(int questions, const std::set<int>& unselected = {})
{
    ProgramState state;
    for (int i = 1; i <= questions; ++i) {
        const bool selected = unselected.count(i) == 0;
        state.QuestionList.append({i, i, 1, 1, QStringLiteral("A%1").arg(i), selected});
        state.SelectedQuestionCount += selected ? 1 : 0;
    }
    return state;
}

std::vector<int> keysOf(const List1<QuestionRecord>& pool)
{
    std::vector<int> keys;
    for (const QuestionRecord& record : pool) {
        keys.push_back(record.SOLIndex);
    }
    return keys;
}

TEST(Draw, RefusesWhatIsNoNumberOfQuestions)
{
    ScriptedMessageBoxes messages;
    FakeRandom random;
    ProgramState none = stateWith(3, {1, 2, 3});
    messages.expectInform(QStringLiteral("No Questions"),
                          QStringLiteral("There are no questions selected."));
    EXPECT_FALSE(DrawQuestions(none, QStringLiteral("abc"), random, messages));

    ProgramState state = stateWith(10);
    for (const char* text : {"", "  ", "abc", "3x", "nan", "inf", "1e999", "--1"}) {
        messages.expectInform(QStringLiteral("Error"),
                              QStringLiteral("Please enter a number for the number of questions."));
        EXPECT_FALSE(DrawQuestions(state, QLatin1String(text), random, messages)) << text;
        messages.verify();
    }
    for (const char* text : {"0", "-1", "11", "0.5", "10.6", "4294967297", "1e300", "-1e300"}) {
        messages.expectInform(QStringLiteral("Error"),
                              QStringLiteral("Invalid number of questions."));
        EXPECT_FALSE(DrawQuestions(state, QLatin1String(text), random, messages)) << text;
        messages.verify();
    }
    EXPECT_TRUE(state.DrawPool.isEmpty());
    EXPECT_EQ(state.RequestedQuestionCount, 0);
}

TEST(Draw, RoundsHalvesToTheEvenNumber)
{
    ScriptedMessageBoxes messages;
    FakeRandom random;
    ProgramState state = stateWith(10);
    const std::map<QString, int> wanted{
        {QStringLiteral("2.5"), 2},  {QStringLiteral("3.5"), 4},   {QStringLiteral("1.5"), 2},
        {QStringLiteral("10"), 10},  {QStringLiteral(" 7 "), 7},   {QStringLiteral("+3"), 3},
        {QStringLiteral("1e1"), 10}, {QStringLiteral("10.5"), 10}, {QStringLiteral("0.51"), 1}};
    for (const auto& [text, count] : wanted) {
        EXPECT_TRUE(DrawQuestions(state, text, random, messages)) << text.toStdString();
        EXPECT_EQ(state.RequestedQuestionCount, count) << text.toStdString();
    }
}

TEST(Draw, PoolHoldsTheSelectedQuestionsOnceInTheGeneratorsOrder)
{
    ScriptedMessageBoxes messages;
    ProgramState state = stateWith(5, {2});
    FakeRandom random;
    // Of four: third; third again (taken, so drawn anew) and first; fourth; then the second
    // after two positions that have gone.
    random.numbers = {0.5, 0.74, 0.0, 0.99, 0.0, 0.5, 0.25};
    ASSERT_TRUE(DrawQuestions(state, QStringLiteral("2"), random, messages));
    EXPECT_EQ(keysOf(state.DrawPool), (std::vector<int>{4, 1, 5, 3}));
    for (const QuestionRecord& record : state.DrawPool) {
        EXPECT_FALSE(record.Selected);
        EXPECT_EQ(record.Answer, QStringLiteral("A%1").arg(record.SOLIndex));
    }
    EXPECT_EQ(state.QuestionList(4).Answer, QStringLiteral("A4"));
    EXPECT_TRUE(state.QuestionList(4).Selected);

    MarkFirst(state.DrawPool, state.RequestedQuestionCount);
    EXPECT_TRUE(state.DrawPool(1).Selected && state.DrawPool(2).Selected);
    EXPECT_FALSE(state.DrawPool(3).Selected || state.DrawPool(4).Selected);
}

TEST(Draw, EveryOrderIsEquallyLikely)
{
    SplitMix64 random;
    random.seed(20'240);
    std::map<std::vector<int>, int> seen;
    constexpr int rounds = 24'000;
    for (int i = 0; i < rounds; ++i) {
        List1<QuestionRecord> pool = stateWith(4).QuestionList;
        ShuffleDrawPool(pool, random);
        ++seen[keysOf(pool)];
    }
    ASSERT_EQ(seen.size(), 24U);
    double chiSquare = 0;
    for (const auto& [order, count] : seen) {
        chiSquare += std::pow(count - rounds / 24.0, 2) / (rounds / 24.0);
    }
    // 23 degrees of freedom: beyond 49.7 once in a thousand.
    EXPECT_LT(chiSquare, 49.7);
}

TEST(Selection, FirstTopicRowThenFirstSubtopicRecordDecides)
{
    ProgramState state;
    const auto subTopic = [&](int topic, int number, bool selected) {
        state.SubTopicList.append({topic, number, QString(), selected});
    };
    subTopic(1, 10, true);
    subTopic(1, 11, false);
    subTopic(1, 11, true); // a second record with the same keys never decides
    subTopic(2, 10, true);
    const SelectionRule rule({{1, true}, {2, false}, {2, true}, {-3, true}}, state.SubTopicList);
    struct Case
    {
        int topic;
        int subTopic;
        bool selected;
    };
    for (const Case& c : std::array<Case, 6>{{{1, 10, true},
                                              {1, 11, false},
                                              {1, 99, true}, // no such subtopic any more
                                              {2, 10, false},
                                              {7, 10, false},
                                              {-3, -1, true}}}) {
        EXPECT_EQ(rule.IsQuestionInSelection(c.topic, c.subTopic), c.selected)
            << c.topic << ' ' << c.subTopic;
    }
}

} // namespace
} // namespace varnholt
