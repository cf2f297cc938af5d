#pragma once

#include "library/items.h"

#include <atomic>
#include <functional>
#include <map>
#include <optional>
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
    /// Another window's business.
    RestoreBackup,
    DeleteQuestion,
    RestorePlace,
    ReplaceApostrophe
};

[[nodiscard]] Remedy RemedyFor(FindingKind kind);
/// Whether a remedy changes the library.
[[nodiscard]] bool ChangesLibrary(Remedy remedy);

/// What applying a remedy came to.
struct RemedyResult
{
    /// An assessment whose name is taken: nothing has been done, and it needs another name.
    std::optional<NamedItem> nameTaken;
    /// The places that have come back. The journal does not take them away again while something
    /// stands in them; deleting them does.
    std::vector<Item> placesBack;
};

/// Applies a remedy that changes the library to the findings that it is for, in one step.
/// `newNames` as in `Library::restore`. Throws `Error`.
RemedyResult ApplyRemedy(Library& library, Remedy remedy, const std::vector<Finding>& findings,
                         const std::map<std::int32_t, QString>& newNames = {});

} // namespace varnholt
