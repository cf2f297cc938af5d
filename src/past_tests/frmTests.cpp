#include "past_tests/frmTests.h"

#include "library/Library.h"
#include "library/test_pictures.h"
#include "library/test_versions.h"
#include "selection/QuestionStrip.h"
#include "selection/build_run.h"
#include "selection/frmSelect.h"
#include "selection/past_build.h"
#include "selection/test_record.h"
#include "store/catalogue.h"
#include "store/services.h"
#include "toolkit/HintLabel.h"
#include "toolkit/controls.h"

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
#include <unordered_map>
#include <utility>

#ifdef VARNHOLT_PAPER
#include "paper/frmPaper.h"
#endif

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
         {std::pair(Date, 24), std::pair(Class, 8), std::pair(Number, 9), std::pair(Kind, 16)}) {
        lstTests_->header()->resizeSection(column, letter * letters);
    }
    lstQuestions_ = named(new QuestionStrip, "lstQuestions", tr("Questions of the test"));
    lblEmpty_ = makeLabel("lblEmpty", tr("There are no past tests yet. Every presentation that you "
                                         "make is remembered here."));
    lblEmpty_->setAlignment(Qt::AlignCenter);
    lblEmpty_->setWordWrap(true);
    lblEmpty_->setForegroundRole(QPalette::PlaceholderText);
    lblNote_ = new HintLabel("lblNote", lstTests_, HintLabel::Place::Kept);

    cmdOpenAgain_ = makeButton("cmdOpenAgain", tr("&Open Again"));
    cmdOpenAgain_->setToolTip(tr("Makes the slides of this test as they were (Enter)."));
    cmdNewVersion_ = makeButton("cmdNewVersion", tr("&New Version"));
    cmdNewVersion_->setToolTip(tr("Makes slides of the same questions in another order. The "
                                  "choices inside a picture stay in their order."));
    cmdChange_ = makeButton("cmdChange", tr("C&hange Questions…"));
    cmdChange_->setToolTip(tr("Reviews these questions and makes a new test."));
    cmdShow_ = makeButton("cmdShow", tr("&Show in Class"));
    cmdShow_->setToolTip(tr("Shows the questions of this test to the class (F5)."));
    cmdPaper_ = makeButton("cmdPaper", tr("&Print or Save as PDF…"));
    cmdPaper_->setToolTip(tr("Puts the questions of this test on paper."));
    cmdUnused_ = makeButton("cmdUnused", tr("Not &Used After All"));
    cmdUnused_->setToolTip(tr("Says whether the questions of this test count as used."));
    cmdDelete_ = makeButton("cmdDelete", tr("&Delete"));
    cmdDelete_->setToolTip(tr("Puts this test into the trash (Del)."));

    auto* splitter = new QSplitter(Qt::Vertical);
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(lstTests_);
    splitter->addWidget(lstQuestions_);
    splitter->setStretchFactor(1, 1);
    auto* buttons = new QHBoxLayout;
    for (QPushButton* button :
         {cmdOpenAgain_, cmdNewVersion_, cmdChange_, cmdShow_, cmdPaper_, cmdUnused_, cmdDelete_}) {
        button->setAutoDefault(true);
        buttons->addWidget(button);
    }
    buttons->insertStretch(5);
#ifndef VARNHOLT_PAPER
    cmdPaper_->hide();
#endif
    auto* column = new QVBoxLayout(this);
    column->addWidget(splitter, 1);
    column->addWidget(lblEmpty_, 1);
    column->addWidget(lblNote_);
    column->addLayout(buttons);
    QWidget* previous = lstTests_;
    for (QWidget* next :
         std::initializer_list<QWidget*>{lstQuestions_, cmdOpenAgain_, cmdNewVersion_, cmdChange_,
                                         cmdShow_, cmdPaper_, cmdUnused_, cmdDelete_}) {
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
    const auto key = [this](const QKeySequence& sequence, auto action) {
        connect(new QShortcut(sequence, lstTests_, nullptr, nullptr, Qt::WidgetShortcut),
                &QShortcut::activated, this, action);
    };
    key(Qt::Key_F2, [this] {
        if (current() && library_.features().on) {
            lstTests_->editItem(lstTests_->currentItem(), Name);
        }
    });
    key(Qt::Key_Return, &frmTests::cmdOpenAgain_Click);
    key(Qt::Key_Enter, &frmTests::cmdOpenAgain_Click);
    key(Qt::Key_F5, [this] { cmdShow_->click(); });
    key(QKeySequence::Delete, [this] { cmdDelete_->click(); });
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

template <typename Work>
void frmTests::tryTo(Work work)
{
    try {
        work();
    } catch (const Error& error) {
        services_.messageBoxes->inform(tr("Past Tests"), error.message());
    }
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
    lstTests_->setVisible(!tests_.empty());
    lstQuestions_->setVisible(!tests_.empty());
    lblEmpty_->setVisible(tests_.empty());
    if (!tests_.empty()) {
        const int shown = row >= 0 ? row : std::min(oldRow, static_cast<int>(tests_.size()) - 1);
        lstTests_->setCurrentItem(lstTests_->topLevelItem(shown));
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
    if (const PastTest* test = current()) {
        tryTo([&] {
            for (const TestItem& item : library_.pastTests().items(test->TestID)) {
                entries.push_back({item.position, FindTestPicture(library_.programFolder(), item),
                                   item.answer, item.topicText});
            }
        });
    }
    lstQuestions_->setEntries(std::move(entries));
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
    cmdNewVersion_->setEnabled(test && NextVersion(tests_, *test).has_value());
    cmdUnused_->setEnabled(changeable && test->kind != TestKind::Kept);
    cmdUnused_->setText(test && test->options.unused ? tr("&Used After All")
                                                     : tr("Not &Used After All"));
    cmdDelete_->setEnabled(changeable);
    if (!features.on) {
        lblNote_->say(features.reason);
    }
}

void frmTests::cmdOpenAgain_Click()
{
    if (const PastTest* test = current()) {
        const PastTest copy = *test;
        tryTo([&] { MakeTestAgain(window(), services_, library_, copy); });
    }
}

void frmTests::cmdNewVersion_Click()
{
    if (const PastTest* test = current()) {
        const PastTest copy = *test;
        const std::vector<PastTest> all = tests_;
        tryTo([&] { MakeNewVersion(window(), services_, library_, all, copy); });
    }
}

void frmTests::cmdChange_Click()
{
    const PastTest* chosen = current();
    if (!chosen || review_) {
        return;
    }
    const PastTest test = *chosen;
    tryTo([&] {
        state_ = {};
        state_.CurrentAssessmentNum = test.AssessmentNum;
        services_.messageBoxes->informEach(tr("Database Error"),
                                           LoadStructure(state_, library_.connection()));
        LoadQuestions(state_, library_.connection());
        // Its questions in their order, and behind them what can come in their place.
        std::unordered_map<std::int32_t, const QuestionRecord*> records;
        for (const QuestionRecord& question : state_.QuestionList) {
            records.emplace(question.SOLIndex, &question);
        }
        Draw draw;
        for (const TestItem& item : library_.pastTests().items(test.TestID)) {
            if (const auto found = records.find(item.SOLIndex); found != records.end()) {
                draw.DrawPool.append({*found->second});
                records.erase(found);
            }
        }
        if (draw.DrawPool.isEmpty()) {
            throw Error(tr("None of the questions of this test is in the library any more."));
        }
        draw.RequestedQuestionCount = draw.DrawPool.upperBound();
        draw.seed = test.seed;
        List1<DrawnQuestion> others;
        for (const QuestionRecord& question : state_.QuestionList) {
            if (records.contains(question.SOLIndex)) {
                others.append({question});
            }
        }
        ShuffleDrawPool(others, *services_.random);
        for (const DrawnQuestion& question : others) {
            draw.DrawPool.append(question);
        }
        const auto newTest = [this, test](const Draw& judged) {
            NewTest changed{
                NameOfTest(state_, judged), test.AssessmentNum, test.className, judged.seed, {},
                ItemsOf(state_, judged)};
            changed.options.topicLine = test.options.topicLine;
            changed.options.answerKey = test.options.answerKey;
            return changed;
        };
        const auto build = [this, test, newTest](QWidget* over, const Draw& judged) {
            TestRecord record(library_, newTest(judged));
            const BuildOutcome outcome = RunBuild(over, services_, state_, judged,
                                                  {test.options.topicLine, test.options.answerKey});
            FinishTest(services_, record, outcome);
            return outcome;
        };
        setEnabled(false);
        review_ =
            new frmSelect(services_, state_, Review(std::move(draw)), {build, {}, {}}, window());
        connect(review_, &frmSelect::unloaded, this, [this] {
            setEnabled(true);
            lstTests_->setFocus();
        });
        review_->Form_Load();
    });
}

void frmTests::cmdShow_Click()
{
    if (const PastTest* test = current()) {
        const PastTest copy = *test;
        tryTo([&] { ShowTestAgain(window(), services_, library_, copy); });
    }
}

void frmTests::cmdPaper_Click()
{
#ifdef VARNHOLT_PAPER
    const PastTest* test = current();
    if (!test) {
        return;
    }
    PaperTest paper;
    paper.title = test->name;
    paper.className = test->className;
    tryTo([&] {
        for (const TestItem& item : library_.pastTests().items(test->TestID)) {
            paper.questions.push_back(
                {item.answer, item.topicText, FindTestPicture(library_.programFolder(), item)});
        }
    });
    if (!paper.questions.empty()) {
        frmPaper(services_, std::move(paper), window()).exec();
    }
#endif
}

void frmTests::cmdUnused_Click()
{
    if (const PastTest* test = current()) {
        const bool used = test->options.unused;
        tryTo([&] {
            library_.setTestUsed(test->TestID, used);
            lblNote_->say(used ? tr("The questions of this test count as used again.")
                               : tr("The questions of this test do not count as used. Ctrl+Z "
                                    "takes that back."));
        });
    }
}

void frmTests::cmdDelete_Click()
{
    if (const PastTest* test = current(); test && cmdDelete_->isEnabled()) {
        const QString name = test->name;
        tryTo([&] {
            library_.deleteTest(test->TestID);
            lblNote_->say(tr("“%1” is in the trash. Ctrl+Z brings it back.").arg(name));
        });
    }
}

void frmTests::undo()
{
    tryTo([this] {
        const std::optional<StepInfo> step = library_.undoStep();
        if (step && step->subject.item.kind == ItemKind::Test) {
            lblNote_->say(library_.undo().result == UndoOutcome::Result::Done
                              ? tr("Undone: “%1” is as it was.").arg(step->subject.name)
                              : tr("It cannot be undone: the test has changed since."));
        } else {
            lblNote_->say(tr("There is nothing to undo here."));
        }
    });
}

void frmTests::rename(int row)
{
    if (filling_ || row < 0 || row >= static_cast<int>(tests_.size())) {
        return;
    }
    const PastTest& test = tests_[static_cast<std::size_t>(row)];
    const QString name = lstTests_->topLevelItem(row)->text(Name);
    if (name != test.name) {
        tryTo([&] { library_.rename({ItemKind::Test, test.TestID}, name); });
        QMetaObject::invokeMethod(this, &frmTests::reload, Qt::QueuedConnection);
    }
}

} // namespace varnholt
