#include "check/frmCheck.h"

#include "check/check_words.h"
#include "library/Library.h"
#include "pictures/picture_files.h"
#include "store/services.h"
#include "toolkit/HintLabel.h"
#include "toolkit/controls.h"
#include "toolkit/desktop_services.h"
#include "toolkit/short_text.h"

#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QHeaderView>
#include <QLocale>
#include <QProgressBar>
#include <QShortcut>
#include <QSignalBlocker>
#include <QStyledItemDelegate>
#include <QTreeWidget>

#include <algorithm>

namespace varnholt {

namespace {

constexpr qsizetype longestPlace = 120;
constexpr int RemedyColumn = 2;
/// A list longer than this is worked off in parts: the next look shows the rest.
constexpr std::size_t mostRows = 5000;

/// Shows a text as a button that a click on the row's place presses.
class ButtonDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override
    {
        QStyleOptionViewItem row = option;
        initStyleOption(&row, index);
        QStyleOptionButton button;
        button.rect = option.rect;
        button.text = row.text;
        button.palette = option.palette;
        button.fontMetrics = option.fontMetrics;
        button.state = QStyle::State_Raised | (option.state & QStyle::State_Enabled);
        row.text.clear();
        row.state &= ~QStyle::State_HasFocus;
        const QStyle* style = option.widget->style();
        style->drawControl(QStyle::CE_ItemViewItem, &row, painter, option.widget);
        if (!button.text.isEmpty()) {
            style->drawControl(QStyle::CE_PushButton, &button, painter, option.widget);
        }
    }
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override
    {
        const QFontMetrics& metrics = option.fontMetrics;
        const QString text = index.data().toString();
        return {metrics.horizontalAdvance(text) + 3 * metrics.height(), metrics.height() * 3 / 2};
    }
};

/// Whether the library manager can show what it is about.
bool canBeShown(FindingKind kind)
{
    return kind == FindingKind::PictureMissing || kind == FindingKind::PictureUnreadable ||
           kind == FindingKind::Apostrophe;
}

} // namespace

frmCheck::frmCheck(Services& services, Library& library, std::function<bool()> mayBegin,
                   QWidget* parent)
    : QWidget(parent)
    , services_(services)
    , library_(library)
    , mayBegin_(std::move(mayBegin))
{
    setObjectName(QStringLiteral("frmCheck"));
    setWindowTitle(tr("Check Library"));
    buildControls();
    start();
}

frmCheck::~frmCheck()
{
    stop_ = true;
    if (thread_.joinable()) {
        thread_.join();
    }
}

void frmCheck::buildControls()
{
    lblState_ = makeLabel("lblState");
    lblState_->setWordWrap(true);
    prgCheck_ = named(new QProgressBar, "prgCheck", tr("Progress of the check"));
    cmdCheckAgain_ = makeButton("cmdCheckAgain", tr("Cancel"));
    cmdCheckAgain_->setAutoDefault(true);
    lstFindings_ = named(new QTreeWidget, "lstFindings", tr("What was found"));
    lstFindings_->setHeaderLabels({tr("What was found"), tr("Where"), tr("Remedy")});
    lstFindings_->setRootIsDecorated(false);
    lstFindings_->setUniformRowHeights(true);
    lstFindings_->setAlternatingRowColors(true);
    // A place is told by its end.
    lstFindings_->setTextElideMode(Qt::ElideMiddle);
    lstFindings_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    lstFindings_->setItemDelegateForColumn(RemedyColumn, new ButtonDelegate(lstFindings_));
    lstFindings_->header()->setStretchLastSection(false);
    lstFindings_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    lstFindings_->header()->setSectionResizeMode(1, QHeaderView::Interactive);
    lstFindings_->header()->resizeSection(1, fontMetrics().averageCharWidth() * 40);
    lstFindings_->header()->setSectionResizeMode(RemedyColumn, QHeaderView::ResizeToContents);
    lblNote_ = new HintLabel("lblNote", lstFindings_, HintLabel::Place::Kept);
    cmdUndo_ = makeButton("cmdUndo", tr("Undo (Ctrl+Z)"));
    cmdUndo_->setAutoDefault(true);
    cmdShow_ = makeButton("cmdShow", tr("Sho&w"));
    cmdShow_->setAutoDefault(true);
    cmdRemedy_ = makeButton("cmdRemedy", {});

    auto* grid = new QGridLayout(this);
    grid->addWidget(lblState_, 0, 0);
    grid->addWidget(prgCheck_, 0, 1, 1, 2);
    grid->addWidget(cmdCheckAgain_, 0, 3);
    grid->addWidget(lstFindings_, 1, 0, 1, 4);
    grid->addWidget(lblNote_, 2, 0);
    grid->addWidget(cmdUndo_, 2, 1);
    grid->addWidget(cmdShow_, 2, 2);
    grid->addWidget(cmdRemedy_, 2, 3);
    grid->setRowStretch(1, 1);
    grid->setColumnStretch(0, 1);

    connect(cmdCheckAgain_, &QPushButton::clicked, this, &frmCheck::cmdCheckAgain_Click);
    connect(cmdRemedy_, &QPushButton::clicked, this, &frmCheck::cmdRemedy_Click);
    connect(cmdUndo_, &QPushButton::clicked, this, &frmCheck::cmdUndo_Click);
    connect(cmdShow_, &QPushButton::clicked, this, &frmCheck::cmdShow_Click);
    connect(lstFindings_, &QTreeWidget::currentItemChanged, this, &frmCheck::showRemedy);
    connect(lstFindings_, &QTreeWidget::itemSelectionChanged, this, &frmCheck::showRemedy);
    connect(lstFindings_, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem*, int column) {
        if (column == RemedyColumn && lstFindings_->selectedItems().size() == 1) {
            cmdRemedy_Click();
        }
    });
    connect(
        new QShortcut(Qt::CTRL | Qt::Key_Z, this, nullptr, nullptr, Qt::WidgetWithChildrenShortcut),
        &QShortcut::activated, this, &frmCheck::cmdUndo_Click);
}

void frmCheck::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    (findings_.empty() ? static_cast<QWidget*>(cmdCheckAgain_) : lstFindings_)->setFocus();
}

void frmCheck::start()
{
    findings_.clear();
    done_.reset();
    running_ = true;
    stop_ = false;
    lblState_->setText(tr("Looking through the whole library…"));
    prgCheck_->setRange(0, 0);
    prgCheck_->show();
    cmdCheckAgain_->setText(tr("Cancel"));
    lblNote_->say({});
    showFindings(0);
    if (thread_.joinable()) {
        thread_.join();
    }
    thread_ = std::thread([this] { run(); });
}

void frmCheck::run()
{
    std::vector<Finding> findings;
    QString failure;
    int shown = -1;
    const auto tell = [this, &shown](std::size_t done, std::size_t all) {
        constexpr std::size_t parts = 200;
        const int part = static_cast<int>(done * parts / all);
        if (part != shown) {
            shown = part;
            QMetaObject::invokeMethod(
                this, [this, part] { showProgress(part, static_cast<int>(parts)); },
                Qt::QueuedConnection);
        }
    };
    try {
        findings = LookThroughLibrary(services_.programFolder, stop_, tell);
    } catch (const Error& error) {
        failure = error.message();
    }
    QMetaObject::invokeMethod(
        this, [this, findings, failure] { finish(findings, failure); }, Qt::QueuedConnection);
}

void frmCheck::showProgress(int done, int all)
{
    prgCheck_->setRange(0, all);
    prgCheck_->setValue(done);
}

void frmCheck::finish(std::vector<Finding> findings, const QString& failure)
{
    running_ = false;
    findings_ = std::move(findings);
    const auto count = findings_.size();
    findings_.resize(std::min(count, mostRows));
    prgCheck_->hide();
    cmdCheckAgain_->setText(tr("Check &Again"));
    const int number = static_cast<int>(count);
    lblState_->setText(!failure.isEmpty() ? tr("The check could not be finished: %1").arg(failure)
                       : stop_      ? tr("Stopped after %n thing(s) to look at.", nullptr, number)
                       : count == 0 ? tr("Everything is in order.")
                                    : tr("%n thing(s) to look at.", nullptr, number));
    showFindings(0);
    if (hasFocus() || cmdCheckAgain_->hasFocus()) {
        (findings_.empty() ? static_cast<QWidget*>(cmdCheckAgain_) : lstFindings_)->setFocus();
    }
}

void frmCheck::cmdCheckAgain_Click()
{
    if (running_) {
        stop_ = true;
    } else {
        start();
    }
}

void frmCheck::showFindings(int current)
{
    // While the list is empty in between the button keeps its place and the focus.
    const QSignalBlocker quiet(lstFindings_);
    lstFindings_->clear();
    QList<QTreeWidgetItem*> rows;
    for (const Finding& finding : findings_) {
        const QString remedy = CheckWords::caption(RemedyFor(finding.kind)).remove(u'&');
        auto* row = new QTreeWidgetItem(
            {CheckWords::sentence(finding), ShortLine(finding.place, longestPlace), remedy});
        row->setToolTip(0, Wrappable(row->text(0), longestPlace * 3));
        row->setToolTip(1, Wrappable(finding.place, longestPlace * 3));
        rows.append(row);
    }
    lstFindings_->addTopLevelItems(rows);
    if (!rows.isEmpty()) {
        lstFindings_->setCurrentItem(rows[std::min(current, static_cast<int>(rows.size()) - 1)]);
    }
    showRemedy();
}

int frmCheck::currentRow() const
{
    return lstFindings_->indexOfTopLevelItem(lstFindings_->currentItem());
}

Remedy frmCheck::currentRemedy() const
{
    const int row = currentRow();
    return row < 0 ? Remedy::None : RemedyFor(findings_[static_cast<std::size_t>(row)].kind);
}

std::vector<int> frmCheck::chosenRows() const
{
    std::vector<int> rows;
    const Remedy remedy = currentRemedy();
    for (int row = 0; row < lstFindings_->topLevelItemCount(); ++row) {
        const bool chosen = row == currentRow() || lstFindings_->topLevelItem(row)->isSelected();
        if (chosen && RemedyFor(findings_[static_cast<std::size_t>(row)].kind) == remedy) {
            rows.push_back(row);
        }
    }
    return rows;
}

void frmCheck::showRemedy()
{
    const Remedy remedy = currentRemedy();
    const FeatureState features = library_.features();
    const auto chosen = static_cast<qlonglong>(chosenRows().size());
    const QString caption = CheckWords::caption(remedy);
    cmdRemedy_->setText(chosen > 1 && ChangesLibrary(remedy)
                            ? tr("%1 (%2)").arg(caption, QLocale().toString(chosen))
                            : caption);
    cmdRemedy_->setVisible(remedy != Remedy::None);
    cmdRemedy_->setEnabled(features.on || !ChangesLibrary(remedy));
    cmdRemedy_->setToolTip(cmdRemedy_->isEnabled() ? QString() : features.reason);
    const int row = currentRow();
    cmdShow_->setVisible(row >= 0 && canBeShown(findings_[static_cast<std::size_t>(row)].kind));
    cmdUndo_->setVisible(done_.has_value());
}

void frmCheck::cmdShow_Click()
{
    if (const int row = currentRow(); row >= 0) {
        Q_EMIT showWanted(findings_[static_cast<std::size_t>(row)].item);
    }
}

void frmCheck::openFolder(FindingKind kind)
{
    const QString folder = kind == FindingKind::Damaged
                               ? services_.programFolder
                               : QFileInfo(NewPictureFile(services_.programFolder, 0)).path();
    lblNote_->say(OpenWithDesktop(folder)
                      ? QString()
                      : tr("It lies in the folder %1.").arg(QDir::toNativeSeparators(folder)));
}

void frmCheck::cmdRemedy_Click()
{
    const std::vector<int> rows = chosenRows();
    const Remedy remedy = currentRemedy();
    if (rows.empty() || !cmdRemedy_->isEnabled()) {
        return;
    }
    if (remedy == Remedy::RestoreBackup) {
        Q_EMIT backupsWanted();
        return;
    }
    if (!ChangesLibrary(remedy)) {
        openFolder(findings_[static_cast<std::size_t>(rows.front())].kind);
        return;
    }
    try {
        if (!apply(remedy, rows)) {
            return;
        }
    } catch (const Error& error) {
        services_.messageBoxes->inform(tr("Check Library"), error.message());
        return;
    }
    lblNote_->say(CheckWords::done(remedy, static_cast<int>(rows.size())));
    showFindings(rows.front());
    if (!cmdRemedy_->isVisibleTo(this)) {
        lstFindings_->setFocus();
    }
}

bool frmCheck::apply(Remedy remedy, const std::vector<int>& rows)
{
    if (mayBegin_) {
        if (!mayBegin_()) {
            return false;
        }
        mayBegin_ = {};
    }
    std::vector<Finding> chosen;
    for (const int row : rows) {
        chosen.push_back(findings_[static_cast<std::size_t>(row)]);
    }
    std::map<std::int32_t, QString> newNames;
    RemedyResult result = ApplyRemedy(library_, remedy, chosen);
    while (result.nameTaken) {
        QString& name = newNames[result.nameTaken->item.key];
        name = services_.messageBoxes->inputText(
            tr("Name Taken"),
            tr("Another assessment is called %1 now. Name for the one that comes back:")
                .arg(ShortLine(result.nameTaken->name, longestPlace)),
            name.isEmpty() ? result.nameTaken->name : name);
        if (name.isEmpty()) {
            return false;
        }
        result = ApplyRemedy(library_, remedy, chosen, newNames);
    }
    done_.reset();
    if (const std::optional<StepInfo> step = library_.undoStep()) {
        done_ = Done{step->step, rows.front(), findings_, result.placesBack};
    }
    for (auto row = rows.rbegin(); row != rows.rend(); ++row) {
        findings_.erase(findings_.begin() + *row);
    }
    if (remedy == Remedy::RestorePlace) {
        forgetPlacesBack();
    }
    return true;
}

void frmCheck::forgetPlacesBack()
{
    try {
        std::erase_if(findings_, [this](const Finding& other) {
            return other.kind == FindingKind::PlaceDeleted &&
                   library_.planRestore(other.item).nothingToDo;
        });
    } catch (const DatabaseError&) {
        // They stay in the list until the next check.
    }
}

void frmCheck::cmdUndo_Click()
{
    if (!done_) {
        return;
    }
    const Done done = *done_;
    done_.reset();
    try {
        const std::optional<StepInfo> newest = library_.undoStep();
        bool undone = newest && newest->step == done.step;
        if (undone && !done.placesBack.empty()) {
            library_.deleteRows(done.placesBack);
        } else if (undone) {
            undone = library_.undo().result == UndoOutcome::Result::Done;
        }
        if (undone) {
            findings_ = done.findings;
        }
        lblNote_->say(undone ? tr("Undone.")
                             : tr("It cannot be undone: the library has changed since."));
    } catch (const Error& error) {
        services_.messageBoxes->inform(tr("Undo"), error.message());
    }
    showFindings(done.row);
    lstFindings_->setFocus();
}

} // namespace varnholt
