// How the library manager looks; what it does stands in frmManage.cpp.
#include "manage/frmManage.h"

#include "manage/PictureStrip.h"
#include "store/services.h"
#include "toolkit/ComboBox.h"
#include "toolkit/HintLabel.h"
#include "toolkit/ListBox.h"
#include "toolkit/PictureView.h"
#include "toolkit/controls.h"

#include <QBoxLayout>
#include <QGridLayout>
#include <QSplitter>

namespace varnholt {

namespace {

/// A button that Enter presses while it has the focus. Those that delete are not made by
/// this: a stray Enter leaves them alone.
QPushButton* makeEnterButton(const char* objectName, const QString& caption)
{
    QPushButton* button = makeButton(objectName, caption);
    button->setAutoDefault(true);
    return button;
}

/// Opens a menu of what can be done beside what the buttons do.
QPushButton* makeMoreButton(const char* objectName, const QString& accessibleName)
{
    QPushButton* button = makeEnterButton(objectName, frmManage::tr("More"));
    button->setAccessibleName(accessibleName);
    return button;
}

} // namespace

void frmManage::buildControls()
{
    auto* lists = new QWidget;
    auto* listColumn = new QVBoxLayout(lists);
    listColumn->setContentsMargins(0, 0, 0, 0);
    listColumn->addWidget(buildTopics(), 1);
    listColumn->addWidget(buildSubtopics(), 1);

    auto* splitter = new QSplitter(Qt::Horizontal);
    splitter->setObjectName(QStringLiteral("splitter"));
    splitter->setChildrenCollapsible(false);
    splitter->addWidget(lists);
    splitter->addWidget(buildBrowser());
    splitter->setStretchFactor(0, 2);
    splitter->setStretchFactor(1, 3);

    auto* column = new QVBoxLayout(this);
    column->addWidget(buildAssessments());
    column->addWidget(splitter, 1);

    QWidget* previous = cboAssessment_;
    for (QWidget* next : std::initializer_list<QWidget*>{cmdAddAssessment_,  cmdDeleteAssessment_,
                                                         cmdAssessmentMore_, cmdAddNewQuestion_,
                                                         lstTopics_,         cmdNewTopic_,
                                                         cmdDeleteTopic_,    cmdTopicMore_,
                                                         lstSubtopics_,      cmdNewSubtopic_,
                                                         cmdDeleteSubtopic_, cmdSubtopicMore_,
                                                         cmdEditQuestion_,   cmdEditPicture_,
                                                         cmdDeleteQuestion_, lstPictures_,
                                                         cmdLeft_,           cmdRight_,
                                                         cmdUndo_,           cmdRedo_}) {
        setTabOrder(previous, next);
        previous = next;
    }
}

QWidget* frmManage::buildAssessments()
{
    cboAssessment_ = named(new ComboBox, "cboAssessment", tr("Assessment"));
    cboAssessment_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    cmdAddAssessment_ = makeEnterButton("cmdAddAssessment", tr("Create Ne&w Assessment"));
    lblAssessmentHint_ =
        new HintLabel("lblAssessmentHint", cmdAddAssessment_, HintLabel::Place::Given);
    cmdDeleteAssessment_ = makeButton("cmdDeleteAssessment", tr("&Delete Assessment"));
    cmdAddNewQuestion_ = makeEnterButton("cmdAddNewQuestion", tr("Add New &Question"));

    auto* fraAssessments = makeFrame("fraAssessments", tr("&Assessments"));
    auto* grid = new QGridLayout(fraAssessments);
    grid->addWidget(cboAssessment_, 0, 0);
    grid->addWidget(cmdAddAssessment_, 0, 1);
    grid->addWidget(cmdDeleteAssessment_, 0, 2);
    cmdAssessmentMore_ = makeMoreButton("cmdAssessmentMore", tr("More about the assessment"));
    grid->addWidget(cmdAssessmentMore_, 0, 3);
    grid->setColumnMinimumWidth(4, fontMetrics().averageCharWidth() * 2);
    grid->addWidget(cmdAddNewQuestion_, 0, 5);
    grid->addWidget(lblAssessmentHint_, 1, 0, 1, 6);
    grid->setColumnStretch(0, 1);
    return fraAssessments;
}

QWidget* frmManage::buildTopics()
{
    lstTopics_ = named(new ListBox(ListBox::Mode::Single), "lstTopics", tr("Topics"));
    lblTopicHint_ = new HintLabel("lblTopicHint", lstTopics_, HintLabel::Place::Given);
    cmdNewTopic_ = makeEnterButton("cmdNewTopic", tr("Create New To&pic"));
    cmdDeleteTopic_ = makeButton("cmdDeleteTopic", tr("De&lete Topic"));

    auto* fraTopics = makeFrame("fraTopics", tr("&Topics"));
    auto* grid = new QGridLayout(fraTopics);
    grid->addWidget(lstTopics_, 0, 0, 1, 3);
    grid->addWidget(lblTopicHint_, 1, 0, 1, 3);
    grid->addWidget(cmdNewTopic_, 2, 0);
    grid->addWidget(cmdDeleteTopic_, 2, 1);
    cmdTopicMore_ = makeMoreButton("cmdTopicMore", tr("More about topics"));
    grid->addWidget(cmdTopicMore_, 2, 2);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(1, 1);
    return fraTopics;
}

QWidget* frmManage::buildSubtopics()
{
    lstSubtopics_ = named(new ListBox(ListBox::Mode::Single), "lstSubtopics", tr("Subtopics"));
    lblSubtopicHint_ = new HintLabel("lblSubtopicHint", lstSubtopics_, HintLabel::Place::Given);
    lblQuestions_ = makeLabel("lblQuestions");
    cmdNewSubtopic_ = makeEnterButton("cmdNewSubtopic", tr("Create New S&ubtopic"));
    cmdDeleteSubtopic_ = makeButton("cmdDeleteSubtopic", tr("Delete Subt&opic"));

    auto* fraSubtopics = makeFrame("fraSubtopics", tr("&Subtopics"));
    auto* grid = new QGridLayout(fraSubtopics);
    grid->addWidget(lstSubtopics_, 0, 0, 1, 3);
    grid->addWidget(lblSubtopicHint_, 1, 0, 1, 3);
    grid->addWidget(lblQuestions_, 2, 0, 1, 3);
    grid->addWidget(cmdNewSubtopic_, 3, 0);
    grid->addWidget(cmdDeleteSubtopic_, 3, 1);
    cmdSubtopicMore_ = makeMoreButton("cmdSubtopicMore", tr("More about subtopics"));
    grid->addWidget(cmdSubtopicMore_, 3, 2);
    grid->setColumnStretch(0, 1);
    grid->setColumnStretch(1, 1);
    return fraSubtopics;
}

QWidget* frmManage::buildBrowser()
{
    lblNoQuestions_ = makeLabel("lblNoQuestions");
    lblNoQuestions_->setAlignment(Qt::AlignCenter);
    lblNoQuestions_->setWordWrap(true);
    lblNoQuestions_->setForegroundRole(QPalette::PlaceholderText);

    imgQuestion_ = named(new PictureView, "imgQuestion", tr("Picture of the question"));
    lblPictureHint_ = new HintLabel("lblPictureHint", imgQuestion_, HintLabel::Place::Given);
    lblAnswer_ = makeLabel("lblAnswer");
    lblAnswer_->setWordWrap(true);
    lstPictures_ = named(new PictureStrip(services_.programFolder), "lstPictures",
                         tr("Pictures of the questions"));
    lblQuestionCount_ = makeLabel("lblQuestionCount");
    lblQuestionCount_->setAlignment(Qt::AlignCenter);
    cmdLeft_ = makeEnterButton("cmdLeft", tr("P&revious Questions"));
    cmdRight_ = makeEnterButton("cmdRight", tr("&Next Question"));
    cmdEditQuestion_ = makeEnterButton("cmdEditQuestion", tr("&Edit Question"));
    cmdEditPicture_ = makeEnterButton("cmdEditPicture", tr("Edit Picture"));
    const QKeySequence pictureKeys(Qt::CTRL | Qt::Key_E);
    cmdEditPicture_->setShortcut(pictureKeys);
    cmdEditPicture_->setToolTip(pictureKeys.toString(QKeySequence::NativeText));
    cmdEditPicture_->hide();
    cmdDeleteQuestion_ = makeButton("cmdDeleteQuestion", tr("Delete Question"));
    const QKeySequence deleteKeys(Qt::CTRL | Qt::Key_Delete);
    cmdDeleteQuestion_->setShortcut(deleteKeys);
    cmdDeleteQuestion_->setToolTip(deleteKeys.toString(QKeySequence::NativeText));

    fraQuestions_ = makeFrame("fraQuestions", {});
    fraQuestions_->setAccessibleName(tr("Questions"));
    // What changes the question stands with its answer, away from what steps on.
    auto* changes = new QHBoxLayout;
    changes->addWidget(cmdEditQuestion_);
    changes->addWidget(cmdEditPicture_);
    changes->addStretch();
    changes->addWidget(cmdDeleteQuestion_);
    auto* steps = new QHBoxLayout;
    steps->addWidget(cmdLeft_);
    steps->addWidget(lblQuestionCount_, 1);
    steps->addWidget(cmdRight_);
    auto* browser = new QVBoxLayout(fraQuestions_);
    browser->addWidget(imgQuestion_, 1);
    browser->addWidget(lblPictureHint_);
    browser->addWidget(lblAnswer_);
    browser->addLayout(changes);
    browser->addWidget(lstPictures_);
    browser->addLayout(steps);

    auto* room = new QWidget;
    auto* column = new QVBoxLayout(room);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(lblNoQuestions_, 1);
    column->addWidget(fraQuestions_, 1);
    column->addWidget(buildUndoBar());
    return room;
}

void frmManage::connectControls()
{
    connect(cboAssessment_, &ComboBox::Click, this, &frmManage::cboAssessment_Click);
    connect(lstTopics_, &ListBox::Click, this, &frmManage::lstTopics_Click);
    connect(lstSubtopics_, &ListBox::Click, this, &frmManage::lstSubtopics_Click);
    connect(lstPictures_, &PictureStrip::chosen, this, &frmManage::lstPictures_Chosen);
    const auto pressed = [this](QPushButton* button, void (frmManage::*handler)()) {
        connect(button, &QPushButton::clicked, this, handler);
    };
    pressed(cmdAddAssessment_, &frmManage::cmdAddAssessment_Click);
    pressed(cmdDeleteAssessment_, &frmManage::cmdDeleteAssessment_Click);
    pressed(cmdAddNewQuestion_, &frmManage::cmdAddNewQuestion_Click);
    pressed(cmdNewTopic_, &frmManage::cmdNewTopic_Click);
    pressed(cmdDeleteTopic_, &frmManage::cmdDeleteTopic_Click);
    pressed(cmdNewSubtopic_, &frmManage::cmdNewSubtopic_Click);
    pressed(cmdDeleteSubtopic_, &frmManage::cmdDeleteSubtopic_Click);
    pressed(cmdLeft_, &frmManage::cmdLeft_Click);
    pressed(cmdRight_, &frmManage::cmdRight_Click);
    pressed(cmdEditQuestion_, &frmManage::cmdEditQuestion_Click);
    pressed(cmdEditPicture_, &frmManage::cmdEditPicture_Click);
    pressed(cmdDeleteQuestion_, &frmManage::cmdDeleteQuestion_Click);
}

} // namespace varnholt
