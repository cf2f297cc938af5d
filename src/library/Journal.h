#pragma once

#include "library/items.h"
#include "store/statement.h"

#include <QByteArray>

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace varnholt {

class Connection;

/// What a step in the journal did, as a menu entry names it.
enum class StepKind
{
    Add,
    Delete,
    Restore,
    Rename,
    Edit,
    Import
};

/// A step that can be undone or done again.
struct StepInfo
{
    std::int64_t step = 0;
    StepKind kind = StepKind::Edit;
    /// The row that the step was about, under its present name.
    NamedItem subject;
    /// Rows of the subject's kind in the step, itself among them.
    int rows = 1;
};

/// A question whose picture was replaced, or is to be: from one mark to another (see
/// `PictureMark`).
struct TurnedPicture
{
    std::int32_t SOLIndex = 0;
    QString from;
    QString to;
};

/// What undoing (or doing again) came to.
struct UndoOutcome
{
    enum class Result
    {
        Done,
        NothingToDo,
        /// Rows are not as the step left them; nothing has been changed.
        ChangedSince,
        /// Another class has the name that one of the step would have; nothing has been changed.
        NameTaken,
        /// The library takes no such change; `FeatureState` says why.
        Off
    };
    Result result = Result::NothingToDo;
    /// The step it was about.
    std::optional<StepInfo> step;
    /// With `ChangedSince` the rows that stand in the way: those that were changed, those that now
    /// stand under what would go, and what has gone above what would come back. With `NameTaken`
    /// the other class.
    std::vector<NamedItem> inTheWay;
    /// With `Done` the rows that are not as before.
    std::vector<Item> changed;
    /// With `Done` the pictures that are still to be put in their places.
    std::vector<TurnedPicture> pictures;
};

/// The journal of a library: what each step changed, so that it can be undone and done again. A
/// step's rows are recorded by the transaction that changes them. Nothing is ever removed from it.
///
/// A row is compared and restored by its image, all its fields in one text. Where its picture was
/// replaced the mark of the picture follows the fields. A row that an undone
/// step had added is not removed but marked as not available: its key is a picture's name.
///
/// The tables must exist. Everything throws `DatabaseError`.
class Journal
{
public:
    explicit Journal(Connection& connection);
    ~Journal();

    /// Gives up the statements that it keeps ready: before the connection closes, and after tables
    /// have come.
    void clear();

    // Recording, inside the transaction of a change.

    /// Begins a step.
    [[nodiscard]] std::int64_t nextStep();
    /// A row's image; null when there is no such row.
    [[nodiscard]] QByteArray image(Item item);
    /// Records a row as it is now; `before` is its image before the change, null for a new row.
    /// A row that is as before is not recorded.
    void record(std::int64_t step, std::int64_t now, Item item, const QByteArray& before);
    /// Records every row of a kind with a key above `largestKeyBefore`.
    void recordAdded(std::int64_t step, std::int64_t now, ItemKind kind,
                     std::int64_t largestKeyBefore);

    /// Records that a question's picture was replaced.
    void recordPicture(std::int64_t step, std::int64_t now, const TurnedPicture& picture);

    /// Ends a step. If it has recorded anything, what was undone before cannot be done again.
    void endStep(std::int64_t step);

    // Undo and redo.

    [[nodiscard]] std::optional<StepInfo> undoStep();
    [[nodiscard]] std::optional<StepInfo> redoStep();

    /// Inside a transaction of the caller's, to be committed only when the result is `Done`.
    UndoOutcome undo(std::int64_t now);
    UndoOutcome redo(std::int64_t now);

    /// A row's present name.
    [[nodiscard]] NamedItem named(Item item);

private:
    struct ChangedRow
    {
        Item item;
        QByteArray before;
        QByteArray after;
        /// `after` as a row that is not available.
        QByteArray withdrawn;
    };
    using StatementOfKind = const char* (*)(int kind);

    /// A statement made ready at its first use.
    Statement& ready(const char* sql);
    Statement& ready(StatementOfKind sql, ItemKind kind);
    [[nodiscard]] std::vector<ChangedRow> rowsOf(std::int64_t recordedStep);
    [[nodiscard]] std::optional<StepInfo> info(const char* select, bool done);
    UndoOutcome turn(std::optional<StepInfo> step, std::int64_t recordedStep, bool done,
                     std::int64_t now);
    void addRows(std::vector<NamedItem>& rows, const char* select, std::int64_t recordedStep);

    Connection& connection_;
    bool redoIsPossible_ = false;
    std::map<const char*, std::unique_ptr<Statement>> ready_;
};

} // namespace varnholt
