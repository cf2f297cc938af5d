#include "manage/frmNewInfo.h"

#include "library/Library.h"
#include "store/services.h"
#include "toolkit/HintLabel.h"
#include "toolkit/LineEdit.h"
#include "toolkit/controls.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QLineEdit>

namespace varnholt {

frmNewInfo::frmNewInfo(Services& services, Library& library, std::int32_t assessmentNum, Mode mode,
                       std::optional<NamedTopic> chosenTopic, QWidget* parent)
    : QDialog(parent)
    , services_(services)
    , library_(library)
    , assessmentNum_(assessmentNum)
    , mode_(mode)
    , chosenTopic_(std::move(chosenTopic))
{
    setObjectName(QStringLiteral("frmNewInfo"));
    setWindowTitle(tr("New Topic and Subtopic"));
    buildControls();
}

void frmNewInfo::buildControls()
{
    auto* lblNewTopic = makeLabel("lblNewTopic", tr("New &Topic:"));
    txtNewTopic_ = named(new LineEdit, "txtNewTopic", tr("New topic"));
    lblNewTopic->setBuddy(txtNewTopic_);
    auto* lblTopicHint = new HintLabel("lblTopicHint", txtNewTopic_, HintLabel::Place::Kept);

    auto* lblNewSubtopic = makeLabel("lblNewSubtopic", tr("New S&ubtopic:"));
    txtNewSubtopic_ = named(new LineEdit, "txtNewSubtopic", tr("New subtopic"));
    lblNewSubtopic->setBuddy(txtNewSubtopic_);
    auto* lblSubtopicHint =
        new HintLabel("lblSubtopicHint", txtNewSubtopic_, HintLabel::Place::Kept);

    auto* cmdSave = makeButton("cmdSave", tr("&Save"));
    auto* cmdCancel = makeButton("cmdCancel", tr("&Cancel"));

    auto* grid = new QGridLayout(this);
    grid->addWidget(lblNewTopic, 0, 0);
    grid->addWidget(txtNewTopic_, 0, 1);
    grid->addWidget(lblTopicHint, 1, 1);
    grid->addWidget(lblNewSubtopic, 2, 0);
    grid->addWidget(txtNewSubtopic_, 2, 1);
    grid->addWidget(lblSubtopicHint, 3, 1);
    grid->setRowStretch(4, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdSave);
    buttons->addWidget(cmdCancel);
    grid->addLayout(buttons, 5, 0, 1, 2);
    grid->setColumnMinimumWidth(1, fontMetrics().averageCharWidth() * 60);
    grid->setColumnStretch(1, 1);

    setTabOrder(txtNewTopic_, txtNewSubtopic_);
    setTabOrder(txtNewSubtopic_, cmdSave);
    setTabOrder(cmdSave, cmdCancel);

    if (mode_ == Mode::SubtopicOnly) {
        txtNewTopic_->setText(chosenTopic_ ? chosenTopic_->Topic : QString());
        txtNewTopic_->setEnabled(false);
        txtNewSubtopic_->setFocus();
    } else {
        lblTopicHint->watchForApostrophes(txtNewTopic_);
        txtNewTopic_->setFocus();
    }
    lblSubtopicHint->watchForApostrophes(txtNewSubtopic_);
    connect(txtNewSubtopic_, &QLineEdit::returnPressed, this, &frmNewInfo::cmdSave_Click);
    connect(cmdSave, &QPushButton::clicked, this, &frmNewInfo::cmdSave_Click);
    connect(cmdCancel, &QPushButton::clicked, this, &frmNewInfo::reject);
}

void frmNewInfo::cmdSave_Click()
{
    const QString topic = txtNewTopic_->text().trimmed();
    const QString subtopic = txtNewSubtopic_->text().trimmed();
    if (topic.isEmpty() || subtopic.isEmpty()) {
        services_.messageBoxes->inform(tr("Save Error"),
                                       tr("You need to enter a topic and subtopic before saving."));
        (topic.isEmpty() && txtNewTopic_->isEnabled() ? txtNewTopic_ : txtNewSubtopic_)->setFocus();
        return;
    }
    try {
        // A topic stays when its subtopic fails.
        const std::int32_t topicId = mode_ == Mode::SubtopicOnly
                                         ? chosenTopic_.value().TopicID
                                         : library_.addTopic(assessmentNum_, topic);
        const std::int32_t subtopicNum = library_.addSubtopic(assessmentNum_, topicId, subtopic);
        saved_ = NewInfo{topicId, subtopicNum};
        services_.messageBoxes->inform(tr("New Info Added"), tr("Saved successfully."));
        accept();
    } catch (const std::exception&) {
        services_.messageBoxes->inform(tr("Error"), tr("There was an error adding this topic."));
    }
}

void frmNewInfo::keyPressEvent(QKeyEvent* event)
{
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        QDialog::keyPressEvent(event);
    } else if (auto* button = qobject_cast<QPushButton*>(focusWidget())) {
        button->click();
    }
}

} // namespace varnholt
