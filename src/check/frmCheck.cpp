#include "check/frmCheck.h"

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
#include <QTreeWidget>

#include <algorithm>

namespace varnholt {

namespace {

constexpr qsizetype longestName = 120;
/// A list longer than this is worked off in parts: the next look shows the rest.
constexpr std::size_t mostRows = 5000;

QString rowsInWords(ItemKind kind)
{
    switch (kind) {
    case ItemKind::Assessment:
        return frmCheck::tr("Assessments with a number above 32,767: %1. Deleting them fails.");
    case ItemKind::Topic:
        return frmCheck::tr("Topics with a number above 32,767: %1. Changing what is in them "
                            "fails.");
    case ItemKind::Subtopic:
        return frmCheck::tr("Subtopics with a number above 32,767: %1. Changing what is in them "
                            "fails.");
    default:
        break;
    }
    return frmCheck::tr("Questions with a number above 32,767: %1. Editing them fails.");
}

QString inWords(const Finding& finding)
{
    const QString name = ShortLine(finding.name, longestName);
    switch (finding.kind) {
    case FindingKind::Damaged:
        return frmCheck::tr("The file %1 is damaged: questions may be missing or wrong. Keep a "
                            "copy of it before you change anything.")
            .arg(name);
    case FindingKind::PictureMissing:
        return frmCheck::tr("The question with the answer %1 has no picture.").arg(name);
    case FindingKind::PictureUnreadable:
        return frmCheck::tr("The picture of the question with the answer %1 cannot be shown.")
            .arg(name);
    case FindingKind::PictureWithoutRow:
        return frmCheck::tr("The picture %1 belongs to no question.").arg(name);
    case FindingKind::PlaceDeleted:
        return frmCheck::tr("The question with the answer %1 cannot be seen: its topic or subtopic "
                            "is deleted.")
            .arg(name);
    case FindingKind::PlaceMissing:
        return frmCheck::tr("The question with the answer %1 cannot be seen: the library does not "
                            "have the place where it is filed.")
            .arg(name);
    case FindingKind::LargeKeys:
        return rowsInWords(finding.item.kind).arg(QLocale().toString(finding.count));
    case FindingKind::Apostrophe:
        break;
    }
    return frmCheck::tr("%1 holds an apostrophe ('), with which it cannot be saved again.")
        .arg(name);
}

QString inWords(Remedy remedy)
{
    switch (remedy) {
    case Remedy::ShowFolder:
        return frmCheck::tr("&Show Folder");
    case Remedy::DeleteQuestion:
        return frmCheck::tr("To the Tra&sh");
    case Remedy::RestorePlace:
        return frmCheck::tr("Re&store Its Place");
    case Remedy::ReplaceApostrophe:
        return frmCheck::tr("Replace by ’");
    case Remedy::None:
        break;
    }
    return {};
}

} // namespace

frmCheck::frmCheck(Services& services, Library& library, QWidget* parent)
    : QWidget(parent)
    , services_(services)
    , library_(library)
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
    lstFindings_->header()->setStretchLastSection(false);
    lstFindings_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    lstFindings_->header()->setSectionResizeMode(1, QHeaderView::Interactive);
    lstFindings_->header()->resizeSection(1, fontMetrics().averageCharWidth() * 40);
    lstFindings_->header()->setSectionResizeMode(2, QHeaderView::ResizeToContents);
    lblNote_ = new HintLabel("lblNote", lstFindings_, HintLabel::Place::Kept);
    cmdUndo_ = makeButton("cmdUndo", tr("Undo (Ctrl+Z)"));
    cmdUndo_->setAutoDefault(true);
    cmdRemedy_ = makeButton("cmdRemedy", {});

    auto* grid = new QGridLayout(this);
    grid->addWidget(lblState_, 0, 0);
    grid->addWidget(prgCheck_, 0, 1);
    grid->addWidget(cmdCheckAgain_, 0, 2);
    grid->addWidget(lstFindings_, 1, 0, 1, 3);
    grid->addWidget(lblNote_, 2, 0);
    grid->addWidget(cmdUndo_, 2, 1);
    grid->addWidget(cmdRemedy_, 2, 2);
    grid->setRowStretch(1, 1);
    grid->setColumnStretch(0, 1);

    connect(cmdCheckAgain_, &QPushButton::clicked, this, &frmCheck::cmdCheckAgain_Click);
    connect(cmdRemedy_, &QPushButton::clicked, this, &frmCheck::cmdRemedy_Click);
    connect(cmdUndo_, &QPushButton::clicked, this, &frmCheck::cmdUndo_Click);
    connect(lstFindings_, &QTreeWidget::currentItemChanged, this, &frmCheck::showRemedy);
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
    const QString number = QLocale().toString(static_cast<qulonglong>(count));
    lblState_->setText(!failure.isEmpty() ? tr("The check could not be finished: %1").arg(failure)
                       : stop_            ? tr("Stopped. Found until then: %1.").arg(number)
                       : count == 0       ? tr("Everything is in order.")
                                          : tr("Found: %1.").arg(number));
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
        const QString remedy = inWords(RemedyFor(finding.kind)).remove(u'&');
        auto* row =
            new QTreeWidgetItem({inWords(finding), ShortLine(finding.place, longestName), remedy});
        row->setToolTip(0, Wrappable(row->text(0), longestName * 3));
        row->setToolTip(1, Wrappable(finding.place, longestName * 3));
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

void frmCheck::showRemedy()
{
    const int row = currentRow();
    const Remedy remedy =
        row < 0 ? Remedy::None : RemedyFor(findings_[static_cast<std::size_t>(row)].kind);
    const FeatureState features = library_.features();
    cmdRemedy_->setText(inWords(remedy));
    cmdRemedy_->setVisible(remedy != Remedy::None);
    cmdRemedy_->setEnabled(features.on || remedy == Remedy::ShowFolder);
    cmdRemedy_->setToolTip(cmdRemedy_->isEnabled() ? QString() : features.reason);
    cmdUndo_->setVisible(done_.has_value());
}

void frmCheck::cmdRemedy_Click()
{
    const int row = currentRow();
    if (row < 0) {
        return;
    }
    const Finding finding = findings_[static_cast<std::size_t>(row)];
    if (RemedyFor(finding.kind) == Remedy::ShowFolder) {
        const QString folder = finding.kind == FindingKind::Damaged
                                   ? services_.programFolder
                                   : QFileInfo(NewPictureFile(services_.programFolder, 0)).path();
        lblNote_->say(OpenWithDesktop(folder)
                          ? QString()
                          : tr("It lies in the folder %1.").arg(QDir::toNativeSeparators(folder)));
        return;
    }
    try {
        ApplyRemedy(library_, finding);
    } catch (const Error& error) {
        services_.messageBoxes->inform(tr("Check Library"), error.message());
        return;
    }
    done_.reset();
    // A restored place has the question under it, with which the journal does not take it away.
    const std::optional<StepInfo> step = library_.undoStep();
    if (step && RemedyFor(finding.kind) != Remedy::RestorePlace) {
        done_ = Done{step->step, row, finding};
    }
    findings_.erase(findings_.begin() + row);
    if (RemedyFor(finding.kind) == Remedy::RestorePlace) {
        forgetPlacesBack();
    }
    lblNote_->say(tr("Done: %1").arg(inWords(RemedyFor(finding.kind)).remove(u'&')) + u'.');
    showFindings(row);
    if (!cmdRemedy_->isVisibleTo(this)) {
        lstFindings_->setFocus();
    }
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
        if (newest && newest->step == done.step &&
            library_.undo().result == UndoOutcome::Result::Done) {
            findings_.insert(findings_.begin() + done.row, done.finding);
            lblNote_->say(tr("Undone."));
        } else {
            lblNote_->say(tr("It cannot be undone: the library has changed since."));
        }
    } catch (const Error& error) {
        services_.messageBoxes->inform(tr("Undo"), error.message());
    }
    showFindings(done.row);
    lstFindings_->setFocus();
}

} // namespace varnholt
