// What the window of how classes did is made of.
#include "class_results/ResultsModel.h"
#include "class_results/frmResults.h"
#include "toolkit/ComboBox.h"
#include "toolkit/HintLabel.h"
#include "toolkit/OutcomeRow.h"
#include "toolkit/controls.h"
#include "toolkit/keys.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QTabWidget>
#include <QTableView>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace varnholt {

QTableView* frmResults::makeTable(const char* name, const QString& accessibleName,
                                  ResultsModel* model)
{
    auto* table = named(new QTableView, name, accessibleName);
    table->setModel(model);
    table->setTabKeyNavigation(false);
    table->setAlternatingRowColors(true);
    table->setShowGrid(false);
    table->setWordWrap(false);
    table->setSortingEnabled(true);
    table->verticalHeader()->hide();
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table->verticalHeader()->setDefaultSectionSize(fontMetrics().height() * 3 / 2);
    QHeaderView* header = table->horizontalHeader();
    header->setHighlightSections(false);
    header->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    // As the catalogue has them until she asks for another order.
    header->setSortIndicator(-1, Qt::AscendingOrder);
    header->setDefaultSectionSize(fontMetrics().averageCharWidth() * 36);
    header->resizeSection(0, fontMetrics().averageCharWidth() * 16);
    // Keys that sort, for those without a mouse.
    const auto sortHere = [table] {
        QHeaderView* columns = table->horizontalHeader();
        const int column = table->currentIndex().column();
        const bool again = columns->sortIndicatorSection() == column &&
                           columns->sortIndicatorOrder() == Qt::AscendingOrder;
        if (column >= 0) {
            table->sortByColumn(column, again ? Qt::DescendingOrder : Qt::AscendingOrder);
        }
    };
    onKey(table, Qt::CTRL | Qt::Key_Return, sortHere);
    onKey(table, Qt::Key_F3, sortHere);
    header->setToolTip(tr("Click to sort by a column, or press F3 in it."));
    return table;
}

QWidget* frmResults::buildQuestions()
{
    questions_ = new ResultsModel(results_, ResultsModel::Rows::Questions, this);
    tblQuestions_ = makeTable("tblQuestions", tr("Questions and classes"), questions_);
    tblQuestions_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    chkHard_ = named(new QCheckBox(tr("&Hard for all")), "chkHard");
    chkHard_->setToolTip(tr("Shows only what few knew in every class that it is noted of."));

    auto* row = new QHBoxLayout;
    outcomes_ = new OutcomeRow(tr("How many knew it:"), tblQuestions_);
    row->addWidget(outcomes_);
    row->addStretch();
    row->addWidget(chkHard_);
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    column->addWidget(tblQuestions_, 1);
    column->addLayout(row);
    return page;
}

QWidget* frmResults::buildSubtopics()
{
    subtopics_ = new ResultsModel(results_, ResultsModel::Rows::Subtopics, this);
    tblSubtopics_ = makeTable("tblSubtopics", tr("Subtopics and classes"), subtopics_);
    tblSubtopics_->horizontalHeader()->setDefaultSectionSize(fontMetrics().averageCharWidth() * 14);
    tblSubtopics_->horizontalHeader()->resizeSection(0, fontMetrics().averageCharWidth() * 30);
    tblSubtopics_->horizontalHeader()->resizeSection(1, fontMetrics().averageCharWidth() * 36);
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    column->addWidget(tblSubtopics_, 1);
    return page;
}

QWidget* frmResults::buildClasses()
{
    lstClasses_ = named(new QTreeWidget, "lstClasses", tr("Classes"));
    lstClasses_->setHeaderLabels({tr("Class"), tr("Questions Used"), tr("Last Used")});
    lstClasses_->setRootIsDecorated(false);
    lstClasses_->setUniformRowHeights(true);
    lstClasses_->setAllColumnsShowFocus(true);
    lstClasses_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    lstClasses_->header()->setStretchLastSection(false);
    lstClasses_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    lstClasses_->header()->resizeSection(1, fontMetrics().averageCharWidth() * 20);
    lstClasses_->header()->resizeSection(2, fontMetrics().averageCharWidth() * 20);
    cmdRename_ = makeButton("cmdRename", tr("&Rename"));
    cmdRename_->setAutoDefault(true);
    cmdDelete_ = makeButton("cmdDelete", tr("&Delete"));
    cmdDelete_->setAutoDefault(true);
    auto* row = new QHBoxLayout;
    row->addWidget(cmdRename_);
    row->addWidget(cmdDelete_);
    row->addStretch();
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    column->addWidget(lstClasses_, 1);
    column->addLayout(row);
    return page;
}

void frmResults::buildControls()
{
    cboAssessment_ = named(new ComboBox, "cboAssessment", tr("Assessment"));
    auto* lblAssessment = makeLabel("lblAssessment", tr("&Assessment:"));
    lblAssessment->setBuddy(cboAssessment_);
    cmdCsv_ = makeButton("cmdCsv", tr("&Save as CSV…"));
    cmdCsv_->setAutoDefault(true);
    cmdCsv_->setToolTip(tr("Saves this table for a spreadsheet."));
    tabs_ = named(new QTabWidget, "tabs");
    tabs_->addTab(buildQuestions(), tr("&Questions"));
    tabs_->addTab(buildSubtopics(), tr("C&overage"));
    tabs_->addTab(buildClasses(), tr("C&lasses"));
    lblNote_ = new HintLabel("lblNote", tblQuestions_, HintLabel::Place::Kept);

    auto* top = new QHBoxLayout;
    top->addWidget(lblAssessment);
    top->addWidget(cboAssessment_, 1);
    top->addWidget(cmdCsv_);
    auto* column = new QVBoxLayout(this);
    column->addLayout(top);
    column->addWidget(tabs_, 1);
    column->addWidget(lblNote_);
}

} // namespace varnholt
