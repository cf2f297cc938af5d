#include "library/restore.h"

#include "store/connection.h"
#include "store/plus_statements.h"
#include "store/statement.h"

namespace varnholt {

namespace sql = plus_statements;

namespace {

struct Found
{
    bool exists = false;
    bool available = false;
    NamedItem named;
};

Found find(Connection& connection, Item item)
{
    Statement row(connection, sql::SelectName(static_cast<int>(item.kind)));
    row.bind(1, std::int64_t{item.key});
    if (!row.next()) {
        return {false, false, {item, {}}};
    }
    return {true, row.integer(1) != 0, {item, row.text(0)}};
}

/// The rows that an item stands under, the assessment first.
std::vector<Item> above(Connection& connection, Item item)
{
    if (item.kind > ItemKind::Question) {
        return {};
    }
    Statement place(connection, sql::SelectPlace(static_cast<int>(item.kind)));
    place.bind(1, std::int64_t{item.key});
    std::vector<Item> items;
    if (place.next()) {
        for (int kind = 1; kind < static_cast<int>(item.kind); ++kind) {
            items.push_back(
                {static_cast<ItemKind>(kind), static_cast<std::int32_t>(place.integer(kind - 1))});
        }
    }
    return items;
}

} // namespace

Filing AvailablePlace(Connection& connection, Item item)
{
    std::vector<Item> rows = above(connection, item);
    rows.push_back(item);
    Filing place;
    for (const Item row : rows) {
        const std::int32_t key = find(connection, row).available ? row.key : 0;
        switch (row.kind) {
        case ItemKind::Assessment:
            place.AssessmentNum = key;
            break;
        case ItemKind::Topic:
            place.TopicID = key;
            break;
        case ItemKind::Subtopic:
            place.SubtopicNum = key;
            break;
        case ItemKind::Question:
        case ItemKind::Class:
        case ItemKind::Test:
        case ItemKind::Use:
            break;
        }
    }
    return place;
}

bool IsAssessmentNameTaken(Connection& connection, const QString& name, std::int32_t except)
{
    Statement rows(connection, sql::SelectAssessmentsNamed);
    rows.bind(1, name);
    while (rows.next()) {
        if (rows.integer(0) != except) {
            return true;
        }
    }
    return false;
}

RestorePlan PlanRestore(Connection& connection, Item item)
{
    const Found self = find(connection, item);
    RestorePlan plan;
    plan.item = self.named;
    for (const Item parent : above(connection, item)) {
        const Found found = find(connection, parent);
        plan.placeMissing = plan.placeMissing || !found.exists;
        if (found.exists && !found.available) {
            plan.alsoBack.push_back(found.named);
        }
    }
    plan.nothingToDo = !self.exists || (self.available && plan.alsoBack.empty());

    const std::optional<NamedItem> assessment =
        item.kind == ItemKind::Assessment && !self.available ? std::optional(self.named)
        : !plan.alsoBack.empty() && plan.alsoBack.front().item.kind == ItemKind::Assessment
            ? std::optional(plan.alsoBack.front())
            : std::nullopt;
    if (assessment && IsAssessmentNameTaken(connection, assessment->name, assessment->item.key)) {
        plan.nameTaken = assessment;
    }
    return plan;
}

} // namespace varnholt
