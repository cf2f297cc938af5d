#include "selection/frmSlides.h"

#include "show/ShowGroup.h"
#include "toolkit/controls.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QSpinBox>
#include <QVBoxLayout>

namespace varnholt {

namespace {

constexpr int usualSeconds = 60;

QCheckBox* makeCheckBox(const char* objectName, const QString& caption, const QString& help)
{
    auto* box = named(new QCheckBox(caption), objectName);
    box->setToolTip(help);
    return box;
}

} // namespace

frmSlides::frmSlides(const SlideWishes& wishes, const ShowWishes& show, QWidget* parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("frmSlides"));
    setWindowTitle(tr("Slide Options"));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto* rows = new QVBoxLayout(this);
    rows->addWidget(buildSlides());
    fraShow_ = new ShowGroup;
    fraShow_->setWishes(show);
    rows->addWidget(fraShow_);
    rows->addStretch();
    rows->addWidget(buttons);
    rows->setSizeConstraint(QLayout::SetFixedSize);
    setWishes(wishes);
    chkFit_->setFocus();
}

QGroupBox* frmSlides::buildSlides()
{
    chkFit_ = makeCheckBox("chkFit", tr("&Fit pictures to the slide"),
                           tr("Each picture is as large as the slide has room under the text, at "
                              "most twice its own size."));
    cboAnswers_ = named(new QComboBox, "cboAnswers", tr("Answers on slides"));
    cboAnswers_->addItem(tr("Only in the key"));
    cboAnswers_->addItem(tr("After each question"));
    cboAnswers_->setToolTip(tr("After each question: a second slide, the same with the answer at "
                               "its foot."));
    auto* lblAnswers = makeLabel("lblAnswers", tr("&Answers on slides:"));
    lblAnswers->setBuddy(cboAnswers_);
    chkTitles_ = makeCheckBox(
        "chkTitles", tr("&Titles and descriptions for screen readers"),
        tr("Each slide has a real title, and each picture is described by its topic and "
           "subtopic."));
    chkNotes_ = makeCheckBox("chkNotes", tr("Answers in the &notes"),
                             tr("You see the answer on your own screen, the class does not."));
    chkMoveOn_ = makeCheckBox(
        "chkMoveOn", tr("&Move on after"),
        tr("Each question, and each answer, gives way to the next slide after this time."));
    txtSeconds_ = named(new QSpinBox, "txtSeconds", tr("Seconds until the next slide"));
    txtSeconds_->setRange(1, SlideWishes::longestMoveOn);
    txtSeconds_->setToolTip(chkMoveOn_->toolTip());
    auto* lblSeconds = makeLabel("lblSeconds", tr("seconds"));
    chkKeyColumns_ = makeCheckBox("chkKeyColumns", tr("&Key in columns"),
                                  tr("The answer key takes the whole width of its slides."));
    connect(chkMoveOn_, &QCheckBox::toggled, txtSeconds_, &QWidget::setEnabled);
    connect(chkMoveOn_, &QCheckBox::toggled, lblSeconds, &QWidget::setEnabled);
    txtSeconds_->setEnabled(false);
    lblSeconds->setEnabled(false);

    auto* fraSlides = makeFrame("fraSlides", tr("Slides"));
    auto* column = new QVBoxLayout(fraSlides);
    auto* answers = new QHBoxLayout;
    answers->addWidget(lblAnswers);
    answers->addWidget(cboAnswers_, 1);
    auto* moveOn = new QHBoxLayout;
    moveOn->addWidget(chkMoveOn_);
    moveOn->addWidget(txtSeconds_);
    moveOn->addWidget(lblSeconds);
    moveOn->addStretch();
    column->addWidget(chkFit_);
    column->addLayout(answers);
    column->addWidget(chkTitles_);
    column->addWidget(chkNotes_);
    column->addLayout(moveOn);
    column->addWidget(chkKeyColumns_);
    return fraSlides;
}

void frmSlides::setWishes(const SlideWishes& wishes)
{
    chkFit_->setChecked(wishes.fitPictures);
    cboAnswers_->setCurrentIndex(wishes.answersAfterEach ? 1 : 0);
    chkTitles_->setChecked(wishes.titles);
    chkNotes_->setChecked(wishes.answersInNotes);
    chkMoveOn_->setChecked(wishes.moveOnSeconds > 0);
    txtSeconds_->setValue(wishes.moveOnSeconds > 0 ? wishes.moveOnSeconds : usualSeconds);
    chkKeyColumns_->setChecked(wishes.keyColumns);
}

SlideWishes frmSlides::wishes() const
{
    return {chkFit_->isChecked(),
            cboAnswers_->currentIndex() == 1,
            chkTitles_->isChecked(),
            chkNotes_->isChecked(),
            chkMoveOn_->isChecked() ? txtSeconds_->value() : 0,
            chkKeyColumns_->isChecked()};
}

ShowWishes frmSlides::showWishes() const
{
    return fraShow_->wishes();
}

} // namespace varnholt
