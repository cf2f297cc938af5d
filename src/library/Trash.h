#pragma once

#include "library/items.h"

#include <QStringList>

#include <optional>
#include <vector>

namespace varnholt {

class Connection;

/// A row that a user has deleted.
struct TrashEntry
{
    Item item;
    /// When it went, in seconds of UTC; none for what an older program deleted.
    std::optional<std::int64_t> deletedAt;
    /// Not deleted itself, but in a deleted assessment.
    bool goneWithAssessment = false;
};

/// What a trash entry shows.
struct TrashTexts
{
    /// The name, or a question's answer.
    QString name;
    /// The names of the assessment, topic and subtopic that it stood under, as many as its kind
    /// has; a name is empty where the row is missing.
    QStringList place;

    /// "Maths > Algebra > Sequences".
    [[nodiscard]] QString placeText() const;
};

/// Everything a user has deleted, the newest first and what has no date at the end. Nothing is
/// ever removed from a library, so these are its rows that are not available, and the questions of
/// deleted assessments. A picture of the moment: make it anew after a change. Texts are read when
/// they are asked for. Everything throws `DatabaseError`.
class Trash
{
public:
    /// `dated`: the library has the program's own tables, with a journal to read the dates from.
    Trash(Connection& connection, bool dated);

    [[nodiscard]] const std::vector<TrashEntry>& entries() const { return entries_; }
    [[nodiscard]] TrashTexts texts(Item item) const;
    /// Positions in `entries()` of those whose name or place holds every word of `filter`, in any
    /// case; all of them for an empty filter.
    [[nodiscard]] std::vector<std::size_t> matching(const QString& filter) const;

private:
    void readDates();
    void sort();

    Connection& connection_;
    int kinds_;
    std::vector<TrashEntry> entries_;
};

} // namespace varnholt
