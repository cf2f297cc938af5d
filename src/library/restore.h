#pragma once

#include "library/items.h"

#include <optional>
#include <vector>

namespace varnholt {

class Connection;

/// What bringing a row back from the trash would do, to be told before it is done.
struct RestorePlan
{
    NamedItem item;
    /// What comes back with it because it stands under it: the assessment first.
    std::vector<NamedItem> alsoBack;
    /// The assessment among these whose name another one has taken meanwhile: it needs a new one.
    std::optional<NamedItem> nameTaken;
    /// A row above it that the library does not have at all: what comes back has no place and
    /// would not be seen.
    bool placeMissing = false;
    /// It is there already, or has never been: there is nothing to bring back.
    bool nothingToDo = false;
};

/// Throws `DatabaseError`.
[[nodiscard]] RestorePlan PlanRestore(Connection& connection, Item item);

/// The assessment, topic and subtopic that a row stands under, itself included; 0 where its kind
/// knows none and for what is not available. Throws `DatabaseError`.
[[nodiscard]] Filing AvailablePlace(Connection& connection, Item item);

/// Whether an available assessment other than `except` has the name.
[[nodiscard]] bool IsAssessmentNameTaken(Connection& connection, const QString& name,
                                         std::int32_t except);

} // namespace varnholt
