// How the library manager tells of changes, takes them back and makes them again.
#include "manage/frmManage.h"

#include "library/Library.h"
#include "manage/structure_maintenance.h"
#include "manage/undo_words.h"
#include "toolkit/ComboBox.h"
#include "toolkit/ListBox.h"
#include "toolkit/controls.h"

#include <QBoxLayout>
#include <QShortcut>

namespace varnholt {

QWidget* frmManage::buildUndoBar()
{
    const QKeySequence undoKeys(Qt::CTRL | Qt::Key_Z);
    const QKeySequence redoKeys(Qt::CTRL | Qt::SHIFT | Qt::Key_Z);
    const auto button = [](const char* name, const QString& caption, const QKeySequence& keys) {
        QPushButton* made = makeButton(name, caption.arg(keys.toString(QKeySequence::NativeText)));
        made->setAutoDefault(true);
        // A click leaves the keyboard where work goes on.
        made->setFocusPolicy(Qt::TabFocus);
        return made;
    };
    undoBar_ = named(new QWidget, "undoBar");
    lblUndo_ = makeLabel("lblUndo");
    lblUndo_->setWordWrap(true);
    cmdUndo_ = button("cmdUndo", tr("Undo (%1)"), undoKeys);
    cmdRedo_ = button("cmdRedo", tr("Redo (%1)"), redoKeys);
    auto* row = new QHBoxLayout(undoBar_);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(lblUndo_, 1);
    row->addWidget(cmdUndo_);
    row->addWidget(cmdRedo_);
    undoBar_->hide();

    // A text field with the focus keeps these keys for itself.
    const auto shortcut = [this](const QKeySequence& keys, void (frmManage::*handler)()) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, handler);
    };
    shortcut(undoKeys, &frmManage::cmdUndo_Click);
    shortcut(redoKeys, &frmManage::cmdRedo_Click);
    shortcut(QKeySequence(Qt::CTRL | Qt::Key_Y), &frmManage::cmdRedo_Click);
    connect(cmdUndo_, &QPushButton::clicked, this, &frmManage::cmdUndo_Click);
    connect(cmdRedo_, &QPushButton::clicked, this, &frmManage::cmdRedo_Click);
    toldStep_ = newestStep().value_or(StepInfo{}).step;
    return undoBar_;
}

std::optional<StepInfo> frmManage::newestStep()
{
    try {
        return library_.undoStep();
    } catch (const Error&) {
        return std::nullopt;
    }
}

void frmManage::tellChange()
{
    const std::optional<StepInfo> step = newestStep();
    if (turning_ || (step && step->step == toldStep_)) {
        return;
    }
    say(step ? DoneSentence(*step) : tr("The change is saved. It cannot be undone."));
}

void frmManage::say(const QString& sentence)
{
    const std::optional<StepInfo> step = newestStep();
    toldStep_ = step.value_or(StepInfo{}).step;
    lblUndo_->setText(sentence);
    if (cmdUndo_->hasFocus() && !step) {
        lstSubtopics_->setFocus();
    }
    cmdUndo_->setEnabled(step.has_value());
    cmdUndo_->setToolTip(library_.features().reason);
    bool redo = false;
    try {
        redo = library_.redoStep().has_value();
    } catch (const Error&) {
        // Without the journal there is nothing to do again.
    }
    if (cmdRedo_->hasFocus() && !redo) {
        lstSubtopics_->setFocus();
    }
    cmdRedo_->setVisible(redo);
    undoBar_->show();
}

void frmManage::cmdUndo_Click()
{
    turn(true);
}

void frmManage::cmdRedo_Click()
{
    turn(false);
}

void frmManage::turn(bool undo)
{
    UndoOutcome outcome;
    turning_ = true;
    try {
        outcome = undo ? library_.undo() : library_.redo();
    } catch (const Error& error) {
        turning_ = false;
        say((undo ? tr("Nothing was undone. %1") : tr("Nothing was done again. %1"))
                .arg(error.message()));
        return;
    }
    turning_ = false;
    switch (outcome.result) {
    case UndoOutcome::Result::Done:
        loadReporting([&] { showItem(outcome.step->subject.item); });
        say(undo ? UndoneSentence(*outcome.step) : DoneSentence(*outcome.step));
        break;
    case UndoOutcome::Result::NothingToDo:
        say(undo ? tr("There is nothing to undo.") : tr("There is nothing to do again."));
        break;
    case UndoOutcome::Result::ChangedSince:
    case UndoOutcome::Result::NameTaken:
        say(InTheWaySentence(outcome, undo));
        break;
    case UndoOutcome::Result::Off:
        say(library_.features().reason);
        break;
    }
}

void frmManage::bringUp(Item item)
{
    loadReporting([&] { showItem(item); });
}

void frmManage::showItem(Item item)
{
    const Filing filed = library_.placeOf(item);
    const bool elsewhere = filed.AssessmentNum != state_.CurrentAssessmentNum;
    if (item.kind == ItemKind::Assessment && elsewhere) {
        RememberAssessment(state_, library_, filed.AssessmentNum);
        Form_Load();
        return;
    }
    Place place = currentPlace();
    if (filed.TopicID != 0 && place.rows.topicId != filed.TopicID) {
        place = {{filed.TopicID, std::nullopt}};
    }
    if (filed.SubtopicNum != 0 && place.rows.subtopicNum != filed.SubtopicNum) {
        place = {{filed.TopicID, filed.SubtopicNum}};
    }
    if (item.kind == ItemKind::Question) {
        place.SOLIndex = item.key;
    }
    if (!elsewhere || filed.AssessmentNum == 0) {
        refresh(place);
        return;
    }
    reloadChanged();
    FillAssessmentCombo(filed.AssessmentNum);
    openAssessment();
    goTo(place);
}

} // namespace varnholt
