#include "manage/undo_words.h"

#include "library/Library.h"

#include <QCoreApplication>
#include <QStringList>

namespace varnholt {

namespace {

class UndoWords
{
    Q_DECLARE_TR_FUNCTIONS(UndoWords)

public:
    static QString done(const StepInfo& step);
    static QString undone(const StepInfo& step);
    static QString inTheWay(const UndoOutcome& outcome, bool undo);
    static QString memoryUndone(Library& library);

private:
    /// What is said of a question or several, of one row with a name, or of one and the others of
    /// its kind.
    static QString about(const StepInfo& step, const QString& questions, const QString& named,
                         const QString& several)
    {
        const NamedItem& subject = step.subject;
        return subject.item.kind == ItemKind::Question
                   ? questions
                   : (step.rows > 1 ? several : named).arg(subject.name);
    }
};

QString UndoWords::done(const StepInfo& step)
{
    const int n = step.rows;
    if (step.subject.item.kind == ItemKind::Use) {
        return tr("It is noted how many knew %n question(s).", nullptr, n);
    }
    switch (step.kind) {
    case StepKind::Add:
        return about(step, tr("%n question(s) added.", nullptr, n), tr("“%1” added."),
                     tr("“%1” and %n more added.", nullptr, n - 1));
    case StepKind::Delete:
        return about(step, tr("%n question(s) deleted.", nullptr, n), tr("“%1” deleted."),
                     tr("“%1” and %n more deleted.", nullptr, n - 1));
    case StepKind::Restore:
        return about(step, tr("%n question(s) brought back.", nullptr, n), tr("“%1” brought back."),
                     tr("“%1” and %n more brought back.", nullptr, n - 1));
    case StepKind::Rename:
        return tr("The new name is “%1”.").arg(step.subject.name);
    case StepKind::Import:
        return tr("“%1” imported.").arg(step.subject.name);
    case StepKind::Edit:
        break;
    }
    return about(step, tr("%n question(s) changed.", nullptr, n), tr("“%1” changed."),
                 tr("“%1” and %n more changed.", nullptr, n - 1));
}

QString UndoWords::undone(const StepInfo& step)
{
    const int n = step.rows;
    if (step.subject.item.kind == ItemKind::Use) {
        return tr("Undone: how many knew %n question(s) is as before.", nullptr, n);
    }
    switch (step.kind) {
    case StepKind::Add:
        return about(step, tr("Undone: %n question(s) are no longer there.", nullptr, n),
                     tr("Undone: “%1” is no longer there."),
                     tr("Undone: “%1” and %n more are no longer there.", nullptr, n - 1));
    case StepKind::Delete:
        return about(step, tr("Undone: %n question(s) are back.", nullptr, n),
                     tr("Undone: “%1” is back."),
                     tr("Undone: “%1” and %n more are back.", nullptr, n - 1));
    case StepKind::Restore:
        return about(step, tr("Undone: %n question(s) are deleted again.", nullptr, n),
                     tr("Undone: “%1” is deleted again."),
                     tr("Undone: “%1” and %n more are deleted again.", nullptr, n - 1));
    case StepKind::Rename:
        return tr("Undone: “%1” has its old name again.").arg(step.subject.name);
    case StepKind::Import:
        return tr("Undone: “%1” is no longer there.").arg(step.subject.name);
    case StepKind::Edit:
        break;
    }
    return about(step, tr("Undone: %n question(s) are as before.", nullptr, n),
                 tr("Undone: “%1” is as it was."),
                 tr("Undone: “%1” and %n more are as before.", nullptr, n - 1));
}

QString UndoWords::inTheWay(const UndoOutcome& outcome, bool undo)
{
    const std::vector<NamedItem>& inTheWay = outcome.inTheWay;
    if (outcome.result == UndoOutcome::Result::NameTaken) {
        return (undo && outcome.step->kind == StepKind::Delete
                    ? tr("The class cannot come back, because there is another class “%1” now. "
                         "Give that one another name, then bring this one back from the trash.")
                : undo ? tr("The last change cannot be undone, because there is another class "
                            "“%1” now.")
                       : tr("The change cannot be made again, because there is another class "
                            "“%1” now."))
            .arg(inTheWay.front().name);
    }
    constexpr std::size_t shown = 3;
    QStringList rows;
    for (const NamedItem& row : inTheWay) {
        if (rows.size() == shown) {
            rows.append(tr("%n more", nullptr, static_cast<int>(inTheWay.size() - shown)));
            break;
        }
        const bool question = row.item.kind == ItemKind::Question || row.item.kind == ItemKind::Use;
        rows.append(
            (question ? tr("the question with the answer “%1”") : tr("“%1”")).arg(row.name));
    }
    return (undo ? tr("The last change cannot be undone, because this has been changed since: %1.")
                 : tr("The change cannot be made again, because this has been changed since: %1."))
        .arg(rows.join(QStringLiteral(", ")));
}

QString UndoWords::memoryUndone(Library& library)
{
    const std::optional<StepInfo> step = library.undoStep();
    if (!step || step->subject.item.kind < ItemKind::Class) {
        return tr("There is nothing to undo here.");
    }
    const UndoOutcome outcome = library.undo();
    return outcome.result == UndoOutcome::Result::Done ? undone(*step) : inTheWay(outcome, true);
}

} // namespace

QString DoneSentence(const StepInfo& step)
{
    return UndoWords::done(step);
}

QString UndoneSentence(const StepInfo& step)
{
    return UndoWords::undone(step);
}

QString InTheWaySentence(const UndoOutcome& outcome, bool undo)
{
    return UndoWords::inTheWay(outcome, undo);
}

QString UndoMemoryStep(Library& library)
{
    return UndoWords::memoryUndone(library);
}

} // namespace varnholt
