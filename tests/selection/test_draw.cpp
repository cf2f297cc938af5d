#include "selection/draw_wishes.h"
#include "selection/question_draw.h"
#include "support/fakes.h"
#include "toolkit/desktop_services.h"

#include <QDateTime>
#include <QLocale>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <tuple>

namespace varnholt::test {
namespace {

using namespace Qt::Literals::StringLiterals;

/// Questions under the subtopic that has their own number.
List1<QuestionRecord> questionsTo(int count)
{
    List1<QuestionRecord> questions;
    for (int i = 1; i <= count; ++i) {
        questions.append({i, i, 1, i, u"A%1"_s.arg(i)});
    }
    return questions;
}

Selection everything()
{
    Selection selection;
    selection.setTopics({{1, true}});
    return selection;
}

std::vector<int> keysOf(const List1<DrawnQuestion>& pool)
{
    std::vector<int> keys;
    for (const DrawnQuestion& record : pool) {
        EXPECT_FALSE(record.Selected);
        EXPECT_EQ(record.Answer, u"A%1"_s.arg(record.SOLIndex));
        keys.push_back(record.SOLIndex);
    }
    return keys;
}

TEST(Draw, TakesNumbersRoundedToEvenAndRefusesTheRest)
{
    FakeRandom random;
    const List1<QuestionRecord> ten = questionsTo(10);
    EXPECT_EQ(std::get<DrawObstacle>(DrawQuestions(ten, {}, u"abc"_s, random)),
              DrawObstacle::NoQuestions);
    const auto drawn = [&](const char* text) {
        const auto result = DrawQuestions(ten, everything(), QString::fromUtf8(text), random);
        const auto* draw = std::get_if<Draw>(&result);
        return draw ? draw->RequestedQuestionCount
                    : -static_cast<int>(std::get<DrawObstacle>(result));
    };
    constexpr int noNumber = -static_cast<int>(DrawObstacle::NotANumber);
    constexpr int outOfRange = -static_cast<int>(DrawObstacle::NumberOutOfRange);
    std::map<const char*, int> numbers{{"2.5", 2},  {"3.5", 4},   {"1.5", 2},
                                       {"10", 10},  {" 7 ", 7},   {"+3", 3},
                                       {"1e1", 10}, {"10.5", 10}, {"0.51", 1}};
    for (const char* text : {"", "  ", "abc", "3x", "nan", "inf", "1e999", "--1"}) {
        numbers[text] = noNumber;
    }
    for (const char* text : {"0", "-1", "11", "0.5", "10.6", "4294967297", "1e300", "-1e300"}) {
        numbers[text] = outOfRange;
    }
    for (const auto& [text, expected] : numbers) {
        EXPECT_EQ(drawn(text), expected) << text;
    }
    // In the user's own notation, and still with a decimal point.
    QLocale::setDefault(QLocale::German);
    EXPECT_EQ(drawn("2,6"), 3);
    EXPECT_EQ(drawn("3.6"), 4);
    QLocale::setDefault(QLocale::c());
}

TEST(Draw, PoolHoldsTheSelectedQuestionsOnceInTheGeneratorsOrder)
{
    const List1<QuestionRecord> five = questionsTo(5);
    Selection selection = everything();
    selection.SetSubTopicSelected(1, 2, false);
    FakeRandom random;
    // Of four: third; third again (taken, so drawn anew) and first; fourth; then the second
    // after two positions that have gone.
    random.numbers = {0.5, 0.74, 0.0, 0.99, 0.0, 0.5, 0.25};
    const Draw draw = std::get<Draw>(DrawQuestions(five, selection, u"2"_s, random));
    EXPECT_EQ(keysOf(draw.DrawPool), (std::vector<int>{4, 1, 5, 3}));

    // Each draw differs from the one before and can be repeated from its seed.
    SplitMix64 numbers;
    const auto drawn = [&] {
        return std::get<Draw>(DrawQuestions(questionsTo(50), everything(), u"2"_s, numbers));
    };
    const Draw first = drawn();
    const Draw second = drawn();
    EXPECT_NE(keysOf(second.DrawPool), keysOf(first.DrawPool));
    numbers.seed(second.seed);
    EXPECT_EQ(keysOf(drawn().DrawPool), keysOf(second.DrawPool));
}

TEST(Draw, EveryOrderIsEquallyLikely)
{
    SplitMix64 random;
    random.seed(20'240);
    std::map<std::vector<int>, int> seen;
    constexpr int rounds = 24'000;
    for (int i = 0; i < rounds; ++i) {
        List1<DrawnQuestion> pool;
        for (const QuestionRecord& question : questionsTo(4)) {
            pool.append({question, true});
        }
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

TEST(Selection, TicksOfTopicAndSubtopicDecideAndAreCounted)
{
    ProgramState state;
    for (const int topic : {1, 2, -3}) {
        state.TopicList.append({topic, u"%2 of %1"_s});
        for (const int subtopic : {10, 11}) {
            state.SubTopicList.append({topic, subtopic, QString()});
        }
    }
    Selection selection;
    selection.setTopics({{1, true}, {2, false}, {2, true}, {-3, true}});
    selection.SetSubTopicSelected(1, 11, false);
    selection.SetSubTopicSelected(2, 10, false);
    selection.SetSubTopicSelected(2, 10, true);
    const std::map<std::pair<int, int>, bool> expected{
        {{1, 10}, true},  {{1, 11}, false}, {{1, 99}, true}, // no such subtopic any more
        {{2, 10}, false}, {{7, 10}, false}, {{-3, -1}, true}, {{-3, 11}, true}};
    for (const auto& [keys, selected] : expected) {
        EXPECT_EQ(selection.IsQuestionInSelection(keys.first, keys.second), selected)
            << keys.first << ' ' << keys.second;
        state.QuestionList.append({1, 1, keys.first, keys.second, QString()});
    }
    const SelectionCounts counts = CountSelection(state, selection);
    EXPECT_EQ(counts.SelectedQuestionCount, 4);
    EXPECT_EQ(counts.topicTexts,
              QStringList({u"%2 of %1 (1 of 2 topics)"_s, u"%2 of %1 (2 of 2 topics)"_s,
                           u"%2 of %1 (2 of 2 topics)"_s}));
}

TEST(DrawWishesTest, AreKeptForEachLibraryAndNumbersForEachAssessment)
{
    const QTemporaryDir one;
    const QTemporaryDir other;
    SaveWishes(one.path(), {u"10B"_s, DrawRule::FreshAndDue});
    EXPECT_EQ(LoadWishes(one.path()).rule, DrawRule::FreshAndDue);
    EXPECT_EQ(LoadWishes(one.path()).className + LoadWishes(other.path()).className, u"10B"_s);
    SaveQuotas(one.path(), 1, {{3, 4}, {5, 6}});
    EXPECT_EQ(LoadQuotas(one.path(), 1), (Quotas{{3, 4}, {5, 6}}));
    EXPECT_TRUE(LoadQuotas(one.path(), 2).empty() && LoadQuotas(other.path(), 1).empty());
    SaveQuotas(one.path(), 1, {});
    EXPECT_TRUE(LoadQuotas(one.path(), 1).empty());
}

TEST(DrawWishesTest, SaysWhenAQuestionWasUsed)
{
    const auto at = [](int year, int month) {
        return QDateTime(QDate(year, month, 3), QTime(12, 0)).toSecsSinceEpoch();
    };
    UseSummary use;
    EXPECT_EQ(UseInWords(use, {}, at(2026, 5)), u"Not used yet."_s);
    use.lastUsed = at(2026, 3);
    for (const auto& [uses, className, year, words] :
         {std::tuple{1, u""_s, 2026, u"Used once, on 3 March."_s},
          {2, u"10A"_s, 2026, u"Used twice, last on 3 March with 10A."_s},
          {5, u"10A"_s, 2027, u"Used 5 times, last on 3 March 2026 with 10A."_s}}) {
        use.uses = uses;
        EXPECT_EQ(UseInWords(use, className, at(year, 5)), words);
    }
}

} // namespace
} // namespace varnholt::test
