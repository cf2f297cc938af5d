#include "app/frmAssessment.h"

#include "authoring/frmAddNewQuestion.h"
#include "authoring/frmEditPicture.h"
#include "backups/frmBackups.h"
#include "check/frmCheck.h"
#include "class_results/frmResults.h"
#include "exchange/frmExport.h"
#include "exchange/frmImport.h"
#include "info/InfoWindow.h"
#include "manage/frmManage.h"
#include "many/frmAddMany.h"
#include "past_tests/frmTests.h"
#include "selection/frmMain.h"
#include "selection/paper_run.h"
#include "store/services.h"
#include "toolkit/controls.h"
#include "trash/frmTrash.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QScrollArea>
#include <QSettings>
#include <QToolButton>
#include <QVBoxLayout>

namespace varnholt {

frmAssessment::frmAssessment(Services& services, ProgramState& state, const QString& guidePath,
                             Connection::Access access)
    : services_(services)
    , state_(state)
    , guidePath_(guidePath)
    , library_(services.programFolder, *services.clock)
    , backups_(services, library_)
{
    library_.open(access);
    const QString unfinished = backups_.begin();

    setObjectName(QStringLiteral("frmAssessment"));
    setWindowTitle(QStringLiteral("Varnholt"));
    buildMenu();

    auto* area = new QWidget;
    childArea_ = new QVBoxLayout(area);
    childArea_->setContentsMargins(0, 0, 0, 0);
    childArea_->setSpacing(0);
    if (access == Connection::Access::Change && library_.connection().isReadOnly()) {
        showNotice("lblReadOnly",
                   tr("The question library can only be read: changes cannot be saved."));
    }
    if (!unfinished.isEmpty()) {
        showNotice("lblUnfinished", unfinished);
    }
    buildChildBar();
    lblEmpty_ = makeLabel("lblEmpty", tr("Choose what to do in the menu above."));
    lblEmpty_->setAlignment(Qt::AlignCenter);
    lblEmpty_->setForegroundRole(QPalette::PlaceholderText);
    // At the start the selection window is about to come.
    lblEmpty_->hide();
    childArea_->addWidget(lblEmpty_, 1);
    setCentralWidget(area);
    setAcceptDrops(true);

    const QFontMetrics metrics = fontMetrics();
    resizeWithinScreen(this, {metrics.averageCharWidth() * 165, metrics.height() * 46});
    restoreGeometry(QSettings().value(QStringLiteral("frmAssessment/geometry")).toByteArray());
}

frmAssessment::~frmAssessment()
{
    delete child_;
}

void frmAssessment::showNotice(const char* name, const QString& text)
{
    auto* notice = makeLabel(name, text);
    notice->setTextFormat(Qt::PlainText);
    notice->setWordWrap(true);
    notice->setAlignment(Qt::AlignCenter);
    notice->setMargin(fontMetrics().height() / 3);
    notice->setBackgroundRole(QPalette::ToolTipBase);
    notice->setForegroundRole(QPalette::ToolTipText);
    notice->setAutoFillBackground(true);
    childArea_->insertWidget(0, notice);
    notice->show();
}

void frmAssessment::showInManager(Item item)
{
    mnuManageAssessments_Click();
    if (auto* manager = qobject_cast<frmManage*>(child_)) {
        manager->bringUp(item);
    }
}

QWidget* frmAssessment::childWindow() const
{
    return child_;
}

void frmAssessment::buildMenu()
{
    const auto addEntry = [this](const char* name, const QString& caption,
                                 void (frmAssessment::*handler)()) {
        QAction* action = menuBar()->addAction(caption);
        action->setObjectName(QLatin1String(name));
        if (handler) {
            connect(action, &QAction::triggered, this, handler);
        } else {
            action->setEnabled(false);
        }
    };
    addEntry("mnuCreate", tr("&Create PowerPoints"), &frmAssessment::mnuCreate_Click);
    addEntry("mnuManageAssessments", tr("&Manage Assessments"),
             &frmAssessment::mnuManageAssessments_Click);
    addEntry("mnuExport", tr("E&xport Assessment"), &frmAssessment::mnuExport_Click);
    addEntry("mnuImport", tr("&Import Assessment"), &frmAssessment::mnuImport_Click);
    addEntry("mnuTutorial", tr("Tutorial &Videos"), &frmAssessment::mnuTutorial_Click);
    addEntry("mnAbout", tr("A&bout"), &frmAssessment::mnAbout_Click);

    // No letter of the word is free in every window, and theirs were there first: F10 opens it.
    QMenu* more = menuBar()->addMenu(tr("More"));
    more->menuAction()->setObjectName(QStringLiteral("mnuMore"));
    const auto addMore = [this, more](const char* name, const QString& caption,
                                      void (frmAssessment::*handler)()) {
        QAction* action = more->addAction(caption);
        action->setObjectName(QLatin1String(name));
        connect(action, &QAction::triggered, this, handler);
        return action;
    };
    addMore("mnuAddMany", tr("Add &Many Questions…"), &frmAssessment::mnuAddMany_Click)
        ->setShortcut(Qt::CTRL | Qt::SHIFT | Qt::Key_N);
    addMore("mnuTests", tr("P&ast Tests…"), &frmAssessment::mnuTests_Click)
        ->setShortcut(Qt::CTRL | Qt::Key_H);
    addMore("mnuResults", tr("How C&lasses Did…"), &frmAssessment::mnuResults_Click);
    addMore("mnuTrash", tr("&Trash…"), &frmAssessment::mnuTrash_Click);
    addMore("mnuBackups", tr("&Backups…"), &frmAssessment::mnuBackups_Click);
    addMore("mnuCheck", tr("&Check Library…"), &frmAssessment::mnuCheck_Click);
#ifdef VARNHOLT_PAPER
    addMore("mnuPaper", tr("&Print or Save as PDF…"), &frmAssessment::mnuPaper_Click)
        ->setShortcut(QKeySequence(QKeySequence::Print));
#endif

    auto* openMore = new QAction(tr("More"), this);
    openMore->setShortcut(Qt::Key_F10);
    connect(openMore, &QAction::triggered, this,
            [this, more] { menuBar()->setActiveAction(more->menuAction()); });
    addAction(openMore);

    auto* closeChildWindow = new QAction(tr("Close window"), this);
    closeChildWindow->setShortcuts(
        {QKeySequence(Qt::CTRL | Qt::Key_W), QKeySequence(Qt::CTRL | Qt::Key_F4)});
    connect(closeChildWindow, &QAction::triggered, this, &frmAssessment::closeChild);
    addAction(closeChildWindow);
}

void frmAssessment::buildChildBar()
{
    childBar_ = named(new QWidget, "childBar");
    childBar_->setAutoFillBackground(true);
    childBar_->setBackgroundRole(QPalette::Midlight);
    lblChildTitle_ = makeLabel("lblChildTitle");
    QFont bold = lblChildTitle_->font();
    bold.setBold(true);
    lblChildTitle_->setFont(bold);
    auto* cmdCloseChild = named(new QToolButton, "cmdCloseChild", tr("Close this window"));
    // The style's icon is dark on dark desktops, too.
    cmdCloseChild->setText(QStringLiteral("\u00D7"));
    cmdCloseChild->setFont(bold);
    cmdCloseChild->setToolTip(tr("Close this window (Ctrl+W)"));
    cmdCloseChild->setAutoRaise(true);
    cmdCloseChild->setFocusPolicy(Qt::TabFocus);
    connect(cmdCloseChild, &QToolButton::clicked, this, &frmAssessment::closeChild,
            Qt::QueuedConnection);
    auto* row = new QHBoxLayout(childBar_);
    const int space = fontMetrics().height() / 4;
    row->setContentsMargins(2 * space, 0, space, 0);
    row->addWidget(lblChildTitle_, 1);
    row->addWidget(cmdCloseChild);
    childBar_->hide();
    childArea_->addWidget(childBar_);

    childScroll_ = new QScrollArea;
    childScroll_->setFrameShape(QFrame::NoFrame);
    childScroll_->setWidgetResizable(true);
    childScroll_->setFocusPolicy(Qt::NoFocus);
    childScroll_->hide();
    childArea_->addWidget(childScroll_, 1);
}

bool frmAssessment::closeChild()
{
    if (child_ && !child_->close()) {
        return false;
    }
    delete child_;
    showEmpty();
    return true;
}

void frmAssessment::showEmpty()
{
    childBar_->hide();
    childScroll_->hide();
    lblEmpty_->show();
}

void frmAssessment::openChild(const Maker& make)
{
    if (!closeChild()) {
        return;
    }
    childMaker_ = make;
    child_ = make();
    // A child may also close by itself.
    child_->setAttribute(Qt::WA_DeleteOnClose);
    connect(child_, &QObject::destroyed, this, &frmAssessment::showEmpty);
    lblEmpty_->hide();
    lblChildTitle_->setText(child_->windowTitle());
    childBar_->show();
    childScroll_->setWidget(child_);
    childScroll_->show();
    child_->show();
    child_->setFocus();
}

void frmAssessment::mnuCreate_Click()
{
    openChild([this] {
        auto* selection = new frmMain(services_, state_, library_);
        connect(selection, &frmMain::testMade, this,
                [this](const DrawnTest& test) { lastTest_ = test; });
        return selection;
    });
}

void frmAssessment::mnuManageAssessments_Click()
{
    const auto openAuthoring = [this](QWidget* parent, const FilingPreselection& preselection) {
        // A saved question leaves no row chosen; the next one mostly belongs beside it.
        frmAddNewQuestion dialog(services_, state_, library_,
                                 preselection.topicId ? preselection : lastFiling_, parent);
        dialog.exec();
        if (dialog.questionSaved()) {
            lastFiling_ = {dialog.lastFiling().TopicID, dialog.lastFiling().SubtopicNum};
        }
    };
    openChild([this, openAuthoring] {
        auto* manager = new frmManage(services_, state_, library_, openAuthoring);
        manager->setPictureEditor([this](QWidget* parent, std::int32_t solIndex) {
            EditQuestionPicture(services_, library_, solIndex, parent);
        });
        return manager;
    });
}

void frmAssessment::mnuExport_Click()
{
    openChild([this] { return new frmExport(services_, state_, library_); });
}

void frmAssessment::mnuImport_Click()
{
    openChild([this] {
        return new frmImport(services_, library_, [this] { return backups_.makeBefore(this); });
    });
}

void frmAssessment::dragEnterEvent(QDragEnterEvent* event)
{
    const QString package = DraggedPackage(*event->mimeData());
    if (package.endsWith(QStringLiteral(".zip"), Qt::CaseInsensitive) ||
        !PictureFilesIn(*event->mimeData()).isEmpty()) {
        event->acceptProposedAction();
    }
}

void frmAssessment::dropEvent(QDropEvent* event)
{
    event->acceptProposedAction();
    if (const QStringList pictures = PictureFilesIn(*event->mimeData()); !pictures.isEmpty()) {
        QMetaObject::invokeMethod(
            this, [this, pictures] { addMany(pictures); }, Qt::QueuedConnection);
        return;
    }
    // Afterwards, because the program that the file comes from waits for this to return.
    const auto importPackage = [this, package = DraggedPackage(*event->mimeData())] {
        mnuImport_Click();
        if (auto* window = qobject_cast<frmImport*>(child_)) {
            window->importFile(package);
        }
    };
    QMetaObject::invokeMethod(this, importPackage, Qt::QueuedConnection);
}

void frmAssessment::mnuTutorial_Click()
{
    openChild([this] { return new frmTutorial(guidePath_); });
}

void frmAssessment::mnAbout_Click()
{
    openChild([this] { return new frmAbout(services_.programFolder); });
}

void frmAssessment::mnuPaper_Click()
{
    if (auto* tests = qobject_cast<frmTests*>(child_); tests && tests->hasTest()) {
        tests->cmdPaper_Click();
        return;
    }
    if (lastTest_) {
        RunPaper(this, services_, library_, *lastTest_);
        return;
    }
    if (auto* selection = qobject_cast<frmMain*>(child_)) {
        selection->cmdPaper_Click();
        return;
    }
    mnuCreate_Click();
    services_.messageBoxes->inform(
        tr("Print or Save as PDF"),
        tr("No test has been made yet. Choose topics and the number of questions here, then press "
           "\"Print or Save as PDF…\" below \"Create PowerPoint\"."));
}

void frmAssessment::mnuTests_Click()
{
    openChild([this] {
        auto* window = new frmTests(services_, library_);
        // It takes the window away that asks.
        connect(window, &frmTests::resultsWanted, this, &frmAssessment::showResults,
                Qt::QueuedConnection);
        return window;
    });
}

void frmAssessment::mnuResults_Click()
{
    showResults(state_.CurrentAssessmentNum);
}

void frmAssessment::showResults(std::int32_t assessmentNum)
{
    openChild([this, assessmentNum] { return new frmResults(services_, library_, assessmentNum); });
}

void frmAssessment::mnuTrash_Click()
{
    openChild([this] { return new frmTrash(services_, library_); });
}

void frmAssessment::mnuBackups_Click()
{
    openChild([this] { return new frmBackups(services_, backups_); });
}

void frmAssessment::mnuAddMany_Click()
{
    addMany({});
}

void frmAssessment::addMany(const QStringList& pictures)
{
    FilingPreselection rows = lastFiling_;
    if (const auto* manager = qobject_cast<frmManage*>(child_); manager) {
        rows = manager->currentRows().topicId ? manager->currentRows() : rows;
    }
    openChild([this, rows] { return new frmAddMany(services_, state_, library_, rows); });
    if (auto* many = qobject_cast<frmAddMany*>(child_)) {
        connect(many, &frmAddMany::saved, this,
                [this](const FilingPreselection& filing) { lastFiling_ = filing; });
        if (!pictures.isEmpty()) {
            many->addFiles(pictures);
        }
    }
}

void frmAssessment::mnuCheck_Click()
{
    openChild([this] {
        auto* window =
            new frmCheck(services_, library_, [this] { return backups_.makeBefore(this); });
        // Both take the window away that asks.
        connect(window, &frmCheck::showWanted, this, &frmAssessment::showInManager,
                Qt::QueuedConnection);
        connect(window, &frmCheck::backupsWanted, this, &frmAssessment::restoreDamaged,
                Qt::QueuedConnection);
        return window;
    });
}

void frmAssessment::closeEvent(QCloseEvent* event)
{
    if (!closeChild()) {
        event->ignore();
        return;
    }
    QSettings().setValue(QStringLiteral("frmAssessment/geometry"), saveGeometry());
    backups_.makeAtClose(this);
    library_.close();
    event->accept();
}

} // namespace varnholt
