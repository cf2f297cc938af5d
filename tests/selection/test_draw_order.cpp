#include "selection/draw_order.h"
#include "selection/question_draw.h"
#include "selection/review.h"
#include "store/SplitMix64.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <set>

namespace varnholt::test {
namespace {

constexpr std::int64_t day = 86'400;
constexpr std::int64_t today = 20'000 * day;

class DrawOrder : public testing::Test
{
protected:
    /// Questions 1 to `count` with keys far apart or close together, three to a subtopic and ten to
    /// a topic.
    static List1<DrawnQuestion> pool(int count, int keyStep = 1)
    {
        List1<DrawnQuestion> result;
        for (int i = 0; i < count; ++i) {
            result.append({{(i + 1) * keyStep, i, i / 10, i / 3, {}}, false});
        }
        return result;
    }
    static std::vector<std::int32_t> keys(const List1<DrawnQuestion>& pool)
    {
        std::vector<std::int32_t> result;
        for (const DrawnQuestion& question : pool) {
            result.push_back(question.SOLIndex);
        }
        return result;
    }
    static std::vector<std::int32_t> sorted(std::vector<std::int32_t> keys)
    {
        std::sort(keys.begin(), keys.end());
        return keys;
    }
    int upTo(int most) { return std::uniform_int_distribution(0, most)(engine); }

    std::mt19937 engine{20261122};
    SplitMix64 random;
};

TEST_F(DrawOrder, FreshComesFirstAndChanceDecidesBetweenEquals)
{
    for (int round = 0; round < 200; ++round) {
        const int step = round % 3 == 0 ? 100'000 : 1;
        const auto catalogue = pool(60, step);
        std::vector<Use> uses;
        for (int i = upTo(150); i > 0; --i) {
            uses.push_back({upTo(59) * step + step, upTo(2), today + (upTo(40) - 35) * day,
                            static_cast<Outcome>(upTo(3))});
        }
        for (const std::int32_t classId : {0, 1, 2}) {
            // As the rule is said: never used, fewest uses, oldest use; the future is today.
            const auto rank = [&](std::int32_t key) {
                std::pair<int, std::int64_t> rule{0, 0};
                for (const Use& use : uses) {
                    if (use.SOLIndex == key && (classId == 0 || use.ClassID == classId)) {
                        rule = {rule.first + 1, std::min(use.usedAt, today)};
                    }
                }
                return rule;
            };
            auto drawn = catalogue;
            ShuffleDrawPool(drawn, random);
            const auto shuffled = keys(drawn);
            PreferFresh(drawn, UseBook(uses).ranks(classId, today), DrawRule::Fresh, 12);
            auto expected = shuffled;
            std::stable_sort(expected.begin(), expected.end(),
                             [&](auto a, auto b) { return rank(a) < rank(b); });
            ASSERT_EQ(keys(drawn), expected);
        }
    }
    // 20,000 draws: which of the ten unused among thirty comes first.
    std::vector<Use> uses;
    for (int key = 11; key <= 30; ++key) {
        uses.push_back({key, 1, today - key, {}});
    }
    const FreshRanks ranks = UseBook(uses).ranks(1, today);
    std::vector<double> first(11, 0);
    for (int i = 0; i < 20'000; ++i) {
        auto drawn = pool(30);
        ShuffleDrawPool(drawn, random);
        PreferFresh(drawn, ranks, DrawRule::Fresh, 5);
        ++first.at(static_cast<std::size_t>(drawn(1).SOLIndex));
    }
    double chiSquare = 0;
    for (int key = 1; key <= 10; ++key) {
        chiSquare += (first[static_cast<std::size_t>(key)] - 2000) *
                     (first[static_cast<std::size_t>(key)] - 2000) / 2000;
    }
    EXPECT_LT(chiSquare, 27.9) << "one in a thousand with nine degrees of freedom";
}

TEST_F(DrawOrder, NobodySeesAQuestionTwiceBeforeAllWereSeen)
{
    std::vector<Use> uses;
    std::map<int, std::vector<int>> seen;
    for (int lesson = 0; lesson < 40; ++lesson) {
        for (const int classId : {1, 2, 3}) {
            auto drawn = pool(200);
            ShuffleDrawPool(drawn, random);
            const std::int64_t now = today + lesson * day;
            PreferFresh(drawn, UseBook(uses).ranks(classId, now), DrawRule::Fresh, 12);
            for (int i = 1; i <= 12; ++i) {
                uses.push_back({drawn(i).SOLIndex, classId, now, {}});
                std::vector<int>& times = seen[classId];
                times.resize(200, 0);
                const int fewest = *std::min_element(times.begin(), times.end());
                EXPECT_EQ(times[static_cast<std::size_t>(drawn(i).SOLIndex) - 1]++, fewest);
            }
        }
    }
}

TEST_F(DrawOrder, RepeatsAThirdOfWhatWentBadlyWhenItIsDue)
{
    // Outcomes of uses on day 0 and the days after it; the day from which it is due, -1 for never.
    const struct
    {
        std::vector<Outcome> outcomes;
        std::int64_t due;
    } cases[] = {{{Outcome::Few}, 1},
                 {{Outcome::Half}, 1},
                 {{Outcome::Most}, -1},
                 {{Outcome::Most, Outcome::Half}, 1 + 3},
                 {{Outcome::Most, Outcome::Most, Outcome::Half}, 2 + 7},
                 {{Outcome::Most, Outcome::Most, Outcome::Few}, 2 + 1},
                 {{Outcome::Few, Outcome::Unknown}, 1 + 1},
                 {std::vector(9, Outcome::Most), -1},
                 {{Outcome::Most, Outcome::Most, Outcome::Most, Outcome::Most, Outcome::Most,
                   Outcome::Most, Outcome::Half},
                  6 + 60}};
    for (const auto& row : cases) {
        std::vector<Use> uses;
        for (const Outcome outcome : row.outcomes) {
            uses.push_back({7, 1, today + std::int64_t(uses.size()) * day, outcome});
        }
        const UseBook book(uses);
        EXPECT_EQ(book.of(7, 1, today + 99 * day).dueAt.value_or(today - day),
                  today + row.due * day);
        EXPECT_EQ(book.ranks(1, today + row.due * day).due().size(), row.due < 0 ? 0U : 1U);
        EXPECT_TRUE(book.ranks(1, today + row.due * day - 1).due().empty());
        EXPECT_TRUE(book.ranks(2, today + 99 * day).due().empty());
    }
    for (int round = 0; round < 300; ++round) {
        const int count = 6 + upTo(40);
        const int asked = 1 + upTo(count - 1);
        std::vector<Use> uses;
        for (int key = 1; key <= count; ++key) {
            if (upTo(3) == 0) {
                uses.push_back(
                    {key, 1, today - (1 + upTo(50)) * day, static_cast<Outcome>(upTo(3))});
            }
        }
        const FreshRanks ranks = UseBook(uses).ranks(1, today);
        auto drawn = pool(count);
        ShuffleDrawPool(drawn, random);
        PreferFresh(drawn, ranks, DrawRule::FreshAndDue, asked);
        EXPECT_EQ(sorted(keys(drawn)), keys(pool(count)));
        std::vector<std::int32_t> repeated;
        for (int i = 1; i <= asked; ++i) {
            if (std::count(ranks.due().begin(), ranks.due().end(), drawn(i).SOLIndex)) {
                repeated.push_back(drawn(i).SOLIndex);
            }
        }
        const auto dueCount = static_cast<int>(ranks.due().size());
        const int others = count - dueCount;
        EXPECT_EQ(static_cast<int>(repeated.size()),
                  std::max(std::min(asked / 3, dueCount), asked - others));
        EXPECT_TRUE(std::equal(repeated.begin(), repeated.end(), ranks.due().begin()));
    }
}

TEST_F(DrawOrder, QuotasAreMetWheneverPossibleAlsoAfterExcluding)
{
    for (int round = 0; round < 400; ++round) {
        const int count = 10 + upTo(60);
        auto drawn = pool(count);
        ShuffleDrawPool(drawn, random);
        const auto before = keys(drawn);
        Quotas quotas;
        const int asked = 1 + upTo(count - 1);
        for (int left = asked; left > 0 && upTo(3) > 0;) {
            const int share = 1 + upTo(left - 1);
            quotas[upTo(7)] = share;
            left -= share;
        }
        QuotaOrder order(quotas, drawn, asked);
        if (quotas.empty()) {
            EXPECT_EQ(keys(drawn), before);
        }
        for (int topic = 0; topic < 7; ++topic) {
            const auto elsewhere = [topic](std::int32_t key) { return (key - 1) / 10 != topic; };
            auto was = before;
            auto is = keys(drawn);
            std::erase_if(was, elsewhere);
            std::erase_if(is, elsewhere);
            EXPECT_EQ(is, was) << "within a topic the order of the draw stays";
        }
        // A review that excludes what it likes, until enough is included or nothing is left.
        std::map<std::int32_t, int> included;
        std::map<std::int32_t, int> excluded;
        int accepted = 0;
        int position = 1;
        for (; position <= count && accepted < asked; ++position) {
            const std::int32_t topic = drawn(position).TopicID;
            if (upTo(4) == 0) {
                ++excluded[topic];
                order.arrange(drawn, position + 1, asked);
            } else {
                drawn(position).Selected = true;
                ++included[topic];
                ++accepted;
            }
        }
        EXPECT_EQ(sorted(keys(drawn)), keys(pool(count)));
        EXPECT_TRUE(accepted == asked || position == count + 1);
        for (const auto& [topic, wanted] : quotas) {
            const int has = std::clamp(count - topic * 10, 0, 10) - excluded[topic];
            int total = 0;
            for (const auto& [other, number] : quotas) {
                total += number;
            }
            if (total <= asked) {
                EXPECT_GE(included[topic], std::min(wanted, has));
            }
        }
    }
    // The largest part of what is still to come goes first: four, two, and three by chance.
    for (int round = 0; round < 50; ++round) {
        auto drawn = pool(30);
        ShuffleDrawPool(drawn, random);
        QuotaOrder({{0, 4}, {1, 2}}, drawn, 9);
        const std::vector<double> wanted{4, 2, 3};
        std::vector<double> parts{1, 1, 1};
        for (int i = 1; i <= 9; ++i) {
            const auto topic = static_cast<std::size_t>(drawn(i).TopicID);
            EXPECT_EQ(parts[topic], *std::max_element(parts.begin(), parts.end()));
            parts[topic] = std::round(parts[topic] * wanted[topic] - 1) / wanted[topic];
        }
    }
    const auto dry = ShortTopics({{0, 10}, {2, 7}, {3, 1}}, {{0, 10}, {2, 5}});
    ASSERT_EQ(dry.size(), 2U);
    EXPECT_EQ(std::tuple(dry[0].TopicID, dry[0].available, dry[1].available), std::tuple(2, 5, 0));
    EXPECT_EQ(EvenShare({{4, 9}, {5, 1}, {6, 9}}, 8), (Quotas{{4, 4}, {5, 1}, {6, 3}}));
    EXPECT_EQ(EvenShare({{4, 2}, {5, 1}}, 8), (Quotas{{4, 2}, {5, 1}}));
}

TEST_F(DrawOrder, TheNearestIsOfTheSameSubtopicElseTopicElseTheNext)
{
    auto questions = pool(12);
    EXPECT_EQ(NearestAfter(questions, 1, 2), 2);
    std::swap(questions(2), questions(12)); // subtopic 0 only further on now
    EXPECT_EQ(NearestAfter(questions, 1, 2), 3);
    std::swap(questions(2), questions(3));
    EXPECT_EQ(NearestAfter(questions, 9, 10), 10) << "no more of the subtopic";
    EXPECT_EQ(NearestAfter(questions, 10, 11), 12);
    EXPECT_EQ(NearestAfter(questions, 11, 12), 12) << "no more of the topic";
    EXPECT_EQ(NearestAfter(questions, 12, 13), std::nullopt);
}

TEST_F(DrawOrder, AReviewWithoutTheNewKeysIsTheOldOne)
{
    for (int round = 0; round < 10'000; ++round) {
        Draw draw;
        draw.DrawPool = pool(1 + upTo(11));
        const int bound = draw.DrawPool.upperBound();
        draw.RequestedQuestionCount = 1 + upTo(bound - 1);
        Review review(draw);
        // The old rules in plain words.
        std::vector<bool> flags(static_cast<std::size_t>(bound) + 1, false);
        int position = 1;
        int accepted = 0;
        bool open = true;
        while (open) {
            const bool include = upTo(2) > 0;
            flags[static_cast<std::size_t>(position)] = include;
            accepted += include ? 1 : 0;
            ++position;
            open = position <= bound && accepted < draw.RequestedQuestionCount;
            const auto expected = open           ? Review::Next::Show
                                  : accepted > 0 ? Review::Next::Build
                                                 : Review::Next::Close;
            ASSERT_EQ(include ? review.include() : review.exclude(), expected);
            if (open && upTo(9) == 0) {
                review.excludeRest();
                break;
            }
        }
        EXPECT_EQ(review.position(), position);
        EXPECT_EQ(review.acceptedCount(), accepted);
        for (int i = 1; i <= bound; ++i) {
            EXPECT_EQ(review.draw().DrawPool(i).Selected, flags[static_cast<std::size_t>(i)]);
            EXPECT_EQ(review.draw().DrawPool(i).SOLIndex, draw.DrawPool(i).SOLIndex);
        }
    }
}

TEST_F(DrawOrder, AReviewKeepsCountWhateverIsSwappedTakenBackAndMoved)
{
    for (int round = 0; round < 2'000; ++round) {
        Draw draw;
        draw.DrawPool = pool(2 + upTo(20));
        draw.RequestedQuestionCount = 1 + upTo(draw.DrawPool.upperBound() - 1);
        ShuffleDrawPool(draw.DrawPool, random);
        const Quotas quotas = upTo(1) ? Quotas{{0, 1 + upTo(3)}, {1, 1 + upTo(3)}} : Quotas();
        QuotaOrder order(quotas, draw.DrawPool, draw.RequestedQuestionCount);
        Review review(draw, order);
        const auto all = sorted(keys(draw.DrawPool));
        // The question on show is what she asked for, and not what a topic needs.
        bool given = false;
        const auto topics = [](const Review& of, int from) {
            Quotas number{{0, 0}, {1, 0}};
            for (int i = 1; i <= of.draw().DrawPool.upperBound(); ++i) {
                const DrawnQuestion& question = of.draw().DrawPool(i);
                number[question.TopicID] += i >= from || question.Selected ? 1 : 0;
            }
            return number;
        };
        const auto expectQuotas = [&] {
            Review later = review;
            if (given && later.include() != Review::Next::Show) {
                return;
            }
            Quotas most = topics(later, later.position());
            const Quotas has = topics(later, 999);
            int lacking = 0;
            for (const auto& [topic, wanted] : quotas) {
                most[topic] = std::min(most[topic], std::max(wanted, has.at(topic)));
                lacking += most[topic] - has.at(topic);
            }
            if (lacking <= draw.RequestedQuestionCount - later.acceptedCount()) {
                while (later.include() == Review::Next::Show) {
                }
                for (const auto& [topic, wanted] : quotas) {
                    EXPECT_GE(topics(later, 999)[topic], most[topic]);
                }
            }
            EXPECT_EQ(review.shortTopics().size(),
                      ShortTopics(quotas, topics(review, review.position())).size());
        };
        for (auto next = Review::Next::Show; next == Review::Next::Show;) {
            std::vector<int> marked;
            for (int i = 1; i <= review.draw().DrawPool.upperBound(); ++i) {
                if (review.draw().DrawPool(i).Selected) {
                    marked.push_back(i);
                }
            }
            ASSERT_EQ(static_cast<int>(marked.size()), review.acceptedCount());
            ASSERT_EQ(review.draw().judged, review.position() - 1);
            ASSERT_EQ(sorted(keys(review.draw().DrawPool)), all);
            expectQuotas();
            const int action = upTo(6);
            if (action == 0 && review.canSwap()) {
                const auto from = review.position();
                auto was = keys(review.draw().DrawPool);
                review.swap();
                auto is = keys(review.draw().DrawPool);
                std::erase(was, is[static_cast<std::size_t>(from)]);
                is.erase(is.begin() + from);
                EXPECT_TRUE(!quotas.empty() || was == is) << "the others stay in their order";
                given = true;
            } else if (action == 1 && review.canReopen() && upTo(2) == 0) {
                review.reopenLast();
                given = true;
            } else if (action == 2) {
                std::shuffle(marked.begin(), marked.end(), engine);
                review.reorder(marked);
            } else if (action == 3 && !marked.empty()) {
                const auto gone = review.draw().DrawPool(marked.front()).SOLIndex;
                EXPECT_TRUE(review.swapIncluded(marked.front()));
                EXPECT_NE(review.draw().DrawPool(marked.front()).SOLIndex, gone);
                EXPECT_TRUE(!quotas.empty() || keys(review.draw().DrawPool).back() == gone);
                given = false;
            } else {
                given = false;
                next = action < 5 ? review.exclude() : review.include();
            }
        }
    }
}

} // namespace
} // namespace varnholt::test
