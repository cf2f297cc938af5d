#include "selection/MoreFrame.h"

#include "toolkit/ComboBox.h"
#include "toolkit/controls.h"

#include <QGridLayout>
#include <QLineEdit>
#include <QSignalBlocker>

namespace varnholt {

MoreFrame::MoreFrame(QWidget* parent)
    : QGroupBox(tr("More"), parent)
{
    setObjectName(QStringLiteral("fraMore"));
    constexpr int shortName = 8;
    cboClass_ = named(new ComboBox, "cboClass", tr("Class"));
    cboClass_->setEditable(true);
    cboClass_->setInsertPolicy(QComboBox::NoInsert);
    cboClass_->setMinimumContentsLength(shortName);
    cboClass_->lineEdit()->setPlaceholderText(tr("No class"));
    cboClass_->lineEdit()->setMaxLength(100);
    cboClass_->lineEdit()->setAccessibleName(tr("Class"));
    cboClass_->setToolTip(tr("The class that the test is for. A new name is remembered with its "
                             "first test; leave it empty for no class."));
    auto* lblClass = makeLabel("lblClass", tr("Class:"));
    lblClass->setBuddy(cboClass_);

    cboDraw_ = named(new ComboBox, "cboDraw", tr("Draw"));
    constexpr int longName = 13;
    cboDraw_->setMinimumContentsLength(longName);
    for (const auto& [text, rule] :
         {std::pair(tr("Any questions"), DrawRule::Any),
          std::pair(tr("Fresh questions first"), DrawRule::Fresh),
          std::pair(tr("Fresh first, repeat what went badly"), DrawRule::FreshAndDue)}) {
        cboDraw_->addEntry(text, static_cast<std::int32_t>(rule));
    }
    cboDraw_->showEntry(0);
    auto* lblDraw = makeLabel("lblDraw", tr("Dra&w:"));
    lblDraw->setBuddy(cboDraw_);
    lblFresh_ = makeLabel("lblFresh");
    lblFresh_->setWordWrap(true);
    lblFresh_->hide();
    cmdSlides_ = makeButton("cmdSlides", tr("Slides…"));
    cmdSlides_->setToolTip(tr("Larger pictures, answers after each question, and what else the "
                              "slides can have."));
    lblSlides_ = makeLabel("lblSlides");
    lblSlides_->setWordWrap(true);
    lblSlides_->hide();

    auto* grid = new QGridLayout(this);
    // Close together: with both sentences the column must fit a screen of 768 lines.
    const QMargins usual = grid->contentsMargins();
    grid->setContentsMargins(usual.left(), 4, usual.right(), 4);
    grid->setVerticalSpacing(4);
    grid->addWidget(lblClass, 0, 0);
    grid->addWidget(cboClass_, 0, 1);
    grid->addWidget(lblDraw, 1, 0);
    grid->addWidget(cboDraw_, 1, 1);
    grid->addWidget(lblFresh_, 2, 0, 1, 2);
    grid->addWidget(cmdSlides_, 3, 0);
    grid->addWidget(lblSlides_, 3, 1);
    grid->setColumnStretch(1, 1);
    connect(cboClass_, &QComboBox::editTextChanged, this, [this] {
        classId_ = typedClass();
        Q_EMIT wishesChanged();
    });
    connect(cboDraw_, &ComboBox::Click, this, &MoreFrame::wishesChanged);
    connect(cmdSlides_, &QPushButton::clicked, this, &MoreFrame::slidesClicked);
}

DrawWishes MoreFrame::wishes() const
{
    return {cboClass_->currentText().trimmed(),
            static_cast<DrawRule>(cboDraw_->entryData(cboDraw_->listIndex())), classId_};
}

void MoreFrame::setWishes(const DrawWishes& wishes)
{
    const QSignalBlocker quiet(cboClass_);
    cboClass_->setEditText(wishes.className);
    classId_ = wishes.classId;
    cboDraw_->showEntry(cboDraw_->findData(static_cast<std::int32_t>(wishes.rule)));
}

void MoreFrame::setClasses(const std::vector<ClassRecord>& classes)
{
    const QSignalBlocker quiet(cboClass_);
    QString shown = cboClass_->currentText();
    cboClass_->clear();
    for (const ClassRecord& record : classes) {
        cboClass_->addEntry(record.ClassName, record.ClassID);
        shown = record.ClassID == classId_ ? record.ClassName : shown;
    }
    cboClass_->setCurrentIndex(-1);
    cboClass_->setEditText(shown);
    classId_ = typedClass();
}

std::int32_t MoreFrame::typedClass() const
{
    const int row = cboClass_->findText(cboClass_->currentText().trimmed(), Qt::MatchFixedString);
    return row < 0 ? 0 : cboClass_->entryData(row);
}

void MoreFrame::say(const QString& text)
{
    lblFresh_->setText(text);
    lblFresh_->setVisible(!text.isEmpty());
    cboDraw_->setAccessibleDescription(text);
}

void MoreFrame::saySlides(const QString& text)
{
    lblSlides_->setText(text);
    lblSlides_->setVisible(!text.isEmpty());
    cmdSlides_->setAccessibleDescription(text);
}

std::vector<QWidget*> MoreFrame::controls() const
{
    return {cboClass_, cboDraw_, cmdSlides_};
}

} // namespace varnholt
