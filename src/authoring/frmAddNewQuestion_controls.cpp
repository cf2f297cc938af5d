#include "authoring/frmAddNewQuestion.h"

#include "authoring/CanvasPanel.h"
#include "manage/answer_hint.h"
#include "toolkit/ComboBox.h"
#include "toolkit/HintLabel.h"
#include "toolkit/LineEdit.h"
#include "toolkit/controls.h"

#include <QBoxLayout>
#include <QScreen>
#include <QScrollArea>

namespace varnholt {

namespace {

/// A window that a small screen cannot hold scrolls as a whole.
class FittingScrollArea : public QScrollArea
{
public:
    explicit FittingScrollArea(QWidget* content)
    {
        setWidget(content);
        setWidgetResizable(true);
        setFrameShape(NoFrame);
        // It follows the focus of what is in it and is no stop of its own.
        setFocusPolicy(Qt::NoFocus);
    }

    [[nodiscard]] QSize sizeHint() const override { return widget()->sizeHint(); }
};

} // namespace

void frmAddNewQuestion::buildControls()
{
    auto* content = new QWidget;
    auto* columns = new QHBoxLayout(content);
    panel_ = new CanvasPanel(services_);
    columns->addWidget(panel_, 1);
    auto* filing = new QWidget;
    filing->setLayout(buildFiling());
    filing->layout()->setContentsMargins(0, 0, 0, 0);
    filing->setMaximumWidth(fontMetrics().averageCharWidth() * 32);
    columns->addWidget(filing);

    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(new FittingScrollArea(content));

    // Enter presses the button that has the focus, and "Save" from anywhere else.
    const QList<QPushButton*> buttons = findChildren<QPushButton*>();
    for (QPushButton* button : buttons) {
        button->setAutoDefault(true);
    }
    cmdSave_->setDefault(true);
    panel_->cmdPaste()->setFocus();
    // Left alone, a dialog opens at two thirds of the screen at most.
    resizeWithinScreen(this, sizeHint() + panel_->roomForPage());
}

QLayout* frmAddNewQuestion::buildFiling()
{
    auto* lblTopic = makeLabel("lblTopic", tr("Top&ic:"));
    cboTopics_ = named(new ComboBox, "cboTopics", tr("Topic"));
    lblTopic->setBuddy(cboTopics_);
    auto* lblSubTopic = makeLabel("lblSubTopic", tr("Su&btopic:"));
    cboSubtopics_ = named(new ComboBox, "cboSubtopics", tr("Subtopic"));
    lblSubTopic->setBuddy(cboSubtopics_);
    for (ComboBox* combo : {cboTopics_, cboSubtopics_}) {
        // Beside the page a screen of 1024 pixels leaves no more.
        combo->setMinimumContentsLength(12);
    }
    cmdNewTopic_ = makeButton("cmdNewTopic", tr("&New Topic and Subtopic"));
    cmdNewSubtopic_ = makeButton("cmdNewSubtopic", tr("Ne&w Subtopic"));
    auto* lblAnswer = makeLabel("lblAnswer", tr("&Answer:"));
    txtAnswer_ = named(new LineEdit, "txtAnswer", tr("Answer"));
    txtAnswer_->installEventFilter(this);
    lblAnswer->setBuddy(txtAnswer_);
    lblAnswerHint_ = new HintLabel("lblAnswerHint", txtAnswer_, HintLabel::Place::Kept);
    lblAnswerHint_->setText(ApostropheHint(QStringLiteral("'")));
    WatchAnswer(lblAnswerHint_, txtAnswer_);

    auto* column = new QVBoxLayout;
    column->addWidget(lblTopic);
    column->addWidget(cboTopics_);
    column->addWidget(lblSubTopic);
    column->addWidget(cboSubtopics_);
    column->addWidget(cmdNewTopic_);
    column->addWidget(cmdNewSubtopic_);
    column->addSpacing(fontMetrics().height() / 2);
    column->addWidget(lblAnswer);
    column->addWidget(txtAnswer_);
    column->addWidget(lblAnswerHint_);
    column->addStretch(1);
    column->addLayout(buildSaving());
    return column;
}

QLayout* frmAddNewQuestion::buildSaving()
{
    cmdSave_ = makeButton("cmdSave", tr("&Save"));
    cmdSave_->setToolTip(tr("Ctrl+S"));
    cmdSaveAnother_ = makeButton("cmdSaveAnother", tr("Save and Add Anot&her"));
    cmdSaveAnother_->setToolTip(tr("Ctrl+Enter"));
    cmdCancel_ = makeButton("cmdCancel", tr("&Cancel"));
    lblSaveHint_ = new HintLabel("lblSaveHint", cmdSave_, HintLabel::Place::Given);
    cmdFitHint_ = makeButton("cmdFitHint", tr("Fit to Page"));
    lblSaved_ = makeLabel("lblSaved");
    lblSaved_->hide();

    auto* column = new QVBoxLayout;
    column->addWidget(lblSaveHint_);
    column->addWidget(cmdFitHint_);
    column->addWidget(lblSaved_);
    column->addWidget(cmdSaveAnother_);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdSave_);
    buttons->addWidget(cmdCancel_);
    column->addLayout(buttons);
    return column;
}

} // namespace varnholt
