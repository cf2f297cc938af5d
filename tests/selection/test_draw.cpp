#include "selection/question_draw.h"
#include "selection/question_selection.h"
#include "support/fakes.h"
#include "toolkit/desktop_services.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <set>

namespace varnholt::test {
namespace {

using namespace Qt::Literals::StringLiterals;

ProgramState stateWith(int questions, const std::set<int>& unselected = {})
{
    ProgramState state;
    for (int i = 1; i <= questions; ++i) {
        const bool selected = unselected.count(i) == 0;
        state.QuestionList.append({i, i, 1, 1, u"A%1"_s.arg(i), selected});
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

TEST(Draw, TakesNumbersRoundedToEvenAndRefusesTheRest)
{
    ScriptedMessageBoxes messages;
    FakeRandom random;
    ProgramState none = stateWith(3, {1, 2, 3});
    messages.expectInform(u"No Questions"_s, u"There are no questions selected."_s);
    EXPECT_FALSE(DrawQuestions(none, u"abc"_s, random, messages));

    const QString noNumber = u"Please enter a number for the number of questions."_s;
    const QString outOfRange = u"Invalid number of questions."_s;
    const std::vector<std::pair<QString, std::vector<const char*>>> refused{
        {noNumber, {"", "  ", "abc", "3x", "nan", "inf", "1e999", "--1"}},
        {outOfRange, {"0", "-1", "11", "0.5", "10.6", "4294967297", "1e300", "-1e300"}}};
    ProgramState state = stateWith(10);
    for (const auto& [message, texts] : refused) {
        for (const char* text : texts) {
            messages.expectInform(u"Error"_s, message);
            EXPECT_FALSE(DrawQuestions(state, QLatin1String(text), random, messages)) << text;
            messages.verify();
        }
    }
    EXPECT_TRUE(state.DrawPool.isEmpty());
    EXPECT_EQ(state.RequestedQuestionCount, 0);

    const std::map<const char*, int> taken{{"2.5", 2},  {"3.5", 4},   {"1.5", 2},
                                           {"10", 10},  {" 7 ", 7},   {"+3", 3},
                                           {"1e1", 10}, {"10.5", 10}, {"0.51", 1}};
    for (const auto& [text, count] : taken) {
        EXPECT_TRUE(DrawQuestions(state, QLatin1String(text), random, messages)) << text;
        EXPECT_EQ(state.RequestedQuestionCount, count) << text;
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
    ASSERT_TRUE(DrawQuestions(state, u"2"_s, random, messages));
    EXPECT_EQ(keysOf(state.DrawPool), (std::vector<int>{4, 1, 5, 3}));
    for (const QuestionRecord& record : state.DrawPool) {
        EXPECT_FALSE(record.Selected);
        EXPECT_EQ(record.Answer, u"A%1"_s.arg(record.SOLIndex));
    }
    EXPECT_TRUE(state.QuestionList(4).Selected);
    EXPECT_EQ(state.QuestionList(4).Answer, u"A4"_s);
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
    List1<SubTopicRecord> subTopics;
    subTopics.append({1, 10, QString(), true});
    subTopics.append({1, 11, QString(), false});
    subTopics.append({1, 11, QString(), true}); // never decides
    subTopics.append({2, 10, QString(), true});
    const SelectionRule rule({{1, true}, {2, false}, {2, true}, {-3, true}}, subTopics);
    const std::map<std::pair<int, int>, bool> expected{
        {{1, 10}, true},  {{1, 11}, false}, {{1, 99}, true}, // no such subtopic any more
        {{2, 10}, false}, {{7, 10}, false}, {{-3, -1}, true}};
    for (const auto& [keys, selected] : expected) {
        EXPECT_EQ(rule.IsQuestionInSelection(keys.first, keys.second), selected)
            << keys.first << ' ' << keys.second;
    }
}

} // namespace
} // namespace varnholt::test
