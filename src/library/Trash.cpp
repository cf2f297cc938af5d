#include "library/Trash.h"

#include "store/connection.h"
#include "store/plus_statements.h"
#include "store/statement.h"

#include <QHash>

#include <algorithm>
#include <array>
#include <unordered_map>

namespace varnholt {

namespace sql = plus_statements;

namespace {

constexpr int classicKinds = 4;
constexpr int allKinds = 6;

std::uint64_t packed(Item item)
{
    return static_cast<std::uint64_t>(item.kind) << 32 | static_cast<std::uint32_t>(item.key);
}

/// How many names of a row's place its kind has.
int depth(ItemKind kind)
{
    return kind == ItemKind::Class ? 0 : kind == ItemKind::Test ? 1 : static_cast<int>(kind) - 1;
}

TrashTexts readTexts(const Statement& row, int field, ItemKind kind)
{
    TrashTexts texts{row.text(field), {}};
    for (int i = 1; i <= depth(kind); ++i) {
        texts.place.append(row.text(field + i));
    }
    return texts;
}

} // namespace

QString TrashTexts::placeText() const
{
    return place.join(QStringLiteral(" > "));
}

Trash::Trash(Connection& connection, bool dated)
    : connection_(connection)
    , kinds_(dated ? allKinds : classicKinds)
{
    for (int kind = 1; kind <= kinds_; ++kind) {
        Statement rows(connection_, sql::SelectGone(kind));
        while (rows.next()) {
            entries_.push_back(
                {{static_cast<ItemKind>(kind), static_cast<std::int32_t>(rows.integer(0))},
                 std::nullopt,
                 false});
        }
    }
    if (dated && !entries_.empty()) {
        readDates();
    }
    std::unordered_map<std::int32_t, std::optional<std::int64_t>> assessments;
    for (const TrashEntry& entry : entries_) {
        if (entry.item.kind == ItemKind::Assessment) {
            assessments.emplace(entry.item.key, entry.deletedAt);
        }
    }
    Statement rows(connection_, sql::SelectGoneWithAssessment);
    while (rows.next()) {
        entries_.push_back({{ItemKind::Question, static_cast<std::int32_t>(rows.integer(0))},
                            assessments.at(static_cast<std::int32_t>(rows.integer(1))),
                            true});
    }
    sort();
}

void Trash::readDates()
{
    // Keys are dense, so that a place for each costs less than finding it; others are rare.
    constexpr std::uint64_t denseKeys = 1 << 22;
    std::array<std::vector<TrashEntry*>, allKinds + 1> dense;
    std::unordered_map<std::uint64_t, TrashEntry*> others;
    for (TrashEntry& entry : entries_) {
        const auto key = static_cast<std::uint64_t>(entry.item.key);
        if (key >= denseKeys) {
            others.emplace(packed(entry.item), &entry);
            continue;
        }
        auto& ofKind = dense.at(static_cast<std::size_t>(entry.item.kind));
        if (ofKind.size() <= key) {
            ofKind.resize(key + 1);
        }
        ofKind[key] = &entry;
    }
    Statement changes(connection_, sql::SelectChangeTimes);
    while (changes.next()) {
        const std::int64_t kind = changes.integer(0);
        const auto key = static_cast<std::uint64_t>(changes.integer(1));
        TrashEntry* entry = nullptr;
        if (kind >= 1 && kind <= allKinds && key < dense[static_cast<std::size_t>(kind)].size()) {
            entry = dense[static_cast<std::size_t>(kind)][key];
        } else if (key >= denseKeys) {
            const auto found =
                others.find(packed({static_cast<ItemKind>(kind), static_cast<std::int32_t>(key)}));
            entry = found == others.end() ? nullptr : found->second;
        }
        // The last of a row's changes is the one that it went with.
        if (entry) {
            entry->deletedAt = changes.integer(2);
        }
    }
}

void Trash::sort()
{
    // The newest rows first among those of one moment; what comes out of the library is in the
    // order of kinds and keys already.
    std::reverse(entries_.begin(), entries_.end());
    const auto isNewer = [](const TrashEntry& a, const TrashEntry& b) {
        return a.deletedAt.value_or(0) > b.deletedAt.value_or(0);
    };
    if (!std::is_sorted(entries_.begin(), entries_.end(), isNewer)) {
        std::stable_sort(entries_.begin(), entries_.end(), isNewer);
    }
}

TrashTexts Trash::texts(Item item) const
{
    Statement row(connection_, sql::SelectTrashTexts(static_cast<int>(item.kind)));
    row.bind(1, std::int64_t{item.key});
    return row.next() ? readTexts(row, 0, item.kind) : TrashTexts{};
}

std::vector<std::size_t> Trash::matching(const QString& filter) const
{
    const QStringList words = filter.simplified().split(u' ', Qt::SkipEmptyParts);
    std::vector<std::size_t> positions;
    if (words.isEmpty()) {
        positions.resize(entries_.size());
        for (std::size_t i = 0; i < positions.size(); ++i) {
            positions[i] = i;
        }
        return positions;
    }
    QHash<std::uint64_t, bool> matches;
    for (int kind = 1; kind <= kinds_; ++kind) {
        Statement rows(connection_, sql::SelectAllTrashTexts(kind));
        while (rows.next()) {
            const Item item{static_cast<ItemKind>(kind),
                            static_cast<std::int32_t>(rows.integer(0))};
            const TrashTexts texts = readTexts(rows, 1, item.kind);
            const QString all = texts.name + u' ' + texts.placeText();
            if (std::all_of(words.begin(), words.end(), [&](const QString& word) {
                    return all.contains(word, Qt::CaseInsensitive);
                })) {
                matches.insert(packed(item), true);
            }
        }
    }
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        if (matches.contains(packed(entries_[i].item))) {
            positions.push_back(i);
        }
    }
    return positions;
}

} // namespace varnholt
