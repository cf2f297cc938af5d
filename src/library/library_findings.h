#pragma once

#include "library/items.h"

#include <atomic>
#include <functional>
#include <vector>

namespace varnholt {

class Library;

/// What can be wrong with a library.
enum class FindingKind
{
    /// The library file is damaged: rows may be missing.
    Damaged,
    PictureMissing,
    /// There is a picture, but it cannot be shown.
    PictureUnreadable,
    /// A picture in the folder that belongs to no question, deleted ones included.
    PictureWithoutRow,
    /// A question that nobody sees because what it stands under is deleted.
    PlaceDeleted,
    /// The same where what it stands under is not in the library at all.
    PlaceMissing,
    /// Rows with keys beyond 16 bits, which some windows cannot change.
    LargeKeys,
    /// A text with an apostrophe, which cannot be saved again.
    Apostrophe
};

struct Finding
{
    FindingKind kind = FindingKind::Damaged;
    /// The row, or with `LargeKeys` its kind.
    Item item;
    /// The row's name or a question's answer; a picture's file name.
    QString name;
    /// The names above the row.
    QString place;
    /// With `LargeKeys` how many rows.
    std::int64_t count = 0;

    friend bool operator==(const Finding&, const Finding&) = default;
};

/// Looks through a whole library over a connection of its own, so that it may run on any thread.
/// Ends early once `stop` is set. `progress` is told the things done of all things. Throws
/// `DatabaseError`.
[[nodiscard]] std::vector<Finding>
LookThroughLibrary(const QString& programFolder, const std::atomic<bool>& stop,
                   const std::function<void(std::size_t done, std::size_t all)>& progress = {});

/// What the program can do about a finding by itself.
enum class Remedy
{
    None,
    /// For the user to look at.
    ShowFolder,
    DeleteQuestion,
    RestorePlace,
    ReplaceApostrophe
};

[[nodiscard]] Remedy RemedyFor(FindingKind kind);

/// Applies the remedy as one step that can be undone; `None` and `ShowFolder` change nothing.
/// Throws `Error`.
void ApplyRemedy(Library& library, const Finding& finding);

} // namespace varnholt
