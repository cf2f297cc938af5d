#include "authoring/frmAddNewQuestion.h"

#include "manage/answer_hint.h"
#include "toolkit/ComboBox.h"
#include "toolkit/HintLabel.h"
#include "toolkit/LineEdit.h"
#include "toolkit/PictureBox.h"
#include "toolkit/controls.h"

#include <QGridLayout>
#include <QGuiApplication>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

namespace varnholt {

namespace {

QScrollBar* makeScrollBar(const char* name, Qt::Orientation orientation, int page,
                          const QString& accessibleName)
{
    auto* bar = named(new QScrollBar(orientation), name, accessibleName);
    bar->setPageStep(page);
    bar->setSingleStep(page / 20);
    // The place stays free, so that nothing jumps when a bar comes or goes.
    QSizePolicy policy = bar->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    bar->setSizePolicy(policy);
    return bar;
}

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
    columns->addWidget(buildCanvas(), 0, Qt::AlignTop | Qt::AlignLeft);
    columns->addLayout(buildFiling(), 1);

    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->addWidget(new FittingScrollArea(content));

    // Enter presses the button that has the focus, and "Save" from anywhere else.
    const QList<QPushButton*> buttons = findChildren<QPushButton*>();
    for (QPushButton* button : buttons) {
        button->setAutoDefault(true);
    }
    cmdSave_->setDefault(true);
    cmdPaste_->setFocus();
    // Left alone, a dialog opens at two thirds of the screen at most.
    resize(sizeHint().boundedTo(screen()->availableSize()));
}

QWidget* frmAddNewQuestion::buildCanvas()
{
    cmdPaste_ = makeButton("cmdPaste", tr("&Paste Screenshot"));
    cmdPaste_->setToolTip(tr("Ctrl+V"));
    auto* lblPrintScreen =
        makeLabel("lblPrintScreen", tr("Type PrintScreen on keyboard for screen capture"));

    picCropped_ = named(new QWidget, "picCropped");
    picCropped_->setFixedSize(canvas_.picCropped.outerWidth(), canvas_.picCropped.outerHeight());
    picCropped_->installEventFilter(this);
    picQuestion_ = named(new PictureBox(canvas_.picQuestion, picCropped_), "picQuestion",
                         tr("Picture of the question"));
    picQuestion_->setFocusPolicy(Qt::StrongFocus);
    picQuestion_->setCursor(Qt::CrossCursor);
    picQuestion_->installEventFilter(this);

    fraCanvas_ = named(new QFrame, "fraCanvas");
    fraCanvas_->setFrameStyle(QFrame::Box | QFrame::Plain);
    fraCanvas_->setLineWidth(2);
    fraCanvas_->setForegroundRole(QPalette::Mid);
    auto* frameLayout = new QVBoxLayout(fraCanvas_);
    frameLayout->setContentsMargins(0, 0, 0, 0);
    frameLayout->addWidget(picCropped_);

    HScroll_ = makeScrollBar("HScroll", Qt::Horizontal, picCropped_->width(),
                             tr("Scroll the picture sideways"));
    VScroll_ = makeScrollBar("VScroll", Qt::Vertical, picCropped_->height(),
                             tr("Scroll the picture up and down"));
    auto* lblHelp =
        makeLabel("lblHelp", tr("Click and hold to draw frames around what you want to edit"));

    auto* top = new QHBoxLayout;
    top->addWidget(cmdPaste_);
    top->addSpacing(fontMetrics().averageCharWidth());
    top->addWidget(lblPrintScreen);
    top->addStretch();
    auto* area = new QWidget;
    auto* grid = new QGridLayout(area);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(0);
    grid->addLayout(top, 0, 0);
    grid->setRowMinimumHeight(1, fontMetrics().height() / 3);
    grid->addWidget(fraCanvas_, 2, 0);
    grid->addWidget(VScroll_, 2, 1);
    grid->addWidget(HScroll_, 3, 0);
    grid->setRowMinimumHeight(4, fontMetrics().height() / 4);
    grid->addWidget(lblHelp, 5, 0);
    grid->addWidget(buildPictureControls(), 6, 0);
    return area;
}

QWidget* frmAddNewQuestion::buildPictureControls()
{
    fraPictureControls_ = makeFrame("fraPictureControls", tr("Picture Controls"));
    QSizePolicy policy = fraPictureControls_->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    fraPictureControls_->setSizePolicy(policy);
    const auto make = [](const char* name, const QString& caption, const QString& help) {
        QPushButton* button = makeButton(name, caption);
        button->setToolTip(help);
        // A click leaves the keys with the canvas; Tab still gets here.
        button->setFocusPolicy(Qt::TabFocus);
        return button;
    };
    cmdCrop_ = make("cmdCrop", tr("C&rop"), tr("Keeps only what is inside the frame."));
    cmdCenter_ =
        make("cmdCenter", tr("Cen&ter"), tr("Keeps only what is inside the frame, in the middle."));
    cmdUp_ = make("cmdUp", tr("Move &Up"),
                  tr("100 pixels; the arrow keys move by one, with Shift by 10."));
    cmdDown_ = make("cmdDown", tr("Move &Down"), cmdUp_->toolTip());
    cmdMoveLeft_ = make("cmdMoveLeft", tr("Move &Left"), cmdUp_->toolTip());
    cmdRight_ = make("cmdRight", tr("Move Ri&ght"), cmdUp_->toolTip());
    cmdErase_ = make("cmdErase", tr("&Erase"), tr("Delete"));
    cmdText_ = make("cmdText", tr("Enter Te&xt"),
                    tr("Writes a line of text at the frame's upper left corner."));
    auto* grid = new QGridLayout(fraPictureControls_);
    grid->addWidget(cmdCrop_, 0, 0);
    grid->addWidget(cmdCenter_, 1, 0);
    grid->addWidget(cmdUp_, 0, 1);
    grid->addWidget(cmdDown_, 1, 1);
    grid->addWidget(cmdMoveLeft_, 0, 2);
    grid->addWidget(cmdRight_, 1, 2);
    grid->addWidget(cmdErase_, 0, 3);
    grid->addWidget(cmdText_, 1, 3);
    return fraPictureControls_;
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

    cmdSave_ = makeButton("cmdSave", tr("&Save"));
    cmdSave_->setToolTip(tr("Ctrl+S"));
    cmdCancel_ = makeButton("cmdCancel", tr("&Cancel"));
    lblSaveHint_ = new HintLabel("lblSaveHint", cmdSave_, HintLabel::Place::Given);

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
    column->addWidget(lblSaveHint_);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdSave_);
    buttons->addWidget(cmdCancel_);
    column->addLayout(buttons);
    return column;
}

} // namespace varnholt
