// The selection window's controls: what they are, where they stand and what they call.
#include "selection/frmMain.h"

#include "selection/MoreFrame.h"
#include "selection/QuotaColumn.h"
#include "selection/RecentTests.h"
#include "selection/question_draw.h"
#include "toolkit/ComboBox.h"
#include "toolkit/HintLabel.h"
#include "toolkit/LineEdit.h"
#include "toolkit/ListBox.h"
#include "toolkit/controls.h"

#include <QGridLayout>
#include <QShortcut>

#include <algorithm>
#include <cmath>

namespace varnholt {

namespace {

/// The two buttons of an option frame, "Yes" first.
QRadioButton* addOptions(QGroupBox* frame, const char* yesName, const char* noName,
                         const QString& help)
{
    const QString question = frame->title().remove(u'&');
    auto* yes =
        named(new QRadioButton(frmMain::tr("Yes")), yesName, frmMain::tr("%1: Yes").arg(question));
    auto* no =
        named(new QRadioButton(frmMain::tr("No")), noName, frmMain::tr("%1: No").arg(question));
    auto* row = new QHBoxLayout(frame);
    row->addWidget(yes);
    row->addWidget(no);
    row->addStretch();
    frame->setToolTip(help);
    return yes;
}

} // namespace

void frmMain::buildControls()
{
    cboAssessment_ = named(new ComboBox, "cboAssessment", tr("Assessment"));
    auto* fraAssessment = makeFrame("fraAssessment", tr("&Assessments"));
    lblObstacle_ = new HintLabel("lblObstacle", cboAssessment_, HintLabel::Place::Given);
    auto* assessmentColumn = new QVBoxLayout(fraAssessment);
    assessmentColumn->addWidget(cboAssessment_);
    assessmentColumn->addWidget(lblObstacle_);

    lstTopics_ = named(new ListBox(ListBox::Mode::Multi), "lstTopics", tr("Topics"));
    cmdSelectAllTopics_ = makeButton("cmdSelectAllTopics", tr("&Select All"));
    cmdClearAllTopics_ = makeButton("cmdClearAllTopics", tr("C&lear All"));
    cmdSelectAllSub_ = makeButton("cmdSelectAllSub", tr("Select All Subt&opics"));
    cmdSelectAllSub_->setToolTip(tr("Ticks every subtopic of every topic, not only those shown."));
    auto* fraTopics = makeFrame("fraTopics", tr("&Topics"));
    auto* topicGrid = new QGridLayout(fraTopics);
    quotaColumn_ = new QuotaColumn(lstTopics_);
    cmdEvenShare_ = makeButton("cmdEvenShare", tr("Even S&hare"));
    cmdEvenShare_->setToolTip(
        tr("Gives each ticked topic an equal part of the number of questions, and takes it back."));
    auto* topicRow = new QHBoxLayout;
    topicRow->setSpacing(2);
    topicRow->addWidget(lstTopics_, 1);
    topicRow->addWidget(quotaColumn_);
    topicGrid->addLayout(topicRow, 0, 0, 1, 4);
    topicGrid->addWidget(cmdSelectAllTopics_, 1, 0);
    topicGrid->addWidget(cmdClearAllTopics_, 1, 1);
    topicGrid->addWidget(cmdSelectAllSub_, 1, 2);
    topicGrid->addWidget(cmdEvenShare_, 1, 3);

    lstSubTopics_ = named(new ListBox(ListBox::Mode::Multi), "lstSubTopics", tr("SubTopics"));
    cmdSelectAllSubTopics_ = makeButton("cmdSelectAllSubTopics", tr("S&elect All"));
    cmdClearAllSubTopics_ = makeButton("cmdClearAllSubTopics", tr("Clea&r All"));
    auto* fraSubtopics = makeFrame("fraSubtopics", tr("S&ubTopics"));
    auto* subtopicGrid = new QGridLayout(fraSubtopics);
    subtopicGrid->addWidget(lstSubTopics_, 0, 0, 1, 2);
    subtopicGrid->addWidget(cmdSelectAllSubTopics_, 1, 0);
    subtopicGrid->addWidget(cmdClearAllSubTopics_, 1, 1);

    auto* fraSelect = makeFrame("fraSelect", tr("Select &Questions"));
    optSelectYes_ = addOptions(fraSelect, "optSelectYes", "optSelectNo",
                               tr("Yes: look at each drawn question and include or exclude it."));
    auto* fraIncludeTopic = makeFrame("fraIncludeTopic", tr("Include Topic on Sli&des"));
    optTopicYes_ =
        addOptions(fraIncludeTopic, "optTopicYes", "optTopicNo",
                   tr("Yes: each slide carries the topic and subtopic of its question."));
    auto* fraAnswerKey = makeFrame("fraAnswerKey", tr("Include Answer &Key"));
    optKeyYes_ = addOptions(fraAnswerKey, "optKeyYes", "optKeyNo",
                            tr("Yes: the answers follow on slides of their own at the end."));

    auto* lblMessage = makeLabel("lblMessage", tr("Questions Selected:"));
    lblQuestionCount_ = makeLabel("lblQuestionCount");
    QFont bold = lblQuestionCount_->font();
    bold.setBold(true);
    lblQuestionCount_->setFont(bold);
    auto* lblQuestionNum = makeLabel("lblQuestionNum", tr("&Number of  Questions:"));
    txtQuestions_ = named(new LineEdit, "txtQuestions", tr("Number of questions"));
    txtQuestions_->setInputMethodHints(Qt::ImhFormattedNumbersOnly);
    txtQuestions_->setAlignment(Qt::AlignRight);
    lblQuestionNum->setBuddy(txtQuestions_);
    cmdCreate_ = makeButton("cmdCreate", tr("Create &PowerPoint"));
    cmdCreate_->setDefault(true);
    auto* fraOrder = makeFrame("fraOrder", tr("PowerPoint Questions Needed"));
    auto* orderGrid = new QGridLayout(fraOrder);
    orderGrid->addWidget(lblMessage, 0, 0);
    orderGrid->addWidget(lblQuestionCount_, 0, 1, Qt::AlignRight);
    orderGrid->addWidget(lblQuestionNum, 1, 0);
    orderGrid->addWidget(txtQuestions_, 1, 1);
    lblQuotas_ = makeLabel("lblQuotas");
    lblQuotas_->setWordWrap(true);
    lblQuotas_->hide();
    orderGrid->addWidget(lblQuotas_, 2, 0, 1, 2);
    orderGrid->addWidget(cmdCreate_, 3, 0, 1, 2);
    cmdShow_ = makeButton("cmdShow", tr("Show in Class"));
    cmdShow_->setToolTip(tr("Shows the drawn questions to the class, one after another (F5)."));
    orderGrid->addWidget(cmdShow_, 4, 0, 1, 2);
    cmdPaper_ = makeButton("cmdPaper", tr("Print or Save as PD&F…"));
#ifdef VARNHOLT_PAPER
    orderGrid->addWidget(cmdPaper_, 5, 0, 1, 2);
#else
    cmdPaper_->setParent(this);
    cmdPaper_->hide();
#endif
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
    orderGrid->addWidget(askedRow_, 6, 0, 1, 2);
    fraMore_ = new MoreFrame;
    fraRecent_ = new RecentTests;

    auto* grid = new QGridLayout(this);
    grid->addWidget(fraAssessment, 0, 0, 1, 3);
    // Columns of their own: the last tests take room from the list above them, not from the window.
    auto* subtopicColumn = new QVBoxLayout;
    subtopicColumn->addWidget(fraSubtopics, 1);
    subtopicColumn->addWidget(fraRecent_);
    auto* orderColumn = new QVBoxLayout;
    orderColumn->setSpacing(3);
    for (QWidget* group : {static_cast<QWidget*>(fraSelect), static_cast<QWidget*>(fraIncludeTopic),
                           static_cast<QWidget*>(fraAnswerKey), static_cast<QWidget*>(fraOrder),
                           static_cast<QWidget*>(fraMore_)}) {
        orderColumn->addWidget(group);
    }
    orderColumn->addStretch(1);
    grid->addWidget(fraTopics, 1, 0);
    grid->addLayout(subtopicColumn, 1, 1);
    grid->addLayout(orderColumn, 1, 2);
    grid->setRowStretch(1, 1);
    grid->setColumnStretch(0, 3);
    grid->setColumnStretch(1, 3);
    grid->setColumnStretch(2, 1);

    // Layouts adopt their widgets late; the order in which work is done is set here once.
    const auto option = [this](const char* name) {
        return findChild<QRadioButton*>(QLatin1String(name));
    };
    std::vector<QWidget*> order{lstTopics_,
                                quotaColumn_,
                                cmdSelectAllTopics_,
                                cmdClearAllTopics_,
                                cmdSelectAllSub_,
                                cmdEvenShare_,
                                lstSubTopics_,
                                cmdSelectAllSubTopics_,
                                cmdClearAllSubTopics_,
                                optSelectYes_,
                                option("optSelectNo"),
                                optTopicYes_,
                                option("optTopicNo"),
                                optKeyYes_,
                                option("optKeyNo"),
                                txtQuestions_,
                                cmdCreate_,
                                cmdShow_,
                                cmdPaper_,
                                cmdAskAgain_};
    for (const auto& group : {fraMore_->controls(), fraRecent_->controls()}) {
        order.insert(order.end(), group.begin(), group.end());
    }
    QWidget* previous = cboAssessment_;
    for (QWidget* next : order) {
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
    connect(cmdShow_, &QPushButton::clicked, this, &frmMain::cmdShow_Click);
    connect(new QShortcut(Qt::Key_F5, this), &QShortcut::activated, cmdShow_, &QPushButton::click);
    connect(cmdPaper_, &QPushButton::clicked, this, &frmMain::cmdPaper_Click);
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

} // namespace varnholt
