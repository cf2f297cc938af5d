#include "selection/draw_order.h"

#include "store/nearest.h"

#include <algorithm>
#include <functional>
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

/// Moves the questions at these positions, from `from` on, there in this order; the others follow
/// in theirs.
void moveToFront(List1<DrawnQuestion>& pool, int from, const Order& order)
{
    std::vector<DrawnQuestion> records;
    records.reserve(order.size());
    for (const int position : order) {
        records.push_back(std::move(pool(position)));
    }
    Order gaps = order;
    std::sort(gaps.begin(), gaps.end(), std::greater<>());
    gaps.push_back(from - 1);
    for (std::size_t i = 0; i + 1 < gaps.size(); ++i) {
        std::move_backward(pool.begin() + gaps[i + 1], pool.begin() + (gaps[i] - 1),
                           pool.begin() + (gaps[i] + static_cast<int>(i)));
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
    drawnKeys_.reserve(static_cast<std::size_t>(pool.upperBound()));
    for (const DrawnQuestion& question : pool) {
        drawnKeys_.push_back(question.SOLIndex);
    }
    place(pool, 1, asked);
}

void QuotaOrder::readDraw()
{
    if (drawn_.empty()) {
        for (std::size_t i = 0; i < drawnKeys_.size(); ++i) {
            drawn_.emplace(drawnKeys_[i], static_cast<int>(i) + 1);
        }
    }
}

void QuotaOrder::arrange(List1<DrawnQuestion>& pool, int from, std::int32_t asked)
{
    if (quotas_.empty() || from > pool.upperBound()) {
        return;
    }
    readDraw();
    std::vector<std::pair<int, int>> rest;
    for (int i = from; i <= pool.upperBound(); ++i) {
        rest.emplace_back(drawn_.at(pool(i).SOLIndex), i);
    }
    std::sort(rest.begin(), rest.end());
    Order order;
    order.reserve(rest.size());
    for (const auto& [drawn, position] : rest) {
        order.push_back(position);
    }
    rearrange(pool, from, order);
    place(pool, from, asked);
}

void QuotaOrder::putLast(std::int32_t solIndex)
{
    if (!quotas_.empty()) {
        readDraw();
        drawnKeys_.push_back(solIndex);
        drawn_[solIndex] = static_cast<int>(drawnKeys_.size());
    }
}

void QuotaOrder::place(List1<DrawnQuestion>& pool, int from, std::int32_t asked) const
{
    /// What a topic is still to give, or chance.
    struct Share
    {
        int wanted = 0;
        int lacking = 0;
        /// Of its questions that are to come, in the order of the draw.
        Order positions;
        std::size_t next = 0;

        [[nodiscard]] double part() const { return static_cast<double>(lacking) / wanted; }
        [[nodiscard]] int front() const { return positions[next]; }
    };
    std::unordered_map<std::int32_t, Share> shares;
    for (const auto& [topic, wanted] : quotas_) {
        shares[topic] = {wanted, wanted, {}};
    }
    Share chance{0, asked, {}};
    for (int i = 1; i < from; ++i) {
        if (pool(i).Selected) {
            --chance.lacking;
            const auto share = shares.find(pool(i).TopicID);
            if (share == shares.end() || share->second.lacking == 0) {
                ++chance.wanted;
            } else {
                --share->second.lacking;
            }
        }
    }
    // A topic gets its first questions; all others are chance's.
    const int most = chance.lacking;
    int open = 0;
    for (const auto& [topic, share] : shares) {
        open += share.lacking;
    }
    chance.lacking -= open;
    Order leftOver;
    for (int i = from; i <= pool.upperBound(); ++i) {
        if (open == 0 && static_cast<int>(chance.positions.size()) >= chance.lacking) {
            break;
        }
        const auto share = shares.find(pool(i).TopicID);
        if (share == shares.end()) {
            chance.positions.push_back(i);
        } else if (share->second.lacking > static_cast<int>(share->second.positions.size())) {
            share->second.positions.push_back(i);
            --open;
        } else if (static_cast<int>(leftOver.size()) < most) {
            leftOver.push_back(i);
        }
    }
    // Where topics ran dry, their places are for all.
    chance.lacking += open;
    for (auto& [topic, share] : shares) {
        share.lacking = static_cast<int>(share.positions.size());
    }
    chance.positions.insert(chance.positions.end(), leftOver.begin(), leftOver.end());
    chance.lacking = std::clamp(chance.lacking, 0, static_cast<int>(chance.positions.size()));
    chance.wanted += chance.lacking;

    Order order;
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
        order.push_back(largest->front());
        ++largest->next;
        --largest->lacking;
    }
    // What chance took of a topic may stand before the topic's own.
    std::unordered_map<std::int32_t, Order> ofTopic;
    for (const int position : order) {
        ofTopic[pool(position).TopicID].push_back(position);
    }
    for (auto& [topic, positions] : ofTopic) {
        std::sort(positions.begin(), positions.end(), std::greater<>());
    }
    for (int& position : order) {
        Order& positions = ofTopic[pool(position).TopicID];
        position = positions.back();
        positions.pop_back();
    }
    moveToFront(pool, from, order);
}

std::vector<ShortTopic> QuotaOrder::shortTopics(const List1<DrawnQuestion>& pool, int from) const
{
    if (quotas_.empty()) {
        return {};
    }
    Quotas available;
    for (int i = 1; i <= pool.upperBound(); ++i) {
        if (i >= from || pool(i).Selected) {
            ++available[pool(i).TopicID];
        }
    }
    return ShortTopics(quotas_, available);
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
