#pragma once

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

namespace varnholt {

class Connection;

/// How many of a class knew a question. The numbers stand in the library.
enum class Outcome : std::int8_t
{
    Unknown = 0,
    Few = 1,
    Half = 2,
    Most = 3
};

/// One time that a question was used. Times are seconds of UTC.
struct Use
{
    std::int32_t SOLIndex = 0;
    /// 0 when it was for no class in particular.
    std::int32_t ClassID = 0;
    std::int64_t usedAt = 0;
    Outcome outcome = Outcome::Unknown;
};

/// What there is to know of a question's uses.
struct UseSummary
{
    int uses = 0;
    /// Of the last use; 0 without one.
    std::int64_t lastUsed = 0;
    std::int32_t lastClass = 0;
    /// The last one known.
    Outcome outcome = Outcome::Unknown;
    /// When the question is to be asked again, if its last outcome was few or half.
    std::optional<std::int64_t> dueAt;
};

/// How fresh each question is for a class: the rank 0 for those never used, then by fewest uses
/// and by the oldest use. A snapshot.
class FreshRanks
{
public:
    FreshRanks() = default;

    /// From 0 to `count() - 1`.
    [[nodiscard]] std::int32_t of(std::int32_t solIndex) const;
    [[nodiscard]] std::int32_t count() const { return count_; }
    /// The questions that are due, the one due longest first.
    [[nodiscard]] const std::vector<std::int32_t>& due() const { return due_; }

private:
    friend class UseBook;

    std::int32_t count_ = 1;
    /// Ranks of the keys from `firstKey_` on, where keys lie close together; otherwise `sparse_`.
    std::int32_t firstKey_ = 0;
    std::vector<std::int32_t> dense_;
    std::unordered_map<std::int32_t, std::int32_t> sparse_;
    std::vector<std::int32_t> due_;
};

/// When and with whom the questions of an assessment were used. A question that has been edited or
/// filed elsewhere keeps its past. Read anew after a use was recorded.
///
/// Asked about a class it tells of that class alone, asked about `anybody` of all uses, those of
/// classes that have been deleted among them.
class UseBook
{
public:
    static constexpr std::int32_t anybody = 0;

    UseBook() = default;
    explicit UseBook(std::vector<Use> uses);

    /// The program's own tables must exist. Throws `DatabaseError`.
    [[nodiscard]] static UseBook read(Connection& connection, std::int32_t assessmentNum);

    /// A use in the future, after the clock was set back, counts as one at `now`.
    [[nodiscard]] UseSummary of(std::int32_t solIndex, std::int32_t classId,
                                std::int64_t now) const;
    [[nodiscard]] FreshRanks ranks(std::int32_t classId, std::int64_t now) const;

private:
    using Position = std::vector<Use>::const_iterator;
    [[nodiscard]] static UseSummary summarise(Position begin, Position end, std::int32_t classId,
                                              std::int64_t now);

    /// By question, and within a question in the order in which they were recorded.
    std::vector<Use> uses_;
};

} // namespace varnholt
