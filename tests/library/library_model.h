#pragma once

#include "library/Library.h"

#include <algorithm>
#include <map>
#include <optional>

namespace varnholt::test {

using namespace Qt::StringLiterals;

/// A library as plain rows in memory, with undo and redo: what the real one is held against.
class LibraryModel
{
public:
    struct Row
    {
        bool available = true;
        QString name;
        Filing place;
    };
    using Rows = std::map<Item, Row>;

    Rows rows;

    /// Runs a change and remembers it as one step.
    template <typename Work>
    void change(Work work)
    {
        const Rows before = rows;
        work();
        Step step;
        for (const auto& [item, row] : rows) {
            const auto old = before.find(item);
            if (old == before.end() || describe(*old) != describe({item, row})) {
                step[item] = {old == before.end() ? std::nullopt : std::optional(old->second), row};
            }
        }
        if (!step.empty()) {
            past.push_back(std::move(step));
            future.clear();
        }
    }

    Item add(ItemKind kind, const QString& name, Filing place)
    {
        std::int32_t key = 0;
        for (const auto& [item, row] : rows) {
            key = item.kind == kind ? std::max(key, item.key) : key;
        }
        rows[{kind, key + 1}] = {true, name, place};
        return {kind, key + 1};
    }

    bool undo()
    {
        if (past.empty()) {
            return false;
        }
        for (const auto& [item, images] : past.back()) {
            if (images.first) {
                rows[item] = *images.first;
            } else {
                rows[item].available = false;
            }
        }
        future.push_back(std::move(past.back()));
        past.pop_back();
        return true;
    }
    bool redo()
    {
        if (future.empty()) {
            return false;
        }
        for (const auto& [item, images] : future.back()) {
            rows[item] = images.second;
        }
        past.push_back(std::move(future.back()));
        future.pop_back();
        return true;
    }

    /// The rows above one, the assessment first.
    [[nodiscard]] static std::vector<Item> above(Item item, const Filing& place)
    {
        const Item all[] = {{ItemKind::Assessment, place.AssessmentNum},
                            {ItemKind::Topic, place.TopicID},
                            {ItemKind::Subtopic, place.SubtopicNum}};
        return {all, all + static_cast<int>(item.kind) - 1};
    }
    [[nodiscard]] bool reachable(Item item) const
    {
        const Row& row = rows.at(item);
        const std::vector<Item> parents = above(item, row.place);
        return row.available && std::all_of(parents.begin(), parents.end(),
                                            [&](Item p) { return rows.at(p).available; });
    }
    /// Reachable rows of a kind, or those that are not.
    [[nodiscard]] std::vector<Item> items(ItemKind kind, bool reached = true) const
    {
        std::vector<Item> found;
        for (const auto& [item, row] : rows) {
            if (item.kind == kind && reachable(item) == reached) {
                found.push_back(item);
            }
        }
        return found;
    }
    [[nodiscard]] bool isBare(Item item) const
    {
        return std::none_of(rows.begin(), rows.end(), [&](const auto& entry) {
            const std::vector<Item> parents = above(entry.first, entry.second.place);
            return entry.second.available && !parents.empty() && parents.back() == item;
        });
    }

    [[nodiscard]] static QString describe(const std::pair<const Item, Row>& entry)
    {
        const auto& [item, row] = entry;
        return u"%1 %2 %3 %4 %5/%6/%7"_s.arg(static_cast<int>(item.kind))
            .arg(item.key)
            .arg(row.available)
            .arg(row.name)
            .arg(row.place.AssessmentNum)
            .arg(row.place.TopicID)
            .arg(row.place.SubtopicNum);
    }
    [[nodiscard]] QStringList dump() const
    {
        QStringList lines;
        std::transform(rows.begin(), rows.end(), std::back_inserter(lines), describe);
        return lines;
    }

    using Step = std::map<Item, std::pair<std::optional<Row>, Row>>;
    std::vector<Step> past;
    std::vector<Step> future;
};

/// The rows of a real library, in the words of the model.
inline LibraryModel::Rows readRows(Connection& connection)
{
    LibraryModel::Rows rows;
    Statement all(connection,
                  "SELECT 1, AssessmentNum, Available, AssessmentName, 0, 0, 0 FROM Assessments"
                  " UNION ALL SELECT 2, TopicID, Available, Topic, AssessmentNum, 0, 0 FROM Topics"
                  " UNION ALL SELECT 3, SubtopicNum, Available, SubTopic, AssessmentNum, TopicID, 0"
                  " FROM SubTopics UNION ALL SELECT 4, SOLIndex, Available, Answer, AssessmentNum,"
                  " TopicID, SubTopicNum FROM Questions");
    const auto number = [&all](int field) { return static_cast<std::int32_t>(all.integer(field)); };
    while (all.next()) {
        rows[{static_cast<ItemKind>(number(0)), number(1)}] = {
            number(2) != 0, all.text(3), {number(4), number(5), number(6)}};
    }
    return rows;
}

} // namespace varnholt::test
