#include "library/UseBook.h"

#include "store/plus_statements.h"
#include "store/statement.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace varnholt {

namespace {

constexpr std::int64_t secondsPerDay = 86'400;
/// Days until a question is asked again, a box for each time that most of the class knew it.
constexpr std::array<std::int64_t, 5> boxDays{1, 3, 7, 21, 60};

bool byQuestion(const Use& a, const Use& b)
{
    return a.SOLIndex < b.SOLIndex;
}

/// Between questions of one assessment lie those of others; where too many do, a map is smaller.
constexpr std::int64_t widestGap = 64;

} // namespace

std::int32_t FreshRanks::of(std::int32_t solIndex) const
{
    if (!sparse_.empty()) {
        const auto found = sparse_.find(solIndex);
        return found == sparse_.end() ? 0 : found->second;
    }
    const std::int64_t place = std::int64_t{solIndex} - firstKey_;
    return place >= 0 && place < static_cast<std::int64_t>(dense_.size())
               ? dense_[static_cast<std::size_t>(place)]
               : 0;
}

UseBook::UseBook(std::vector<Use> uses)
    : uses_(std::move(uses))
{
    std::stable_sort(uses_.begin(), uses_.end(), byQuestion);
}

UseBook UseBook::read(Connection& connection, std::int32_t assessmentNum)
{
    std::vector<Use> uses;
    Statement rows(connection, plus_statements::SelectUses);
    rows.bind(1, std::int64_t{assessmentNum});
    while (rows.next()) {
        uses.push_back({static_cast<std::int32_t>(rows.integer(0)),
                        static_cast<std::int32_t>(rows.integer(1)), rows.integer(2),
                        static_cast<Outcome>(rows.integer(3))});
    }
    return UseBook(std::move(uses));
}

UseSummary UseBook::summarise(Position begin, Position end, std::int32_t classId, std::int64_t now)
{
    UseSummary summary;
    std::size_t box = 0;
    for (Position use = begin; use != end; ++use) {
        if (classId != anybody && use->ClassID != classId) {
            continue;
        }
        ++summary.uses;
        summary.lastUsed = std::min(use->usedAt, now);
        summary.lastClass = use->ClassID;
        if (use->outcome == Outcome::Unknown) {
            continue;
        }
        summary.outcome = use->outcome;
        if (use->outcome == Outcome::Few) {
            box = 0;
        } else if (use->outcome == Outcome::Most) {
            box = std::min(box + 1, boxDays.size() - 1);
        }
    }
    if (summary.outcome == Outcome::Few || summary.outcome == Outcome::Half) {
        summary.dueAt = summary.lastUsed + boxDays[box] * secondsPerDay;
    }
    return summary;
}

UseSummary UseBook::of(std::int32_t solIndex, std::int32_t classId, std::int64_t now) const
{
    const auto [begin, end] =
        std::equal_range(uses_.begin(), uses_.end(), Use{solIndex, 0, 0, {}}, byQuestion);
    return summarise(begin, end, classId, now);
}

FreshRanks UseBook::ranks(std::int32_t classId, std::int64_t now) const
{
    struct Used
    {
        std::int32_t key;
        int uses;
        std::int64_t lastUsed;
    };
    std::vector<Used> used;
    std::vector<std::pair<std::int64_t, std::int32_t>> due;
    for (Position begin = uses_.begin(); begin != uses_.end();) {
        const Position end = std::upper_bound(begin, uses_.end(), *begin, byQuestion);
        const UseSummary summary = summarise(begin, end, classId, now);
        if (summary.uses > 0) {
            used.push_back({begin->SOLIndex, summary.uses, summary.lastUsed});
        }
        if (summary.dueAt && *summary.dueAt <= now) {
            due.emplace_back(*summary.dueAt, begin->SOLIndex);
        }
        begin = end;
    }

    FreshRanks ranks;
    std::sort(due.begin(), due.end());
    for (const auto& [since, key] : due) {
        ranks.due_.push_back(key);
    }
    if (used.empty()) {
        return ranks;
    }
    const std::int64_t span = std::int64_t{used.back().key} - used.front().key + 1;
    const bool dense = span <= widestGap * static_cast<std::int64_t>(used.size());
    ranks.firstKey_ = used.front().key;
    if (dense) {
        ranks.dense_.resize(static_cast<std::size_t>(span), 0);
    }
    const auto order = [](const Used& row) { return std::pair(row.uses, row.lastUsed); };
    std::sort(used.begin(), used.end(),
              [&](const Used& a, const Used& b) { return order(a) < order(b); });
    for (std::size_t i = 0; i < used.size(); ++i) {
        ranks.count_ += i == 0 || order(used[i - 1]) < order(used[i]) ? 1 : 0;
        const std::int32_t rank = ranks.count_ - 1;
        if (dense) {
            ranks.dense_[static_cast<std::size_t>(used[i].key - ranks.firstKey_)] = rank;
        } else {
            ranks.sparse_.emplace(used[i].key, rank);
        }
    }
    return ranks;
}

} // namespace varnholt
