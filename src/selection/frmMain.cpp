#include "selection/frmMain.h"

#include "selection/build_run.h"
#include "selection/frmSelect.h"
#include "selection/question_draw.h"
#include "store/connection.h"
#include "store/services.h"
#include "toolkit/ComboBox.h"
#include "toolkit/HintLabel.h"
#include "toolkit/LineEdit.h"
#include "toolkit/ListBox.h"
#include "toolkit/controls.h"

#include <QCloseEvent>
#include <QGridLayout>
#include <QKeyEvent>
#include <QScopedValueRollback>

#include <algorithm>
#include <cmath>

namespace varnholt {

namespace {

/// The two buttons of an option frame, "Yes" first.
QRadioButton* addOptions(QGroupBox* frame, const char* yesName, const char* noName,
                         const QString& help)
{
    auto* yes = named(new QRadioButton(QStringLiteral("Yes")), yesName,
                      frame->title().remove(u'&') + QStringLiteral(": Yes"));
    auto* no = named(new QRadioButton(QStringLiteral("No")), noName,
                     frame->title().remove(u'&') + QStringLiteral(": No"));
    auto* row = new QHBoxLayout(frame);
    row->addWidget(yes);
    row->addWidget(no);
    row->addStretch();
    frame->setToolTip(help);
    return yes;
}

} // namespace

frmMain::frmMain(Services& services, ProgramState& state, Connection& connection, QWidget* parent)
    : QWidget(parent)
    , services_(services)
    , state_(state)
    , connection_(connection)
{
    setObjectName(QStringLiteral("frmMain"));
    setWindowTitle(QStringLiteral("Create PowerPoints"));
    buildControls();
    connectControls();
    Form_Load();
}

frmMain::~frmMain()
{
    if (review_) {
        review_->abandon();
    }
    unload();
}

void frmMain::buildControls()
{
    cboAssessment_ = named(new ComboBox, "cboAssessment", QStringLiteral("Assessment"));
    auto* fraAssessment = makeFrame("fraAssessment", QStringLiteral("&Assessments"));
    lblObstacle_ = new HintLabel("lblObstacle", cboAssessment_, HintLabel::Place::Given);
    auto* assessmentColumn = new QVBoxLayout(fraAssessment);
    assessmentColumn->addWidget(cboAssessment_);
    assessmentColumn->addWidget(lblObstacle_);

    lstTopics_ = named(new ListBox(ListBox::Mode::Multi), "lstTopics", QStringLiteral("Topics"));
    cmdSelectAllTopics_ = makeButton("cmdSelectAllTopics", QStringLiteral("&Select All"));
    cmdClearAllTopics_ = makeButton("cmdClearAllTopics", QStringLiteral("C&lear All"));
    cmdSelectAllSub_ = makeButton("cmdSelectAllSub", QStringLiteral("Select All Subt&opics"));
    cmdSelectAllSub_->setToolTip(
        QStringLiteral("Ticks every subtopic of every topic, not only those shown."));
    auto* fraTopics = makeFrame("fraTopics", QStringLiteral("&Topics"));
    auto* topicGrid = new QGridLayout(fraTopics);
    topicGrid->addWidget(lstTopics_, 0, 0, 1, 3);
    topicGrid->addWidget(cmdSelectAllTopics_, 1, 0);
    topicGrid->addWidget(cmdClearAllTopics_, 1, 1);
    topicGrid->addWidget(cmdSelectAllSub_, 1, 2);

    lstSubTopics_ =
        named(new ListBox(ListBox::Mode::Multi), "lstSubTopics", QStringLiteral("SubTopics"));
    cmdSelectAllSubTopics_ = makeButton("cmdSelectAllSubTopics", QStringLiteral("S&elect All"));
    cmdClearAllSubTopics_ = makeButton("cmdClearAllSubTopics", QStringLiteral("Clea&r All"));
    auto* fraSubtopics = makeFrame("fraSubtopics", QStringLiteral("S&ubTopics"));
    auto* subtopicGrid = new QGridLayout(fraSubtopics);
    subtopicGrid->addWidget(lstSubTopics_, 0, 0, 1, 2);
    subtopicGrid->addWidget(cmdSelectAllSubTopics_, 1, 0);
    subtopicGrid->addWidget(cmdClearAllSubTopics_, 1, 1);

    auto* fraSelect = makeFrame("fraSelect", QStringLiteral("Select &Questions"));
    optSelectYes_ =
        addOptions(fraSelect, "optSelectYes", "optSelectNo",
                   QStringLiteral("Yes: look at each drawn question and include or exclude it."));
    auto* fraIncludeTopic =
        makeFrame("fraIncludeTopic", QStringLiteral("Include Topic on Sli&des"));
    optTopicYes_ = addOptions(
        fraIncludeTopic, "optTopicYes", "optTopicNo",
        QStringLiteral("Yes: each slide carries the topic and subtopic of its question."));
    auto* fraAnswerKey = makeFrame("fraAnswerKey", QStringLiteral("Include Answer &Key"));
    optKeyYes_ =
        addOptions(fraAnswerKey, "optKeyYes", "optKeyNo",
                   QStringLiteral("Yes: the answers follow on slides of their own at the end."));

    auto* lblMessage = makeLabel("lblMessage", QStringLiteral("Questions Selected:"));
    lblQuestionCount_ = makeLabel("lblQuestionCount");
    QFont bold = lblQuestionCount_->font();
    bold.setBold(true);
    lblQuestionCount_->setFont(bold);
    auto* lblQuestionNum = makeLabel("lblQuestionNum", QStringLiteral("&Number of  Questions:"));
    txtQuestions_ = named(new LineEdit, "txtQuestions", QStringLiteral("Number of questions"));
    txtQuestions_->setInputMethodHints(Qt::ImhFormattedNumbersOnly);
    txtQuestions_->setAlignment(Qt::AlignRight);
    lblQuestionNum->setBuddy(txtQuestions_);
    cmdCreate_ = makeButton("cmdCreate", QStringLiteral("Create &PowerPoint"));
    cmdCreate_->setDefault(true);
    auto* fraOrder = makeFrame("fraOrder", QStringLiteral("PowerPoint Questions Needed"));
    auto* orderGrid = new QGridLayout(fraOrder);
    orderGrid->addWidget(lblMessage, 0, 0);
    orderGrid->addWidget(lblQuestionCount_, 0, 1, Qt::AlignRight);
    orderGrid->addWidget(lblQuestionNum, 1, 0);
    orderGrid->addWidget(txtQuestions_, 1, 1);
    orderGrid->addWidget(cmdCreate_, 2, 0, 1, 2);
    orderGrid->setColumnStretch(1, 1);
    // Below the rest, so that nothing else moves when it comes and goes.
    askedRow_ = new QWidget;
    lblAsked_ = makeLabel("lblAsked");
    lblAsked_->setWordWrap(true);
    cmdAskAgain_ = makeButton("cmdAskAgain", {});
    auto* askedColumn = new QVBoxLayout(askedRow_);
    askedColumn->setContentsMargins(0, 0, 0, 0);
    askedColumn->addWidget(lblAsked_);
    askedColumn->addWidget(cmdAskAgain_);
    orderGrid->addWidget(askedRow_, 3, 0, 1, 2);

    auto* grid = new QGridLayout(this);
    grid->addWidget(fraAssessment, 0, 0, 1, 3);
    grid->addWidget(fraTopics, 1, 0, 5, 1);
    grid->addWidget(fraSubtopics, 1, 1, 5, 1);
    grid->addWidget(fraSelect, 1, 2);
    grid->addWidget(fraIncludeTopic, 2, 2);
    grid->addWidget(fraAnswerKey, 3, 2);
    grid->addWidget(fraOrder, 4, 2);
    grid->setRowStretch(5, 1);
    grid->setColumnStretch(0, 3);
    grid->setColumnStretch(1, 3);
    grid->setColumnStretch(2, 1);

    // Layouts adopt their widgets late; the order in which work is done is set here once.
    const auto option = [this](const char* name) {
        return findChild<QRadioButton*>(QLatin1String(name));
    };
    QWidget* previous = cboAssessment_;
    for (QWidget* next : std::initializer_list<QWidget*>{
             lstTopics_, cmdSelectAllTopics_, cmdClearAllTopics_, cmdSelectAllSub_, lstSubTopics_,
             cmdSelectAllSubTopics_, cmdClearAllSubTopics_, optSelectYes_, option("optSelectNo"),
             optTopicYes_, option("optTopicNo"), optKeyYes_, option("optKeyNo"), txtQuestions_,
             cmdCreate_, cmdAskAgain_}) {
        setTabOrder(previous, next);
        previous = next;
    }
}

void frmMain::connectControls()
{
    connect(cboAssessment_, &ComboBox::Click, this, &frmMain::cboAssessment_Click);
    connect(lstTopics_, &ListBox::Click, this, &frmMain::lstTopics_Click);
    connect(lstSubTopics_, &ListBox::Click, this, &frmMain::lstSubTopics_Click);
    connect(cmdSelectAllTopics_, &QPushButton::clicked, this, &frmMain::cmdSelectAllTopics_Click);
    connect(cmdClearAllTopics_, &QPushButton::clicked, this, &frmMain::cmdClearAllTopics_Click);
    connect(cmdSelectAllSub_, &QPushButton::clicked, this, &frmMain::cmdSelectAllSub_Click);
    connect(cmdSelectAllSubTopics_, &QPushButton::clicked, this,
            [this] { selectShownSubTopics(true); });
    connect(cmdClearAllSubTopics_, &QPushButton::clicked, this,
            [this] { selectShownSubTopics(false); });
    connect(cmdCreate_, &QPushButton::clicked, this, &frmMain::cmdCreate_Click);
    connect(txtQuestions_, &QLineEdit::textEdited, this, [this](const QString& text) {
        constexpr double largest = 1e9;
        asked_ = std::llround(std::clamp(ParseNumber(text).value_or(0), 0.0, largest));
        showAsked();
    });
    connect(cmdAskAgain_, &QPushButton::clicked, this, [this] {
        txtQuestions_->setText(QString::number(asked_));
        txtQuestions_->setFocus();
        showAsked();
    });
}

void frmMain::Form_Load()
{
    if (!state_.RandomSeeded) {
        services_.random->seed(
            static_cast<std::uint64_t>(services_.clock->millisecondsSinceEpoch()));
        state_.RandomSeeded = true;
    }
    state_.TopicEventsEnabled = true;
    SubTopicEventsEnabled_ = true;
    setQuestionCount(QStringLiteral("0"));
    LoadAssessments(state_, connection_, *services_.messageBoxes);
    FillAssessmentCombo();
    optKeyYes_->setChecked(true);
    optTopicYes_->setChecked(true);
    optSelectYes_->setChecked(true);
}

void frmMain::FillAssessmentCombo()
{
    cboAssessment_->clear();
    int last = -1;
    for (const AssessmentRecord& record : state_.AssessmentList) {
        cboAssessment_->addEntry(record.AssessmentName, record.AssessmentNum);
        if (record.AssessmentNum == state_.LastAssessmentNum) {
            last = cboAssessment_->listCount() - 1;
        }
    }
    if (state_.AssessmentList.isEmpty()) {
        loadCatalogue();
        return;
    }
    cboAssessment_->setListIndex(state_.LastAssessmentNum < 1 || last < 0 ? 0 : last);
}

void frmMain::cboAssessment_Click()
{
    if (cboAssessment_->listIndex() >= 0) {
        state_.CurrentAssessmentNum = cboAssessment_->entryData(cboAssessment_->listIndex());
    }
    loadCatalogue();
}

void frmMain::loadCatalogue()
{
    lstTopics_->clear();
    lstSubTopics_->clear();
    bool loaded = true;
    try {
        if (state_.CurrentAssessmentNum > 0) {
            loaded = LoadCurrentAssessment(state_, connection_, *services_.messageBoxes);
        } else {
            state_.TopicList.clear();
            state_.SubTopicList.clear();
            state_.QuestionList.clear();
        }
    } catch (const Error&) {
        loaded = false;
        services_.messageBoxes->inform(QStringLiteral("Database Error"),
                                       QStringLiteral("There was an error loading the questions."));
    }
    FillTopicList();
    showObstacle(loaded);
}

void frmMain::showObstacle(bool loaded)
{
    if (state_.AssessmentList.isEmpty()) {
        lblObstacle_->say(
            tr("There is no assessment to choose. Add one with \"Manage Assessments\" "
               "in the menu above, or take one over with \"Import Assessment\"."));
    } else if (loaded && state_.QuestionList.isEmpty()) {
        lblObstacle_->say(tr("This assessment has no questions yet. Add some with \"Manage "
                             "Assessments\" in the menu above."));
    } else {
        lblObstacle_->say({});
    }
}

void frmMain::showAsked()
{
    const bool possible = asked_ <= state_.SelectedQuestionCount;
    const bool replaced = asked_ > 0 && txtQuestions_->text() != QString::number(asked_) &&
                          !txtQuestions_->isModified();
    lblAsked_->setText(possible ? tr("You asked for %1.").arg(asked_)
                                : tr("You asked for %1; fewer are selected now.").arg(asked_));
    cmdAskAgain_->setText(tr("Ask for %1 A&gain").arg(asked_));
    cmdAskAgain_->setVisible(possible);
    askedRow_->setVisible(replaced);
}

void frmMain::FillTopicList()
{
    std::vector<ListBox::Row> rows;
    rows.reserve(static_cast<std::size_t>(state_.TopicList.upperBound()));
    for (const TopicRecord& topic : state_.TopicList) {
        rows.push_back({topic.Topic, topic.TopicID, false});
    }
    lstTopics_->setRows(std::move(rows));
    cmdSelectAllTopics_Click();
    if (state_.TopicList.isEmpty()) {
        RefreshQuestionSelection();
    }
}

void frmMain::FillSubTopicList()
{
    std::vector<ListBox::Row> rows;
    const int focused = lstTopics_->listIndex();
    if (focused >= 0) {
        const std::int32_t topicId = lstTopics_->itemData(focused);
        for (const SubTopicRecord& record : state_.SubTopicList) {
            if (record.TopicID == topicId) {
                rows.push_back({record.SubTopic, record.SubtopicNum, record.Selected});
            }
        }
    }
    lstSubTopics_->setRows(std::move(rows));
}

void frmMain::lstTopics_Click()
{
    if (!state_.TopicEventsEnabled) {
        return;
    }
    const QScopedValueRollback quiet(SubTopicEventsEnabled_, false);
    FillSubTopicList();
    RefreshQuestionSelection();
}

void frmMain::lstSubTopics_Click()
{
    const int topic = lstTopics_->listIndex();
    const int subTopic = lstSubTopics_->listIndex();
    if (topic >= 0 && subTopic >= 0) {
        SetSubTopicSelected(state_.SubTopicList, lstTopics_->itemData(topic),
                            lstSubTopics_->itemData(subTopic), lstSubTopics_->selected(subTopic));
    }
    if (SubTopicEventsEnabled_) {
        RefreshQuestionSelection();
    }
}

void frmMain::cmdSelectAllTopics_Click()
{
    lstTopics_->setAllSelected(true, 0);
}

void frmMain::cmdClearAllTopics_Click()
{
    lstTopics_->setAllSelected(false);
}

void frmMain::selectShownSubTopics(bool selected)
{
    const int topic = lstTopics_->listIndex();
    if (topic < 0) {
        return;
    }
    for (const ListBox::Row& row : lstSubTopics_->rows()) {
        SetSubTopicSelected(state_.SubTopicList, lstTopics_->itemData(topic), row.itemData,
                            selected);
    }
    lstSubTopics_->setAllSelected(selected, selected ? 0 : -1);
}

void frmMain::cmdSelectAllSub_Click()
{
    for (SubTopicRecord& record : state_.SubTopicList) {
        record.Selected = true;
    }
    FillSubTopicList();
    if (lstTopics_->listCount() > 0) {
        lstTopics_->setListIndex(0);
    }
}

void frmMain::RefreshQuestionSelection()
{
    std::vector<TopicChoice> choices;
    choices.reserve(lstTopics_->rows().size());
    for (const ListBox::Row& row : lstTopics_->rows()) {
        choices.push_back({row.itemData, row.selected});
    }
    SelectQuestions(state_.QuestionList, SelectionRule(choices, state_.SubTopicList));
    UpdateSelectionCounts(state_, *this);
    txtQuestions_->setText(QString::number(state_.SelectedQuestionCount));
    showAsked();
}

void frmMain::setQuestionCount(const QString& caption)
{
    lblQuestionCount_->setText(caption);
}

void frmMain::setTopicRows(const QStringList& texts)
{
    lstTopics_->setItemTexts(texts);
}

void frmMain::cmdCreate_Click()
{
    if (!DrawQuestions(state_, txtQuestions_->text(), *services_.random, *services_.messageBoxes)) {
        if (state_.SelectedQuestionCount > 0) {
            txtQuestions_->setFocus();
            txtQuestions_->selectAll();
        }
        return;
    }
    const SlideOptions options{optTopicYes_->isChecked(), optKeyYes_->isChecked()};
    if (optSelectYes_->isChecked()) {
        openReview(options);
        return;
    }
    MarkFirst(state_.DrawPool, state_.RequestedQuestionCount);
    RunBuild(window(), services_, state_, options);
}

void frmMain::openReview(const SlideOptions& options)
{
    setEnabled(false);
    review_ = new frmSelect(services_, state_, options, window());
    connect(review_, &frmSelect::unloaded, this, [this] {
        setEnabled(true);
        txtQuestions_->setFocus();
    });
    review_->Form_Load();
}

void frmMain::focusInEvent(QFocusEvent* event)
{
    QWidget::focusInEvent(event);
    lstTopics_->setFocus();
}

void frmMain::keyPressEvent(QKeyEvent* event)
{
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        QWidget::keyPressEvent(event);
        return;
    }
    if (focusWidget() == cboAssessment_) {
        cboAssessment_->showPopup();
        return;
    }
    auto* button = qobject_cast<QPushButton*>(focusWidget());
    (button ? button : cmdCreate_)->click();
}

void frmMain::closeEvent(QCloseEvent* event)
{
    event->setAccepted(!review_ || review_->close());
    if (event->isAccepted()) {
        unload();
    }
}

void frmMain::unload()
{
    if (unloaded_) {
        return;
    }
    unloaded_ = true;
    try {
        SaveLastAssessment(state_, connection_);
    } catch (const DatabaseError&) {
        // A library that takes no changes still opens; it only forgets where we were.
    }
}

} // namespace varnholt
