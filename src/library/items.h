#pragma once

#include <QString>

#include <cstdint>
#include <vector>

namespace varnholt {

/// The kinds of rows that a user's changes are about. The numbers stand in the journal.
enum class ItemKind : std::int8_t
{
    Assessment = 1,
    Topic = 2,
    Subtopic = 3,
    Question = 4,
    // These stand under nothing, and only in libraries with the program's own tables.
    Class = 5,
    Test = 6,
    /// Known by its question's answer. Nobody deletes or renames one.
    Use = 7
};

/// One row of the library: its kind and its key.
struct Item
{
    ItemKind kind = ItemKind::Question;
    std::int32_t key = 0;

    friend bool operator==(const Item&, const Item&) = default;
    friend auto operator<=>(const Item&, const Item&) = default;
};

/// A row with what a user knows it by: its name, or a question's answer.
struct NamedItem
{
    Item item;
    QString name;

    friend bool operator==(const NamedItem&, const NamedItem&) = default;
};

/// Where a question is filed.
struct Filing
{
    std::int32_t AssessmentNum = 0;
    std::int32_t TopicID = 0;
    std::int32_t SubtopicNum = 0;
};

/// What observers are told after a change: every row that is not as it was.
struct LibraryChange
{
    std::vector<Item> items;

    [[nodiscard]] bool touches(ItemKind kind) const
    {
        for (const Item& item : items) {
            if (item.kind == kind) {
                return true;
            }
        }
        return false;
    }
};

} // namespace varnholt
