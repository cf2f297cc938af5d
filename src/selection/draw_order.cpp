#include "selection/draw_order.h"

#include "store/nearest.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace varnholt {

namespace {

using Order = std::vector<int>;

/// Element i of `order` is the position in the pool of what comes to position `from` + i.
void rearrange(List1<DrawnQuestion>& pool, int from, const Order& order)
{
    std::vector<DrawnQuestion> records;
    records.reserve(order.size());
    for (const int position : order) {
        records.push_back(std::move(pool(position)));
    }
    std::move(records.begin(), records.end(), pool.begin() + (from - 1));
}

/// Positions by their rank; ranks are few enough to be counted.
Order byRank(const List1<DrawnQuestion>& pool, const FreshRanks& ranks)
{
    const auto n = static_cast<std::size_t>(pool.upperBound());
    std::vector<std::int32_t> rank;
    rank.reserve(n);
    std::vector<int> next(static_cast<std::size_t>(ranks.count()) + 1, 0);
    for (const QuestionRecord& question : pool) {
        rank.push_back(ranks.of(question.SOLIndex));
        ++next[static_cast<std::size_t>(rank.back()) + 1];
    }
    for (std::size_t i = 1; i < next.size(); ++i) {
        next[i] += next[i - 1];
    }
    Order order(n);
    for (std::size_t i = 0; i < n; ++i) {
        order[static_cast<std::size_t>(next[static_cast<std::size_t>(rank[i])]++)] =
            static_cast<int>(i) + 1;
    }
    return order;
}

/// Puts up to a third of `asked` from what is due among the first places.
Order withDue(const Order& order, const List1<DrawnQuestion>& pool,
              const std::vector<std::int32_t>& due, std::int32_t asked)
{
    std::unordered_map<std::int32_t, int> duePositions;
    for (const std::int32_t key : due) {
        duePositions.emplace(key, 0);
    }
    Order rest;
    for (const int position : order) {
        const auto found = duePositions.find(pool(position).SOLIndex);
        if (found == duePositions.end()) {
            rest.push_back(position);
        } else {
            found->second = position;
        }
    }
    Order repeated;
    for (const std::int32_t key : due) {
        if (const int position = duePositions.at(key)) {
            repeated.push_back(position);
        }
    }
    const std::size_t wanted = std::min(repeated.size(), static_cast<std::size_t>(asked) / 3);
    Order result;
    result.reserve(order.size());
    std::size_t taken = 0;
    auto fresh = rest.begin();
    for (std::size_t i = 0; taken < wanted && fresh != rest.end(); ++i) {
        // In the middle of each of `wanted` equal parts.
        const bool turn = i >= (2 * taken + 1) * static_cast<std::size_t>(asked) / (2 * wanted);
        result.push_back(turn ? repeated[taken++] : *fresh++);
    }
    result.insert(result.end(), fresh, rest.end());
    result.insert(result.end(), repeated.begin() + static_cast<std::ptrdiff_t>(taken),
                  repeated.end());
    return result;
}

} // namespace

void PreferFresh(List1<DrawnQuestion>& pool, const FreshRanks& ranks, DrawRule rule,
                 std::int32_t asked)
{
    if (rule == DrawRule::Any) {
        return;
    }
    Order order = byRank(pool, ranks);
    if (rule == DrawRule::FreshAndDue && !ranks.due().empty()) {
        order = withDue(order, pool, ranks.due(), asked);
    }
    rearrange(pool, 1, order);
}

QuotaOrder::QuotaOrder(Quotas quotas, List1<DrawnQuestion>& pool, std::int32_t asked)
    : quotas_(std::move(quotas))
{
    if (quotas_.empty()) {
        return;
    }
    std::vector<Place> all;
    all.reserve(static_cast<std::size_t>(pool.upperBound()));
    drawnKeys_.reserve(all.capacity());
    for (int i = 1; i <= pool.upperBound(); ++i) {
        all.push_back({i, i});
        drawnKeys_.push_back(pool(i).SOLIndex);
    }
    merge(pool, 1, asked, all);
}

void QuotaOrder::arrange(List1<DrawnQuestion>& pool, int from, std::int32_t asked)
{
    if (quotas_.empty() || from > pool.upperBound()) {
        return;
    }
    if (drawn_.empty()) {
        for (std::size_t i = 0; i < drawnKeys_.size(); ++i) {
            drawn_.emplace(drawnKeys_[i], static_cast<int>(i) + 1);
        }
    }
    std::vector<Place> rest;
    for (int i = from; i <= pool.upperBound(); ++i) {
        rest.push_back({drawn_.at(pool(i).SOLIndex), i});
    }
    std::sort(rest.begin(), rest.end(),
              [](const Place& a, const Place& b) { return a.drawn < b.drawn; });
    merge(pool, from, asked, rest);
}

void QuotaOrder::merge(List1<DrawnQuestion>& pool, int from, std::int32_t asked,
                       const std::vector<Place>& rest) const
{
    /// Questions of a topic still to be placed, or those that chance places.
    struct Share
    {
        int wanted = 0;
        int lacking = 0;
        /// In the order of the draw.
        std::vector<Place> questions;
        std::size_t next = 0;

        [[nodiscard]] double part() const { return static_cast<double>(lacking) / wanted; }
        [[nodiscard]] int front() const { return questions[next].drawn; }
    };
    std::map<std::int32_t, Share> shares;
    for (const auto& [topic, wanted] : quotas_) {
        shares[topic] = {std::max(wanted, 1), wanted, {}};
    }
    Share chance{0, asked, {}};
    for (int i = 1; i < from; ++i) {
        if (pool(i).Selected) {
            --chance.lacking;
            if (const auto share = shares.find(pool(i).TopicID); share != shares.end()) {
                --share->second.lacking;
            }
        }
    }
    // A topic gets its first questions; all others are chance's.
    std::vector<Place> leftOver;
    std::map<std::int32_t, int> still;
    for (auto& [topic, share] : shares) {
        still[topic] = std::max(share.lacking, 0);
    }
    for (const Place place : rest) {
        const auto share = shares.find(pool(place.position).TopicID);
        if (share == shares.end()) {
            chance.questions.push_back(place);
        } else if (still[share->first] > 0) {
            --still[share->first];
            share->second.questions.push_back(place);
        } else {
            leftOver.push_back(place);
        }
    }
    for (auto& [topic, share] : shares) {
        share.lacking = static_cast<int>(share.questions.size());
        chance.lacking -= share.lacking;
    }
    chance.questions.insert(chance.questions.end(), leftOver.begin(), leftOver.end());
    chance.lacking = std::clamp(chance.lacking, 0, static_cast<int>(chance.questions.size()));
    chance.wanted = std::max(chance.lacking, 1);

    Order order;
    order.reserve(rest.size());
    for (;;) {
        Share* largest = chance.lacking > 0 ? &chance : nullptr;
        for (auto& [topic, share] : shares) {
            if (share.lacking > 0 &&
                (!largest || share.part() > largest->part() ||
                 (share.part() == largest->part() && share.front() < largest->front()))) {
                largest = &share;
            }
        }
        if (!largest) {
            break;
        }
        order.push_back(largest->questions[largest->next++].position);
        --largest->lacking;
    }
    const auto remainder = chance.questions.begin() + static_cast<std::ptrdiff_t>(chance.next);
    std::sort(remainder, chance.questions.end(),
              [](const Place& a, const Place& b) { return a.drawn < b.drawn; });
    std::transform(remainder, chance.questions.end(), std::back_inserter(order),
                   [](const Place& place) { return place.position; });
    rearrange(pool, from, order);
}

std::vector<ShortTopic> ShortTopics(const Quotas& quotas, const Quotas& available)
{
    std::vector<ShortTopic> result;
    for (const auto& [topic, wanted] : quotas) {
        const auto found = available.find(topic);
        const int has = found == available.end() ? 0 : found->second;
        if (has < wanted) {
            result.push_back({topic, wanted, has});
        }
    }
    return result;
}

Quotas EvenShare(const std::vector<std::pair<std::int32_t, int>>& topics, int asked)
{
    Quotas quotas;
    for (bool any = true; any && asked > 0;) {
        any = false;
        for (const auto& [topic, available] : topics) {
            if (asked > 0 && quotas[topic] < available) {
                ++quotas[topic];
                --asked;
                any = true;
            }
        }
    }
    return quotas;
}

std::optional<int> NearestAfter(const List1<DrawnQuestion>& pool, int position, int from)
{
    const auto next = pool.begin() + (from - 1);
    const auto nearest = NearestQuestion(next, pool.end(), pool(position));
    return nearest == pool.end() ? std::nullopt
                                 : std::optional(from + static_cast<int>(nearest - next));
}

} // namespace varnholt
