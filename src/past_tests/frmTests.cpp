#include "past_tests/frmTests.h"

#include "library/Library.h"
#include "library/test_pictures.h"
#include "selection/QuestionStrip.h"
#include "selection/draw_wishes.h"
#include "selection/frmSelect.h"
#include "selection/past_build.h"
#include "store/services.h"
#include "toolkit/HintLabel.h"
#include "toolkit/OutcomeRow.h"
#include "toolkit/controls.h"
#include "toolkit/keys.h"

#include <QCloseEvent>
#include <QDateTime>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace varnholt {

namespace {

QString kindInWords(const PastTest& test)
{
    QString kind;
    switch (test.kind) {
    case TestKind::Shown:
        kind = frmTests::tr("Shown");
        break;
    case TestKind::Paper:
        kind = frmTests::tr("Paper");
        break;
    case TestKind::Kept:
        return frmTests::tr("Kept for later");
    default:
        kind = frmTests::tr("Slides");
        break;
    }
    return test.options.unused ? frmTests::tr("%1, not used").arg(kind) : kind;
}

} // namespace

frmTests::frmTests(Services& services, Library& library, QWidget* parent)
    : QWidget(parent)
    , services_(services)
    , library_(library)
{
    setObjectName(QStringLiteral("frmTests"));
    setWindowTitle(tr("Past Tests"));
    buildControls();
    connectControls();
    reload();
}

frmTests::~frmTests()
{
    if (review_) {
        review_->abandon();
    }
}

void frmTests::buildControls()
{
    lstTests_ = named(new QTreeWidget, "lstTests", tr("Past tests"));
    lstTests_->setHeaderLabels({tr("Date"), tr("Class"), tr("Name"), tr("Number"), tr("Kind")});
    lstTests_->setRootIsDecorated(false);
    lstTests_->setUniformRowHeights(true);
    lstTests_->setAllColumnsShowFocus(true);
    lstTests_->setTabKeyNavigation(false);
    lstTests_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    lstTests_->header()->setStretchLastSection(false);
    lstTests_->header()->setSectionResizeMode(Name, QHeaderView::Stretch);
    const int letter = fontMetrics().averageCharWidth();
    for (const auto& [column, letters] :
         {std::pair(Date, 24), std::pair(Class, 8), std::pair(Number, 9), std::pair(Kind, 20)}) {
        lstTests_->header()->resizeSection(column, letter * letters);
    }
    lstQuestions_ = named(new QuestionStrip, "lstQuestions", tr("Questions of the test"));
    lstQuestions_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    lblEmpty_ = makeLabel("lblEmpty");
    lblEmpty_->setAlignment(Qt::AlignCenter);
    lblEmpty_->setWordWrap(true);
    lblEmpty_->setForegroundRole(QPalette::PlaceholderText);
    lblNote_ = new HintLabel("lblNote", lstTests_, HintLabel::Place::Kept);

    cmdOpenAgain_ = makeButton("cmdOpenAgain", tr("&Open Again"));
    cmdOpenAgain_->setToolTip(tr("Makes the slides of this test as they were (Enter)."));
    cmdNewVersion_ = makeButton("cmdNewVersion", tr("&New Version"));
    cmdChange_ = makeButton("cmdChange", tr("C&hange Questions…"));
    cmdChange_->setToolTip(tr("Reviews these questions and makes a new test."));
    cmdShow_ = makeButton("cmdShow", tr("&Show in Class"));
    cmdShow_->setToolTip(tr("Shows the questions of this test to the class (F5)."));
    cmdPaper_ = makeButton("cmdPaper", tr("&Print or Save as PDF…"));
    cmdPaper_->setToolTip(tr("Puts the questions of this test on paper."));
    cmdUnused_ = makeButton("cmdUnused", tr("Not &Used After All"));
    cmdDelete_ = makeButton("cmdDelete", tr("&Delete"));

    cmdResults_ = makeButton("cmdResults", tr("How C&lasses Did…"));
    cmdResults_->setToolTip(tr("Shows what each class has seen and how it went."));

    auto* splitter = new QSplitter(Qt::Vertical);
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(lstTests_);
    splitter->addWidget(lstQuestions_);
    splitter->setStretchFactor(0, 2);
    splitter->setStretchFactor(1, 3);
    auto* buttons = new QHBoxLayout;
    for (QPushButton* button :
         {cmdOpenAgain_, cmdNewVersion_, cmdChange_, cmdShow_, cmdPaper_, cmdUnused_, cmdDelete_}) {
        button->setAutoDefault(true);
        buttons->addWidget(button);
    }
    buttons->insertStretch(5);
    outcomes_ = new OutcomeRow(tr("How many knew the chosen questions:"), lstQuestions_);
    auto* outcomes = new QHBoxLayout;
    outcomes->addWidget(outcomes_);
    outcomes->addStretch();
    outcomes->addWidget(cmdResults_);
    cmdResults_->setAutoDefault(true);
#ifndef VARNHOLT_PAPER
    cmdPaper_->hide();
#endif
    auto* column = new QVBoxLayout(this);
    column->addWidget(splitter, 1);
    column->addWidget(lblEmpty_, 1);
    column->addLayout(outcomes);
    column->addWidget(lblNote_);
    column->addLayout(buttons);
    QWidget* previous = lstTests_;
    std::vector<QWidget*> order{lstQuestions_};
    order.insert(order.end(), outcomes_->buttons().begin(), outcomes_->buttons().end());
    for (QPushButton* button : {cmdResults_, cmdOpenAgain_, cmdNewVersion_, cmdChange_, cmdShow_,
                                cmdPaper_, cmdUnused_, cmdDelete_}) {
        order.push_back(button);
    }
    for (QWidget* next : order) {
        setTabOrder(previous, next);
        previous = next;
    }
}

void frmTests::connectControls()
{
    connect(cmdOpenAgain_, &QPushButton::clicked, this, &frmTests::cmdOpenAgain_Click);
    connect(cmdNewVersion_, &QPushButton::clicked, this, &frmTests::cmdNewVersion_Click);
    connect(cmdChange_, &QPushButton::clicked, this, &frmTests::cmdChange_Click);
    connect(cmdShow_, &QPushButton::clicked, this, &frmTests::cmdShow_Click);
    connect(cmdPaper_, &QPushButton::clicked, this, &frmTests::cmdPaper_Click);
    connect(cmdUnused_, &QPushButton::clicked, this, &frmTests::cmdUnused_Click);
    connect(cmdDelete_, &QPushButton::clicked, this, &frmTests::cmdDelete_Click);
    connect(lstTests_, &QTreeWidget::currentItemChanged, this, &frmTests::showTest);
    connect(lstTests_, &QTreeWidget::itemDoubleClicked, this, &frmTests::cmdOpenAgain_Click);
    connect(lstTests_, &QTreeWidget::itemChanged, this,
            [this](QTreeWidgetItem* item) { rename(lstTests_->indexOfTopLevelItem(item)); });
    connect(cmdResults_, &QPushButton::clicked, this, [this] {
        const PastTest* test = current();
        Q_EMIT resultsWanted(test ? test->AssessmentNum : 0);
    });
    connect(outcomes_, &OutcomeRow::noted, this,
            [this](int outcome) { noteOutcome(static_cast<Outcome>(outcome)); });
    connect(lstQuestions_, &QListWidget::itemSelectionChanged, this, &frmTests::showButtons);
    onKey(lstTests_, Qt::Key_F2, [this] {
        if (current() && library_.features().on) {
            lstTests_->editItem(lstTests_->currentItem(), Name);
        }
    });
    onKey(lstTests_, Qt::Key_Return, [this] { cmdOpenAgain_Click(); });
    onKey(lstTests_, Qt::Key_Enter, [this] { cmdOpenAgain_Click(); });
    onKey(lstTests_, Qt::Key_F5, [this] { cmdShow_->click(); });
    onKey(lstTests_, QKeySequence::Delete, [this] { cmdDelete_->click(); });
    connect(
        new QShortcut(QKeySequence::Undo, this, nullptr, nullptr, Qt::WidgetWithChildrenShortcut),
        &QShortcut::activated, this, &frmTests::undo);
    // Afterwards: a name that has been edited is still in its editor.
    connect(&library_, &Library::changed, this, &frmTests::reload, Qt::QueuedConnection);
}

void frmTests::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    lstTests_->setFocus();
}

void frmTests::closeEvent(QCloseEvent* event)
{
    event->setAccepted(!review_ || review_->close());
}

void frmTests::reload()
{
    const PastTest* test = current();
    const std::int32_t wanted = test ? test->TestID : 0;
    const int oldRow = std::max(lstTests_->indexOfTopLevelItem(lstTests_->currentItem()), 0);
    filling_ = true;
    tests_.clear();
    lstTests_->clear();
    tryTo([this] { tests_ = library_.pastTests().list(); });
    QList<QTreeWidgetItem*> rows;
    const QLocale locale;
    int row = -1;
    for (const PastTest& past : tests_) {
        row = past.TestID == wanted ? static_cast<int>(rows.size()) : row;
        auto* item = new QTreeWidgetItem(
            {locale.toString(QDateTime::fromSecsSinceEpoch(past.madeAt), QLocale::ShortFormat),
             past.className, past.name, locale.toString(past.questions), kindInWords(past)});
        item->setFlags(item->flags() | Qt::ItemIsEditable);
        item->setTextAlignment(Number, Qt::AlignRight | Qt::AlignVCenter);
        item->setToolTip(Name, past.name.toHtmlEscaped());
        rows.append(item);
    }
    lstTests_->addTopLevelItems(rows);
    filling_ = false;
    QWidget* lists = lstTests_->parentWidget();
    // A test that came back is the one to go on with.
    const bool cameBack = lists->isHidden() && !tests_.empty() && isAncestorOf(focusWidget());
    lists->setVisible(!tests_.empty());
    lblEmpty_->setText(library_.features().on
                           ? tr("There are no past tests yet. Every presentation that you make is "
                                "remembered here.")
                           : tr("There are no past tests to be shown."));
    lblEmpty_->setVisible(tests_.empty());
    if (!tests_.empty()) {
        const int shown = row >= 0 ? row : std::min(oldRow, static_cast<int>(tests_.size()) - 1);
        lstTests_->setCurrentItem(lstTests_->topLevelItem(shown));
    }
    if (cameBack) {
        lstTests_->setFocus();
    }
    showTest();
}

const PastTest* frmTests::current() const
{
    const int row = lstTests_->indexOfTopLevelItem(lstTests_->currentItem());
    return row >= 0 && row < static_cast<int>(tests_.size())
               ? &tests_[static_cast<std::size_t>(row)]
               : nullptr;
}

void frmTests::showTest()
{
    if (filling_) {
        return;
    }
    std::vector<StripEntry> entries;
    uses_.clear();
    const PastTest* test = current();
    if (test) {
        tryTo([&] {
            uses_ = library_.pastTests().uses(test->TestID);
            for (const TestItem& item : library_.pastTests().items(test->TestID)) {
                const auto use = uses_.find(item.SOLIndex);
                const QString outcome =
                    use == uses_.end() ? QString() : OutcomeInWords(use->second.outcome);
                entries.push_back(
                    {item.SOLIndex, FindTestPicture(library_.programFolder(), item),
                     outcome.isEmpty() ? item.answer : tr("%1 – %2").arg(item.answer, outcome),
                     item.topicText});
            }
        });
    }
    const bool same = test && shownTest_ == test->TestID;
    const std::vector<std::int32_t> selected =
        same ? lstQuestions_->selectedKeys() : std::vector<std::int32_t>();
    lstQuestions_->setEntries(std::move(entries), same ? lstQuestions_->currentKey() : 0);
    lstQuestions_->selectKeys(selected);
    shownTest_ = test ? test->TestID : 0;
    showButtons();
}

void frmTests::showButtons()
{
    const PastTest* test = current();
    const FeatureState features = library_.features();
    const bool changeable = test && features.on;
    cmdOpenAgain_->setEnabled(test);
    cmdChange_->setEnabled(test);
    cmdShow_->setEnabled(test);
    cmdPaper_->setEnabled(test);
    const bool another = test && NextVersion(tests_, *test);
    cmdNewVersion_->setEnabled(another);
    cmdNewVersion_->setToolTip(test && !another
                                   ? tr("There is no other order of these questions left.")
                                   : tr("Makes slides of the same questions in another order. The "
                                        "choices inside a picture stay in their order."));
    cmdUnused_->setEnabled(changeable && test->kind != TestKind::Kept);
    cmdUnused_->setText(test && test->options.unused ? tr("&Used After All")
                                                     : tr("Not &Used After All"));
    cmdUnused_->setToolTip(!features.on ? features.reason
                           : test && test->kind == TestKind::Kept
                               ? tr("Nothing has been made of this draw yet.")
                               : tr("Says whether the questions of this test count as used."));
    cmdDelete_->setEnabled(changeable);
    cmdDelete_->setToolTip(features.on ? tr("Puts this test into the trash (Del).")
                                       : features.reason);
    lstTests_->setToolTip(features.on ? tr("Press F2 to give a test another name.")
                                      : features.reason);
    outcomes_->offer(changeable && !uses_.empty() && !lstQuestions_->selectedItems().isEmpty(),
                     !features.on    ? features.reason
                     : uses_.empty() ? tr("The questions of this test have not been used.")
                                     : tr("Press the key in the list of questions."));
    if (!features.on) {
        lblNote_->say(features.reason);
    }
}

} // namespace varnholt
