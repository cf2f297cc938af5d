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

frmEditQuestion::frmEditQuestion(Services& services, const ProgramState& catalogue,
                                 Library& library, QuestionRecord question,
                                 const FilingPreselection& preselection, QWidget* parent)
    : QDialog(parent)
    , services_(services)
    , catalogue_(catalogue)
    , library_(library)
    , question_(std::move(question))
    , preselection_(preselection)
{
    setObjectName(QStringLiteral("frmEditQuestion"));
    setWindowTitle(tr("Edit Question"));
    buildControls();
    Form_Load();
}

void frmEditQuestion::buildControls()
{
    auto* lblTopic = makeLabel("lblTopic", tr("&Topic:"));
    cboTopics_ = named(new ComboBox, "cboTopics", tr("Topic"));
    lblTopic->setBuddy(cboTopics_);
    auto* lblSubTopic = makeLabel("lblSubTopic", tr("S&ubtopic:"));
    cboSubtopics_ = named(new ComboBox, "cboSubtopics", tr("Subtopic"));
    lblSubTopic->setBuddy(cboSubtopics_);
    lblFilingHint_ = new HintLabel("lblFilingHint", cboSubtopics_, HintLabel::Place::Kept);
    auto* lblAnswer = makeLabel("lblAnswer", tr("&Answer:"));
    txtAnswer_ = named(new LineEdit, "txtAnswer", tr("Answer"));
    lblAnswer->setBuddy(txtAnswer_);
    // A longer answer from elsewhere must not lose its end by being filed again.
    txtAnswer_->setMaxLength(std::numeric_limits<int>::max());
    auto* lblAnswerHint = new HintLabel("lblAnswerHint", txtAnswer_, HintLabel::Place::Kept);
    auto* cmdSave = makeButton("cmdSave", tr("&Save"));
    cmdSave->setDefault(true);
    auto* cmdCancel = makeButton("cmdCancel", tr("&Cancel"));
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
    grid->setColumnMinimumWidth(1, fontMetrics().averageCharWidth() * 40);
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
    txtAnswer_->setText(question_.Answer);
    txtAnswer_->selectAll();
    txtAnswer_->setFocus();
}

void frmEditQuestion::FillTopicCombo()
{
    cboTopics_->clear();
    int chosen = 0;
    for (const TopicRecord& topic : catalogue_.TopicList) {
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
    for (const SubTopicRecord& subTopic : catalogue_.SubTopicList) {
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
    QString hint =
        LargeKeyHint(tr("Question number %1 is above %2 and cannot be saved."), question_.SOLIndex);
    if (hint.isEmpty()) {
        hint = LargeKeyHint(tr("Topic number %1 is above %2 and cannot take a question."),
                            SelectedTopicID_);
    }
    if (hint.isEmpty() && cboSubtopics_->listIndex() < 0) {
        hint = tr("This topic has no subtopics; choose another topic.");
    } else if (hint.isEmpty()) {
        hint = LargeKeyHint(tr("Subtopic number %1 is above %2 and cannot take a question."),
                            cboSubtopics_->entryData(cboSubtopics_->listIndex()));
    }
    lblFilingHint_->say(hint);
}

void frmEditQuestion::cmdSave_Click()
{
    MessageBoxes& messages = *services_.messageBoxes;
    const QString saveError = tr("Save Error");
    if (txtAnswer_->text().isEmpty()) {
        messages.inform(saveError, tr("Cannot save because Answer is a required field."));
        txtAnswer_->setFocus();
        return;
    }
    if (!messages.yesNo(tr("Save?"),
                        tr("Are you sure you want to save these changes to this question?"),
                        MessageBoxes::Answer::Yes)) {
        return;
    }
    try {
        library_.editQuestion(toInt16(question_.SOLIndex),
                              toInt16(cboTopics_->entryData(cboTopics_->listIndex())),
                              toInt16(cboSubtopics_->entryData(cboSubtopics_->listIndex())),
                              txtAnswer_->text().trimmed());
        messages.inform(tr("Question Saved"), tr("The question was saved successfully."));
        accept();
    } catch (const std::exception&) {
        messages.inform(saveError, tr("There was an error saving the changes for this question."));
    }
}

} // namespace varnholt
