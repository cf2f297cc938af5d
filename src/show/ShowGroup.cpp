#include "show/ShowGroup.h"

#include "toolkit/LineEdit.h"
#include "toolkit/controls.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QIntValidator>

namespace varnholt {

ShowGroup::ShowGroup(QWidget* parent)
    : QGroupBox(tr("Show in Class"), parent)
{
    setObjectName(QStringLiteral("fraShow"));
    txtShowSeconds_ = named(new LineEdit, "txtShowSeconds", tr("Seconds for each question"));
    txtShowSeconds_->setValidator(new QIntValidator(1, ShowWishes::mostSeconds, txtShowSeconds_));
    txtShowSeconds_->setInputMethodHints(Qt::ImhDigitsOnly);
    txtShowSeconds_->setPlaceholderText(tr("No clock"));
    txtShowSeconds_->setToolTip(tr("A clock counts them down. Leave it empty for no clock; the key "
                                   "T starts one in the show at any time."));
    auto* lblSeconds = makeLabel("lblShowSeconds", tr("&Seconds for each question:"));
    lblSeconds->setBuddy(txtShowSeconds_);
    cboShowAnswers_ = named(new QComboBox, "cboShowAnswers", tr("Show answers"));
    cboShowAnswers_->addItems({tr("When I ask"), tr("After each question"), tr("At the end")});
    cboShowAnswers_->setToolTip(tr("Whatever is chosen, the key A shows an answer in the show."));
    auto* lblAnswers = makeLabel("lblShowAnswers", tr("Sho&w answers:"));
    lblAnswers->setBuddy(cboShowAnswers_);
    chkShowMoveOn_ = named(new QCheckBox(tr("Move on when time is &up")), "chkShowMoveOn");
    chkShowMoveOn_->setToolTip(tr("What comes next comes by itself at the end of the time."));

    auto* grid = new QGridLayout(this);
    grid->addWidget(lblSeconds, 0, 0);
    grid->addWidget(txtShowSeconds_, 0, 1);
    grid->addWidget(lblAnswers, 1, 0);
    grid->addWidget(cboShowAnswers_, 1, 1);
    grid->addWidget(chkShowMoveOn_, 2, 0, 1, 2);
    grid->setColumnStretch(1, 1);
}

ShowWishes ShowGroup::wishes() const
{
    return {txtShowSeconds_->hasAcceptableInput() ? txtShowSeconds_->text().toInt() : 0,
            static_cast<ShowAnswers>(cboShowAnswers_->currentIndex()), chkShowMoveOn_->isChecked()};
}

void ShowGroup::setWishes(const ShowWishes& wishes)
{
    txtShowSeconds_->setText(wishes.seconds > 0 ? QString::number(wishes.seconds) : QString());
    cboShowAnswers_->setCurrentIndex(static_cast<int>(wishes.answers));
    chkShowMoveOn_->setChecked(wishes.moveOn);
}

} // namespace varnholt
