// What the window for many questions consists of.
#include "manage/answer_hint.h"
#include "many/frmAddMany.h"
#include "pdf/PdfReader.h"
#include "toolkit/ComboBox.h"
#include "toolkit/HintLabel.h"
#include "toolkit/LineEdit.h"
#include "toolkit/PictureView.h"
#include "toolkit/controls.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QListWidget>
#include <QShortcut>

namespace varnholt {

void frmAddMany::buildControls()
{
    const int letter = fontMetrics().averageCharWidth();
    lstPictures_ = named(new QListWidget, "lstPictures", tr("Pictures that wait to be saved"));
    lstPictures_->setIconSize(QSize(letter * 16, letter * 10));
    lstPictures_->setFixedWidth(letter * 23);
    lstPictures_->setUniformItemSizes(true);
    // Answers stand below their pictures.
    lstPictures_->setViewMode(QListView::IconMode);
    lstPictures_->setFlow(QListView::TopToBottom);
    lstPictures_->setWrapping(false);
    lstPictures_->setMovement(QListView::Static);
    lstPictures_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    cmdAddFiles_ = makeButton("cmdAddFiles", tr("Add &File…"));
    cmdFromPdf_ = makeButton("cmdFromPdf", tr("From P&DF…"));
    cmdFromPdf_->setToolTip(tr("Draws frames round the questions of an exam paper."));
    const bool readsPdf = !PdfReader::program().isEmpty();
    cmdFromPdf_->setVisible(readsPdf);
    cmdPaste_ = makeButton("cmdPaste", tr("&Paste"));
    cmdPaste_->setToolTip(tr("Ctrl+V"));
    chkCatch_ = named(new QCheckBox(tr("Catch Screens&hots")), "chkCatch");
    chkCatch_->setToolTip(tr("Takes in whatever is copied as a picture, and every new file in the "
                             "folder of screenshots, while this window is open."));
    chkTrim_ = named(new QCheckBox(tr("Trim &White Margins")), "chkTrim");
    chkTrim_->setToolTip(tr("Of the pictures that are taken in from now on."));
    chkTrim_->setChecked(true);

    chkFine_ = named(new QCheckBox(tr("Fi&ner Pictures")), "chkFine");
    chkFine_->setToolTip(
        tr("Compresses the pictures that are taken in from now on less: quality %1 "
           "instead of %2, in files about half as large again.")
            .arg(fineQuality)
            .arg(usualQuality));

    lblNone_ =
        makeLabel("lblNone", readsPdf ? tr("Drop pictures, folders or PDF files here, or paste "
                                           "pictures one after the other with Ctrl+V.")
                                      : tr("Drop pictures or folders here, or paste pictures one "
                                           "after the other with Ctrl+V."));
    lblNone_->setWordWrap(true);
    lblNone_->setAlignment(Qt::AlignCenter);
    lblNone_->setForegroundRole(QPalette::PlaceholderText);
    imgPicture_ = named(new PictureView, "imgPicture", tr("Picture of the question"));

    auto* strip = new QVBoxLayout;
    strip->addWidget(cmdAddFiles_);
    strip->addWidget(cmdFromPdf_);
    strip->addWidget(cmdPaste_);
    strip->addWidget(chkCatch_);
    strip->addWidget(chkTrim_);
    strip->addWidget(chkFine_);
    strip->addWidget(lstPictures_, 1);
    auto* work = new QVBoxLayout;
    work->addWidget(lblNone_, 1);
    work->addWidget(imgPicture_, 1);
    work->addLayout(buildFiling());
    work->addLayout(buildButtons());
    auto* columns = new QHBoxLayout(this);
    columns->addLayout(strip);
    columns->addLayout(work, 1);
    setAcceptDrops(true);
}

QLayout* frmAddMany::buildFiling()
{
    auto* grid = new QGridLayout;
    const auto add = [&](int column, const char* name, const QString& caption, QWidget* field) {
        QLabel* label = makeLabel(name, caption);
        label->setBuddy(field);
        grid->addWidget(label, 0, column);
        grid->addWidget(field, 1, column);
        grid->setColumnStretch(column, 1);
    };
    cboTopics_ = named(new ComboBox, "cboTopics", tr("Topic"));
    cboSubtopics_ = named(new ComboBox, "cboSubtopics", tr("Subtopic"));
    for (ComboBox* combo : {cboTopics_, cboSubtopics_}) {
        combo->setMinimumContentsLength(12);
    }
    txtAnswer_ = named(new LineEdit, "txtAnswer", tr("Answer"));
    txtAnswer_->installEventFilter(this);
    add(0, "lblTopic", tr("Top&ic:"), cboTopics_);
    add(1, "lblSubTopic", tr("Su&btopic:"), cboSubtopics_);
    add(2, "lblAnswer", tr("&Answer:"), txtAnswer_);
    lblAnswerHint_ = new HintLabel("lblAnswerHint", txtAnswer_, HintLabel::Place::Given);
    WatchAnswer(lblAnswerHint_, txtAnswer_);
    grid->addWidget(lblAnswerHint_, 2, 0, 1, 3);
    lblHint_ = new HintLabel("lblHint", lstPictures_, HintLabel::Place::Given);
    grid->addWidget(lblHint_, 3, 0, 1, 3);
    return grid;
}

QLayout* frmAddMany::buildButtons()
{
    const auto button = [](const char* name, const QString& caption, const QString& help) {
        QPushButton* made = makeButton(name, caption);
        made->setToolTip(help);
        made->setAutoDefault(true);
        return made;
    };
    cmdSaveNext_ = button("cmdSaveNext", tr("&Save and Next"), tr("Enter"));
    cmdSaveAll_ = button("cmdSaveAll", tr("Save A&ll Answered"), tr("Ctrl+Enter"));
    cmdEditPicture_ = button("cmdEditPicture", tr("&Edit Picture"), tr("Ctrl+E"));
    cmdTakeOut_ = button("cmdTakeOut", tr("&Take Out"), tr("Delete, in the list of pictures"));
    cmdPutBack_ = button("cmdPutBack", tr("Put Back"), tr("Ctrl+Z"));
    cmdPutBack_->hide();
    lblState_ = makeLabel("lblState");
    lblState_->setWordWrap(true);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(lblState_, 1);
    for (QPushButton* each :
         {cmdPutBack_, cmdTakeOut_, cmdEditPicture_, cmdSaveAll_, cmdSaveNext_}) {
        buttons->addWidget(each);
    }
    return buttons;
}

void frmAddMany::connectControls()
{
    const auto pressed = [this](QPushButton* button, void (frmAddMany::*handler)()) {
        connect(button, &QPushButton::clicked, this, handler);
    };
    pressed(cmdSaveNext_, &frmAddMany::cmdSaveNext_Click);
    pressed(cmdSaveAll_, &frmAddMany::cmdSaveAll_Click);
    pressed(cmdTakeOut_, &frmAddMany::cmdTakeOut_Click);
    pressed(cmdPutBack_, &frmAddMany::cmdPutBack_Click);
    pressed(cmdEditPicture_, &frmAddMany::cmdEditPicture_Click);
    pressed(cmdPaste_, &frmAddMany::cmdPaste_Click);
    pressed(cmdAddFiles_, &frmAddMany::cmdAddFiles_Click);
    pressed(cmdFromPdf_, &frmAddMany::cmdFromPdf_Click);
    const auto shortcut = [this](const QKeySequence& keys, void (frmAddMany::*handler)(),
                                 QWidget* within, Qt::ShortcutContext context) {
        auto* made = new QShortcut(keys, within);
        made->setContext(context);
        connect(made, &QShortcut::activated, this, handler);
    };
    const auto here = Qt::WidgetWithChildrenShortcut;
    shortcut(Qt::CTRL | Qt::Key_Return, &frmAddMany::cmdSaveAll_Click, this, here);
    shortcut(Qt::CTRL | Qt::Key_Enter, &frmAddMany::cmdSaveAll_Click, this, here);
    shortcut(Qt::CTRL | Qt::Key_E, &frmAddMany::cmdEditPicture_Click, this, here);
    shortcut(QKeySequence::Paste, &frmAddMany::cmdPaste_Click, this, here);
    shortcut(QKeySequence::Undo, &frmAddMany::cmdPutBack_Click, this, here);
    shortcut(Qt::Key_Delete, &frmAddMany::cmdTakeOut_Click, lstPictures_, Qt::WidgetShortcut);
    connect(txtAnswer_, &QLineEdit::returnPressed, this, &frmAddMany::cmdSaveNext_Click);
    connect(cboTopics_, &ComboBox::Click, this, &frmAddMany::cboTopics_Click);
    connect(chkCatch_, &QCheckBox::toggled, this, &frmAddMany::chkCatch_Click);
    connect(lstPictures_, &QListWidget::currentRowChanged, this, &frmAddMany::lstPictures_Click);
    connect(txtAnswer_, &QLineEdit::textEdited, this, &frmAddMany::txtAnswer_Change);
    connect(&thumbnails_, &ThumbnailLoader::came, this,
            [this](std::int32_t number, const QImage& picture) {
                for (int row = 0; row < lstPictures_->count(); ++row) {
                    QListWidgetItem* item = lstPictures_->item(row);
                    if (item->data(Qt::UserRole).toInt() == number) {
                        item->setIcon(QPixmap::fromImage(picture));
                    }
                }
            });
}

} // namespace varnholt
