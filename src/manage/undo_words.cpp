#include "manage/undo_words.h"

#include <QCoreApplication>
#include <QStringList>

namespace varnholt {

namespace {

QString tr(const char* text, int n = -1)
{
    return QCoreApplication::translate("varnholt::frmManage", text, nullptr, n);
}

/// The sentence for a question, or the other one with the subject's name.
QString about(const StepInfo& step, const char* question, const char* named)
{
    return step.subject.item.kind == ItemKind::Question ? tr(question)
                                                        : tr(named).arg(step.subject.name);
}

} // namespace

QString DoneSentence(const StepInfo& step)
{
    switch (step.kind) {
    case StepKind::Add:
        return about(step, "Question added.", "“%1” added.");
    case StepKind::Delete:
        return about(step, "Question deleted.", "“%1” deleted.");
    case StepKind::Restore:
        return about(step, "Question brought back.", "“%1” brought back.");
    case StepKind::Rename:
        return tr("The new name is “%1”.").arg(step.subject.name);
    case StepKind::Import:
        return tr("“%1” imported.").arg(step.subject.name);
    case StepKind::Edit:
        break;
    }
    return about(step, "Question changed.", "“%1” changed.");
}

QString UndoneSentence(const StepInfo& step)
{
    switch (step.kind) {
    case StepKind::Add:
        return about(step, "Undone: the question is no longer there.",
                     "Undone: “%1” is no longer there.");
    case StepKind::Delete:
        return about(step, "Undone: the question is back.", "Undone: “%1” is back.");
    case StepKind::Restore:
        return about(step, "Undone: the question is deleted again.",
                     "Undone: “%1” is deleted again.");
    case StepKind::Rename:
        return tr("Undone: “%1” has its old name again.").arg(step.subject.name);
    case StepKind::Import:
        return tr("Undone: “%1” is no longer there.").arg(step.subject.name);
    case StepKind::Edit:
        break;
    }
    return about(step, "Undone: the question is as it was.", "Undone: “%1” is as it was.");
}

QString ChangedSinceSentence(const std::vector<NamedItem>& inTheWay, bool undo)
{
    constexpr std::size_t shown = 3;
    QStringList rows;
    for (const NamedItem& row : inTheWay) {
        if (rows.size() == shown) {
            rows.append(tr("%n more", static_cast<int>(inTheWay.size() - shown)));
            break;
        }
        rows.append((row.item.kind == ItemKind::Question ? tr("the question with the answer “%1”")
                                                         : tr("“%1”"))
                        .arg(row.name));
    }
    return (undo ? tr("The last change cannot be undone, because this has been changed since: %1.")
                 : tr("The change cannot be made again, because this has been changed since: %1."))
        .arg(rows.join(QStringLiteral(", ")));
}

} // namespace varnholt
