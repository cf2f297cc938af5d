#pragma once

#include "library/UseBook.h"
#include "store/modMain.h"

#include <map>
#include <optional>
#include <unordered_map>
#include <vector>

namespace varnholt {

/// Which questions a draw prefers.
enum class DrawRule : std::int8_t
{
    /// Chance alone decides.
    Any,
    /// Those that the class has not had, then by fewest uses and by the oldest use.
    Fresh,
    /// The same, with up to a third of the number asked for from what went badly and is due.
    FreshAndDue
};

/// How many questions each topic is to give, by its key; a topic without a number takes part in
/// what is left to chance.
using Quotas = std::map<std::int32_t, int>;

/// Moves what is fresher to the front of a shuffled pool; chance decides between what is equally
/// fresh. With `DrawRule::FreshAndDue` the first `asked` places hold up to a third of questions
/// that are due, spread evenly, the one due longest first; what else is due goes to the end.
void PreferFresh(List1<DrawnQuestion>& pool, const FreshRanks& ranks, DrawRule rule,
                 std::int32_t asked);

/// A topic that has fewer questions than it is to give.
struct ShortTopic
{
    std::int32_t TopicID = 0;
    int wanted = 0;
    int available = 0;
};
/// `available` are the questions that each topic has.
[[nodiscard]] std::vector<ShortTopic> ShortTopics(const Quotas& quotas, const Quotas& available);

/// Lets each topic have its number of questions among the next places of a pool: what is to come
/// is merged so that the topic with the largest part of its number still to come goes first, and
/// places that are nobody's count as a topic of their own. They go to topics without a number
/// first; where a topic has too few questions, its places go to all. Within a topic, and among
/// what is left over, the order of the draw stays. Without numbers it changes nothing.
class QuotaOrder
{
public:
    QuotaOrder() = default;
    /// Arranges a pool whose order is that of the draw and of which nothing is judged yet.
    QuotaOrder(Quotas quotas, List1<DrawnQuestion>& pool, std::int32_t asked);

    /// Arranges the rest of the pool, from `from` (to one past its end) on, by what each topic
    /// still lacks: questions with `Selected` before it count for their topics and for `asked`.
    void arrange(List1<DrawnQuestion>& pool, int from, std::int32_t asked);
    /// Makes a question the last one of the draw.
    void putLast(std::int32_t solIndex);

    /// The topics that lack questions: with those that have `Selected` before `from` and all from
    /// there on they cannot have their numbers.
    [[nodiscard]] std::vector<ShortTopic> shortTopics(const List1<DrawnQuestion>& pool,
                                                      int from) const;

private:
    void readDraw();
    /// Arranges the rest of a pool, which is in the order of the draw.
    void place(List1<DrawnQuestion>& pool, int from, std::int32_t asked) const;

    Quotas quotas_;
    /// The questions in the order of the draw, and from the second arrangement on their places.
    std::vector<std::int32_t> drawnKeys_;
    std::unordered_map<std::int32_t, int> drawn_;
};

/// The numbers that give each of the topics (with the questions that it has, in the order of the
/// list) an equal part of `asked`: where it does not come out even, the first ones get one more;
/// none gets more than it has while another has some left.
[[nodiscard]] Quotas EvenShare(const std::vector<std::pair<std::int32_t, int>>& topics, int asked);

/// The position, from `from` on, of the question that is nearest to the one at `position`: the
/// first of the same subtopic, else of the same topic, else the first. None at the end of the pool.
[[nodiscard]] std::optional<int> NearestAfter(const List1<DrawnQuestion>& pool, int position,
                                              int from);

} // namespace varnholt
