#include "class_results/frmResults.h"

#include "class_results/ResultsModel.h"
#include "class_results/results_csv.h"
#include "library/Library.h"
#include "manage/undo_words.h"
#include "store/catalogue.h"
#include "toolkit/ComboBox.h"
#include "toolkit/HintLabel.h"
#include "toolkit/OutcomeRow.h"
#include "toolkit/controls.h"
#include "toolkit/keys.h"

#include <QCheckBox>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QHeaderView>
#include <QLocale>
#include <QPushButton>
#include <QShortcut>
#include <QTabBar>
#include <QTabWidget>
#include <QTableView>
#include <QTreeWidget>

#include <algorithm>
#include <array>

namespace varnholt {

frmResults::frmResults(Services& services, Library& library, std::int32_t assessmentNum,
                       QWidget* parent)
    : QWidget(parent)
    , services_(services)
    , library_(library)
    , assessmentNum_(assessmentNum)
{
    setObjectName(QStringLiteral("frmResults"));
    setWindowTitle(tr("How Classes Did"));
    buildControls();
    connectControls();
    read(false);
    if (questions_->rowCount() > 0) {
        const int firstClass = ResultsModel::fixedColumns + (results_.classes.empty() ? 0 : 1);
        // From the left, however narrow the window is before it is shown.
        tblQuestions_->setAutoScroll(false);
        tblQuestions_->setCurrentIndex(questions_->index(0, firstClass));
        tblQuestions_->setAutoScroll(true);
    }
}

void frmResults::connectControls()
{
    connect(cboAssessment_, &ComboBox::Click, this, &frmResults::cboAssessment_Click);
    connect(cmdCsv_, &QPushButton::clicked, this, &frmResults::cmdCsv_Click);
    connect(cmdRename_, &QPushButton::clicked, this, &frmResults::cmdRename_Click);
    connect(cmdDelete_, &QPushButton::clicked, this, &frmResults::cmdDelete_Click);
    connect(chkHard_, &QCheckBox::toggled, this, [this](bool hardOnly) {
        questions_->showHardOnly(hardOnly);
        tblQuestions_->setCurrentIndex(questions_->index(0, ResultsModel::fixedColumns));
    });
    connect(outcomes_, &OutcomeRow::noted, this,
            [this](int outcome) { noteOutcome(static_cast<Outcome>(outcome)); });
    connect(tabs_, &QTabWidget::currentChanged, this, [this](int tab) {
        // Her key chose the tab: go on in it.
        if (!tabs_->tabBar()->hasFocus()) {
            const std::array<QWidget*, 3> lists{tblQuestions_, tblSubtopics_, lstClasses_};
            lists.at(static_cast<std::size_t>(tab))->setFocus();
        }
        showButtons();
    });
    connect(tblQuestions_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &frmResults::showButtons);
    connect(lstClasses_, &QTreeWidget::currentItemChanged, this, &frmResults::showButtons);
    connect(lstClasses_, &QTreeWidget::itemChanged, this,
            [this](QTreeWidgetItem* item) { renameClass(lstClasses_->indexOfTopLevelItem(item)); });
    onKey(lstClasses_, Qt::Key_F2, [this] { cmdRename_Click(); });
    onKey(lstClasses_, QKeySequence::Delete, [this] { cmdDelete_Click(); });
    connect(
        new QShortcut(QKeySequence::Undo, this, nullptr, nullptr, Qt::WidgetWithChildrenShortcut),
        &QShortcut::activated, this, &frmResults::undo);
    // Afterwards: a name that has been edited is still in its editor.
    connect(&library_, &Library::changed, this, &frmResults::reload, Qt::QueuedConnection);
}

void frmResults::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    tblQuestions_->setFocus();
}

void frmResults::read(bool keepOrder)
{
    tryTo([&] {
        ProgramState state;
        if (const LoadFailures failures = LoadAssessments(state, library_.connection());
            !failures.isEmpty()) {
            throw DatabaseError(failures.front());
        }
        cboAssessment_->clear();
        int row = state.AssessmentList.isEmpty() ? -1 : 0;
        for (const AssessmentRecord& record : state.AssessmentList) {
            if (record.AssessmentNum == assessmentNum_) {
                row = cboAssessment_->listCount();
            }
            cboAssessment_->addEntry(record.AssessmentName, record.AssessmentNum);
        }
        cboAssessment_->showEntry(row);
        const std::int32_t shown = row < 0 ? 0 : cboAssessment_->entryData(row);
        keepOrder = keepOrder && shown == assessmentNum_;
        assessmentNum_ = shown;
        constexpr std::int64_t millisecondsPerSecond = 1000;
        results_ =
            ClassResults::read(library_, assessmentNum_,
                               services_.clock->millisecondsSinceEpoch() / millisecondsPerSecond);
    });
    questions_->refresh(keepOrder);
    subtopics_->refresh(keepOrder);
    if (!keepOrder) {
        for (QTableView* table : {tblQuestions_, tblSubtopics_}) {
            table->horizontalHeader()->setSortIndicator(-1, Qt::AscendingOrder);
        }
    }
    const int hard = results_.hardForAll();
    chkHard_->setText(tr("&Hard for all (%1)").arg(QLocale().toString(hard)));
    chkHard_->setEnabled(hard > 0 || chkHard_->isChecked());
    tblQuestions_->horizontalHeader()->resizeSection(1, fontMetrics().averageCharWidth() * 38);
    showClasses();
    const FeatureState features = library_.features();
    if (!features.on) {
        lblNote_->say(features.reason);
    } else if (results_.lastUse(0) == 0) {
        lblNote_->say(tr("No question of this assessment has been used yet. Whatever you make "
                         "slides or paper of, or show in class, is counted here."));
    } else {
        lblNote_->say(told_);
    }
    showButtons();
}

void frmResults::tell(const QString& sentence)
{
    told_ = sentence;
    lblNote_->say(sentence);
}

void frmResults::reload()
{
    struct Place
    {
        QTableView* table;
        int row;
        int column;
    };
    std::vector<Place> places;
    for (QTableView* table : {tblQuestions_, tblSubtopics_}) {
        places.push_back({table, table->currentIndex().row(), table->currentIndex().column()});
    }
    read(true);
    for (const Place& place : places) {
        const QAbstractItemModel& model = *place.table->model();
        place.table->setCurrentIndex(model.index(std::min(place.row, model.rowCount() - 1),
                                                 std::min(place.column, model.columnCount() - 1)));
    }
}

void frmResults::showClasses()
{
    filling_ = true;
    const int row = std::max(lstClasses_->indexOfTopLevelItem(lstClasses_->currentItem()), 0);
    lstClasses_->clear();
    const QLocale locale;
    for (std::size_t i = 0; i < results_.classes.size(); ++i) {
        const std::int64_t last = results_.lastUse(i + 1);
        auto* item = new QTreeWidgetItem(
            {results_.classes[i].ClassName,
             tr("%1 of %2")
                 .arg(locale.toString(results_.usedBy(i + 1)),
                      locale.toString(static_cast<int>(results_.questions.size()))),
             last == 0 ? QString()
                       : locale.toString(QDateTime::fromSecsSinceEpoch(last).date(),
                                         QLocale::ShortFormat)});
        item->setFlags(item->flags() | Qt::ItemIsEditable);
        lstClasses_->addTopLevelItem(item);
    }
    lstClasses_->setCurrentItem(
        lstClasses_->topLevelItem(std::min(row, lstClasses_->topLevelItemCount() - 1)));
    filling_ = false;
}

const ClassRecord* frmResults::currentClass() const
{
    const int row = lstClasses_->indexOfTopLevelItem(lstClasses_->currentItem());
    return row >= 0 && row < static_cast<int>(results_.classes.size())
               ? &results_.classes[static_cast<std::size_t>(row)]
               : nullptr;
}

void frmResults::showButtons()
{
    const FeatureState features = library_.features();
    const QModelIndexList cells = tblQuestions_->selectionModel()->selectedIndexes();
    const bool ofClass = std::any_of(cells.begin(), cells.end(), [this](const QModelIndex& cell) {
        return cell.column() > ResultsModel::fixedColumns && !cell.data().toString().isEmpty();
    });
    outcomes_->offer(features.on && ofClass,
                     !features.on ? features.reason
                     : ofClass    ? tr("Says it of the last use. Press the key in the table.")
                                  : tr("Choose the cell of a class that has had the question."));
    for (QPushButton* button : {cmdRename_, cmdDelete_}) {
        button->setEnabled(features.on && currentClass());
    }
    cmdRename_->setToolTip(features.on ? tr("Gives the class another name (F2).")
                                       : features.reason);
    cmdDelete_->setToolTip(features.on ? tr("Puts the class into the trash (Del). What it has "
                                            "seen goes on counting for no class.")
                                       : features.reason);
    cmdCsv_->setEnabled(tabs_->currentIndex() < 2 && !results_.questions.empty());
}

void frmResults::cboAssessment_Click()
{
    assessmentNum_ = cboAssessment_->entryData(cboAssessment_->listIndex());
    told_.clear();
    read(false);
}

void frmResults::noteOutcome(Outcome outcome)
{
    const QModelIndexList cells = tblQuestions_->selectionModel()->selectedIndexes();
    tryTo([&] {
        const PastTests past = library_.pastTests();
        std::vector<std::int64_t> useIds;
        for (const QModelIndex& cell : cells) {
            const int place = cell.column() - ResultsModel::fixedColumns - 1;
            if (place < 0) {
                continue;
            }
            const std::int64_t use =
                past.newestUse(results_.questions[questions_->place(cell.row())].SOLIndex,
                               results_.classes[static_cast<std::size_t>(place)].ClassID);
            if (use != 0) {
                useIds.push_back(use);
            }
        }
        library_.recordOutcome(useIds, outcome);
    });
    // One below the other without another key.
    const QModelIndex current = tblQuestions_->currentIndex();
    if (cells.size() == 1 && tblQuestions_->hasFocus() &&
        current.row() + 1 < questions_->rowCount()) {
        tblQuestions_->setCurrentIndex(current.siblingAtRow(current.row() + 1));
    }
}

void frmResults::cmdRename_Click()
{
    if (cmdRename_->isEnabled()) {
        lstClasses_->setFocus();
        lstClasses_->editItem(lstClasses_->currentItem(), 0);
    }
}

void frmResults::renameClass(int row)
{
    if (filling_ || row < 0 || row >= static_cast<int>(results_.classes.size())) {
        return;
    }
    const ClassRecord& record = results_.classes[static_cast<std::size_t>(row)];
    const QString name = lstClasses_->topLevelItem(row)->text(0);
    if (name != record.ClassName) {
        whenEditorHasGone(this, [this, key = record.ClassID, name] {
            tryTo([&] { library_.rename({ItemKind::Class, key}, name); });
            reload();
        });
    }
}

void frmResults::cmdDelete_Click()
{
    if (const ClassRecord* record = currentClass(); record && cmdDelete_->isEnabled()) {
        const QString name = record->ClassName;
        if (tryTo([&] { library_.deleteClass(record->ClassID); })) {
            tell(tr("The class “%1” is in the trash, and what it has seen counts for no class. "
                    "Ctrl+Z brings it back.")
                     .arg(name));
        }
    }
}

void frmResults::undo()
{
    tryTo([this] { tell(UndoMemoryStep(library_)); });
}

void frmResults::cmdCsv_Click()
{
    const bool questions = tabs_->currentIndex() == 0;
    const std::optional<QString> chosen = services_.fileDialogs->saveFile(
        tr("CSV Files (*.csv)"),
        (questions ? tr("How classes did") : tr("Coverage")) + QStringLiteral(".csv"));
    if (!chosen) {
        return;
    }
    const QString ending = QStringLiteral(".csv");
    const QString path = chosen->endsWith(ending, Qt::CaseInsensitive) ? *chosen : *chosen + ending;
    if (path != *chosen && QFileInfo::exists(path) &&
        !services_.messageBoxes->yesNo(
            tr("Replace File?"),
            tr("There is a file %1 already. Replace it?").arg(QDir::toNativeSeparators(path)))) {
        return;
    }
    if (tryTo(
            [&] { SaveCsv(path, questions ? QuestionRows(results_) : SubtopicRows(results_)); })) {
        tell(tr("Saved as %1.").arg(QDir::toNativeSeparators(path)));
    }
}

} // namespace varnholt
