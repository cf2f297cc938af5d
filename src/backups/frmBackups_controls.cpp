#include "backups/frmBackups.h"

#include "toolkit/ComboBox.h"
#include "toolkit/HintLabel.h"
#include "toolkit/LineEdit.h"
#include "toolkit/controls.h"

#include <QGridLayout>
#include <QHeaderView>
#include <QShortcut>
#include <QTreeWidget>

namespace varnholt {

void frmBackups::buildControls()
{
    lblState_ = makeLabel(
        "lblState",
        tr("The question library and its pictures are backed up when you close Varnholt after a "
           "change, and before an import, a restore or a repair."));
    lblState_->setWordWrap(true);
    lblStore_ = makeLabel("lblStore", tr("Backups in:"));
    cboStore_ = named(new ComboBox, "cboStore", tr("Where the backups lie"));

    lstBackups_ = named(new QTreeWidget, "lstBackups", tr("Backups"));
    lstBackups_->setHeaderLabels(
        {tr("Made"), tr("Questions"), tr("New"), tr("Size"), tr("Remark")});
    lstBackups_->setRootIsDecorated(false);
    lstBackups_->setUniformRowHeights(true);
    lstBackups_->setAlternatingRowColors(true);
    QHeaderView* header = lstBackups_->header();
    header->setStretchLastSection(true);
    const int character = fontMetrics().averageCharWidth();
    for (const auto& [column, width] : {std::pair{0, 46}, {1, 14}, {2, 12}, {3, 14}}) {
        header->resizeSection(column, character * width);
    }
    for (int column = 1; column <= 3; ++column) {
        lstBackups_->headerItem()->setTextAlignment(column, Qt::AlignRight | Qt::AlignVCenter);
    }
    lblEmpty_ = makeLabel("lblEmpty", tr("There is no backup yet."));
    lblEmpty_->setAlignment(Qt::AlignCenter);
    lblEmpty_->setForegroundRole(QPalette::PlaceholderText);
    lblNote_ = new HintLabel("lblNote", lstBackups_, HintLabel::Place::Kept);
    cmdCheckFiles_ = makeButton("cmdCheckFiles", tr("Check Its &Files"));
    cmdRestore_ = makeButton("cmdRestore", tr("Re&store…"));
    cmdBackUpNow_ = makeButton("cmdBackUpNow", tr("Back &Up Now"));
    for (QPushButton* button : {cmdCheckFiles_, cmdRestore_, cmdBackUpNow_}) {
        button->setAutoDefault(true);
    }

    auto* grid = new QGridLayout(this);
    grid->addWidget(lblState_, 0, 0, 1, 5);
    grid->addWidget(lblStore_, 1, 0);
    grid->addWidget(cboStore_, 1, 1, 1, 4);
    grid->addWidget(lstBackups_, 2, 0, 1, 5);
    grid->addWidget(lblEmpty_, 2, 0, 1, 5);
    grid->addWidget(lblNote_, 3, 0, 1, 5);
    grid->addWidget(cmdCheckFiles_, 4, 2);
    grid->addWidget(cmdRestore_, 4, 3);
    grid->addWidget(cmdBackUpNow_, 4, 4);
    grid->addWidget(buildSecondPlace(), 5, 0, 1, 5);
    grid->setRowStretch(2, 1);
    grid->setColumnStretch(1, 1);
    QWidget* last = cboStore_;
    for (QWidget* next :
         std::initializer_list<QWidget*>{lstBackups_, cmdRestore_, cmdBackUpNow_, cmdCheckFiles_,
                                         txtPlace_, cmdChoose_, cmdNone_}) {
        setTabOrder(last, next);
        last = next;
    }
}

QWidget* frmBackups::buildSecondPlace()
{
    auto* fraPlace = makeFrame("fraPlace", tr("Second place"));
    auto* lblPlace = makeLabel("lblPlace", tr("&Also copy to:"));
    txtPlace_ = named(new LineEdit, "txtPlace", tr("Folder that backups are copied to as well"));
    txtPlace_->setReadOnly(true);
    txtPlace_->setPlaceholderText(tr("A stick, another disk or the school's drive"));
    lblPlace->setBuddy(txtPlace_);
    cmdChoose_ = makeButton("cmdChoose", tr("Ch&oose…"));
    cmdNone_ = makeButton("cmdNone", tr("Non&e"));
    cmdChoose_->setAutoDefault(true);
    cmdNone_->setAutoDefault(true);
    lblCopied_ = makeLabel("lblCopied");
    lblCopied_->setWordWrap(true);
    auto* grid = new QGridLayout(fraPlace);
    grid->addWidget(lblPlace, 0, 0);
    grid->addWidget(txtPlace_, 0, 1);
    grid->addWidget(cmdChoose_, 0, 2);
    grid->addWidget(cmdNone_, 0, 3);
    grid->addWidget(lblCopied_, 1, 1, 1, 3);
    grid->setColumnStretch(1, 1);
    return fraPlace;
}

void frmBackups::connectControls()
{
    connect(cboStore_, &ComboBox::Click, this, &frmBackups::cboStore_Click);
    connect(lstBackups_, &QTreeWidget::currentItemChanged, this, &frmBackups::showRow);
    connect(lstBackups_, &QTreeWidget::doubleClicked, this, &frmBackups::cmdRestore_Click);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
        connect(new QShortcut(key, lstBackups_, nullptr, nullptr, Qt::WidgetShortcut),
                &QShortcut::activated, this, &frmBackups::cmdRestore_Click);
    }
    connect(cmdRestore_, &QPushButton::clicked, this, &frmBackups::cmdRestore_Click);
    connect(cmdBackUpNow_, &QPushButton::clicked, this, &frmBackups::cmdBackUpNow_Click);
    connect(cmdCheckFiles_, &QPushButton::clicked, this, &frmBackups::cmdCheckFiles_Click);
    connect(cmdChoose_, &QPushButton::clicked, this, &frmBackups::cmdChoose_Click);
    connect(cmdNone_, &QPushButton::clicked, this, &frmBackups::cmdNone_Click);
}

} // namespace varnholt
