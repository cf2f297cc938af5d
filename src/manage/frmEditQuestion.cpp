#include "manage/frmEditQuestion.h"

#include "library/Library.h"
#include "manage/answer_hint.h"
#include "manage/structure_maintenance.h"
#include "store/services.h"
#include "toolkit/ComboBox.h"
#include "toolkit/HintLabel.h"
#include "toolkit/LineEdit.h"
#include "toolkit/controls.h"

#include <QGridLayout>

#include <limits>

namespace varnholt {

frmEditQuestion::frmEditQuestion(Services& services, ProgramState& state, Library& library,
                                 const FilingPreselection& preselection, QWidget* parent)
    : QDialog(parent)
    , services_(services)
    , state_(state)
    , library_(library)
    , preselection_(preselection)
{
    setObjectName(QStringLiteral("frmEditQuestion"));
    setWindowTitle(QStringLiteral("Edit Question"));
    buildControls();
    Form_Load();
}

void frmEditQuestion::buildControls()
{
    auto* lblTopic = makeLabel("lblTopic", QStringLiteral("&Topic:"));
    cboTopics_ = named(new ComboBox, "cboTopics", QStringLiteral("Topic"));
    lblTopic->setBuddy(cboTopics_);
    auto* lblSubTopic = makeLabel("lblSubTopic", QStringLiteral("S&ubtopic:"));
    cboSubtopics_ = named(new ComboBox, "cboSubtopics", QStringLiteral("Subtopic"));
    lblSubTopic->setBuddy(cboSubtopics_);
    lblFilingHint_ = new HintLabel("lblFilingHint", cboSubtopics_, HintLabel::Place::Kept);
    auto* lblAnswer = makeLabel("lblAnswer", QStringLiteral("&Answer:"));
    txtAnswer_ = named(new LineEdit, "txtAnswer", QStringLiteral("Answer"));
    lblAnswer->setBuddy(txtAnswer_);
    // A longer answer from elsewhere must not lose its end by being filed again.
    txtAnswer_->setMaxLength(std::numeric_limits<int>::max());
    auto* lblAnswerHint = new HintLabel("lblAnswerHint", txtAnswer_, HintLabel::Place::Kept);
    auto* cmdSave = makeButton("cmdSave", QStringLiteral("&Save"));
    cmdSave->setDefault(true);
    auto* cmdCancel = makeButton("cmdCancel", QStringLiteral("&Cancel"));
    cmdCancel->setAutoDefault(true);

    auto* grid = new QGridLayout(this);
    grid->addWidget(lblTopic, 0, 0);
    grid->addWidget(cboTopics_, 0, 1);
    grid->addWidget(lblSubTopic, 1, 0);
    grid->addWidget(cboSubtopics_, 1, 1);
    grid->addWidget(lblFilingHint_, 2, 1);
    grid->addWidget(lblAnswer, 3, 0);
    grid->addWidget(txtAnswer_, 3, 1);
    grid->addWidget(lblAnswerHint, 4, 1);
    grid->setRowStretch(5, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdSave);
    buttons->addWidget(cmdCancel);
    grid->addLayout(buttons, 6, 0, 1, 2);
    grid->setColumnMinimumWidth(1, fontMetrics().averageCharWidth() * 66);
    grid->setColumnStretch(1, 1);

    QWidget* previous = cboTopics_;
    for (QWidget* next :
         std::initializer_list<QWidget*>{cboSubtopics_, txtAnswer_, cmdSave, cmdCancel}) {
        setTabOrder(previous, next);
        previous = next;
    }

    WatchAnswer(lblAnswerHint, txtAnswer_);
    connect(cboTopics_, &ComboBox::Click, this, &frmEditQuestion::cboTopics_Click);
    connect(cboSubtopics_, &ComboBox::Click, this, &frmEditQuestion::updateFilingHint);
    connect(cmdSave, &QPushButton::clicked, this, &frmEditQuestion::cmdSave_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmEditQuestion::reject);
}

void frmEditQuestion::Form_Load()
{
    SelectedTopicID_ = preselection_.topicId.value_or(0);
    FillTopicCombo();
    FillSubtopicCombo();
    txtAnswer_->setText(state_.BrowseQuestions(state_.QuestionPosition).Answer);
    txtAnswer_->selectAll();
    txtAnswer_->setFocus();
}

void frmEditQuestion::FillTopicCombo()
{
    cboTopics_->clear();
    int chosen = 0;
    for (const TopicRecord& topic : state_.TopicList) {
        if (topic.TopicID == preselection_.topicId) {
            chosen = cboTopics_->listCount();
        }
        cboTopics_->addEntry(topic.Topic, topic.TopicID);
    }
    if (cboTopics_->listCount() > 0) {
        cboTopics_->setListIndex(chosen);
    }
}

void frmEditQuestion::FillSubtopicCombo()
{
    cboSubtopics_->clear();
    int chosen = 0;
    for (const SubTopicRecord& subTopic : state_.SubTopicList) {
        if (subTopic.TopicID != SelectedTopicID_) {
            continue;
        }
        if (subTopic.SubtopicNum == preselection_.subtopicNum) {
            chosen = cboSubtopics_->listCount();
        }
        cboSubtopics_->addEntry(subTopic.SubTopic, subTopic.SubtopicNum);
    }
    if (cboSubtopics_->listCount() > 0) {
        cboSubtopics_->setListIndex(chosen);
    } else {
        updateFilingHint();
    }
}

void frmEditQuestion::cboTopics_Click()
{
    SelectedTopicID_ = cboTopics_->entryData(cboTopics_->listIndex());
    FillSubtopicCombo();
}

void frmEditQuestion::updateFilingHint()
{
    const QString refusal = QStringLiteral("cannot take a question");
    QString hint = LargeKeyHint(QStringLiteral("Question"),
                                state_.BrowseQuestions(state_.QuestionPosition).SOLIndex,
                                QStringLiteral("cannot be saved"));
    if (hint.isEmpty()) {
        hint = LargeKeyHint(QStringLiteral("Topic"), SelectedTopicID_, refusal);
    }
    if (hint.isEmpty() && cboSubtopics_->listIndex() < 0) {
        hint = QStringLiteral("This topic has no subtopics; choose another topic.");
    } else if (hint.isEmpty()) {
        hint = LargeKeyHint(QStringLiteral("Subtopic"),
                            cboSubtopics_->entryData(cboSubtopics_->listIndex()), refusal);
    }
    lblFilingHint_->say(hint);
}

void frmEditQuestion::cmdSave_Click()
{
    MessageBoxes& messages = *services_.messageBoxes;
    const QString saveError = QStringLiteral("Save Error");
    if (txtAnswer_->text().isEmpty()) {
        messages.inform(saveError,
                        QStringLiteral("Cannot save because Answer is a required field."));
        txtAnswer_->setFocus();
        return;
    }
    if (!messages.yesNo(
            QStringLiteral("Save?"),
            QStringLiteral("Are you sure you want to save these changes to this question?"),
            MessageBoxes::Answer::Yes)) {
        return;
    }
    try {
        library_.editQuestion(toInt16(state_.BrowseQuestions(state_.QuestionPosition).SOLIndex),
                              toInt16(cboTopics_->entryData(cboTopics_->listIndex())),
                              toInt16(cboSubtopics_->entryData(cboSubtopics_->listIndex())),
                              txtAnswer_->text().trimmed());
        messages.inform(QStringLiteral("Question Saved"),
                        QStringLiteral("The question was saved successfully."));
        accept();
    } catch (const std::exception&) {
        messages.inform(saveError,
                        QStringLiteral("There was an error saving the changes for this question."));
    }
}

} // namespace varnholt
