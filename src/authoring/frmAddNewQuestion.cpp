#include "authoring/frmAddNewQuestion.h"

#include "authoring/CanvasPanel.h"
#include "authoring/hints.h"
#include "library/Library.h"
#include "store/services.h"
#include "toolkit/ComboBox.h"
#include "toolkit/HintLabel.h"
#include "toolkit/LongWork.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSettings>
#include <QShortcut>

namespace varnholt {

namespace {

const QString geometryKey = QStringLiteral("frmAddNewQuestion/geometry");

} // namespace

frmAddNewQuestion::frmAddNewQuestion(Services& services, ProgramState& state, Library& library,
                                     const FilingPreselection& preselection, QWidget* parent,
                                     OpenNewInfo openNewInfo)
    : QDialog(parent)
    , services_(services)
    , state_(state)
    , library_(library)
    , preselection_(preselection)
    , openNewInfo_(std::move(openNewInfo))
{
    if (!openNewInfo_) {
        openNewInfo_ = [this](QWidget* owner, frmNewInfo::Mode mode,
                              std::optional<NamedTopic> chosen) {
            frmNewInfo dialog(services_, library_, state_.CurrentAssessmentNum, mode,
                              std::move(chosen), owner);
            dialog.exec();
            return dialog.saved();
        };
    }
    setObjectName(QStringLiteral("frmAddNewQuestion"));
    setWindowTitle(tr("Add New Question"));
    buildControls();
    connectControls();
    Form_Load();
    restoreGeometry(QSettings().value(geometryKey).toByteArray());
}

frmAddNewQuestion::~frmAddNewQuestion()
{
    QSettings().setValue(geometryKey, saveGeometry());
}

const PictureCanvas& frmAddNewQuestion::canvas() const
{
    return panel_->canvas();
}

void frmAddNewQuestion::connectControls()
{
    connect(cboTopics_, &ComboBox::Click, this, &frmAddNewQuestion::cboTopics_Click);
    connect(cboSubtopics_, &ComboBox::Click, this, &frmAddNewQuestion::showObstacle);
    connect(cmdNewTopic_, &QPushButton::clicked, this, &frmAddNewQuestion::cmdNewTopic_Click);
    connect(cmdNewSubtopic_, &QPushButton::clicked, this, &frmAddNewQuestion::cmdNewSubtopic_Click);
    connect(txtAnswer_, &QLineEdit::textChanged, this, &frmAddNewQuestion::showObstacle);
    connect(panel_, &CanvasPanel::changed, this, &frmAddNewQuestion::showObstacle);
    connect(cmdFitHint_, &QPushButton::clicked, panel_, &CanvasPanel::fitToPage);
    connect(new QShortcut(QKeySequence::Paste, this), &QShortcut::activated, panel_,
            &CanvasPanel::cmdPaste_Click);
    const auto shortcut = [this](const QKeySequence& keys, auto handler) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, handler);
    };
    shortcut(QKeySequence::Save, &frmAddNewQuestion::cmdSave_Click);
    shortcut(Qt::CTRL | Qt::Key_Return, &frmAddNewQuestion::cmdSaveAnother_Click);
    shortcut(Qt::CTRL | Qt::Key_Enter, &frmAddNewQuestion::cmdSaveAnother_Click);
    connect(cmdSave_, &QPushButton::clicked, this, &frmAddNewQuestion::cmdSave_Click);
    connect(cmdSaveAnother_, &QPushButton::clicked, this, &frmAddNewQuestion::cmdSaveAnother_Click);
    connect(cmdCancel_, &QPushButton::clicked, this, &QDialog::reject);
}

void frmAddNewQuestion::Form_Load()
{
    FillTopicCombo();
    if (preselection_.topicId) {
        SelectTopicById(*preselection_.topicId);
    } else {
        cboTopics_->setListIndex(0);
    }
    txtAnswer_->clear();
    showObstacle();
}

bool frmAddNewQuestion::readyToSave()
{
    panel_->onCanvas({}, [](PictureCanvas& canvas) { canvas.CancelDrag(); });
    if (txtAnswer_->text().isEmpty()) {
        services_.messageBoxes->inform(tr("Save Error"),
                                       tr("Cannot save because Answer is a required field."));
        txtAnswer_->setFocus();
        return false;
    }
    if (!canvas().state().hasPicture) {
        services_.messageBoxes->inform(tr("Save Error"),
                                       tr("Cannot save because the picture of the question is "
                                          "missing.  Please paste a picture before saving."));
        return false;
    }
    panel_->onCanvas({}, [](PictureCanvas& canvas) { canvas.DropSelection(); });
    return true;
}

bool frmAddNewQuestion::save()
{
    try {
        const LongWork busy(this, tr("Saving the question..."), LongWork::Cancel::NotOffered);
        question_ = {{state_.CurrentAssessmentNum, cboTopics_->entryData(cboTopics_->listIndex()),
                      cboSubtopics_->entryData(cboSubtopics_->listIndex())},
                     txtAnswer_->text().trimmed(),
                     question_.SOLIndex};
        SaveQuestion(library_, question_, canvas().renderPage());
    } catch (const std::exception& failure) {
        // No box: the window stays, with the reason where it says what stands in the way.
        const auto* known = dynamic_cast<const Error*>(&failure);
        const QString obstacle = saveObstacle();
        QStringList sentences;
        if (question_.SOLIndex == 0) {
            sentences.append(tr("The question was not saved."));
        }
        if (known) {
            sentences.append(known->message());
        }
        lblSaveHint_->say(!obstacle.isEmpty() ? obstacle : sentences.join(u' '));
        return false;
    }
    lastFiling_ = question_.filing;
    questionSaved_ = true;
    return true;
}

void frmAddNewQuestion::cmdSave_Click()
{
    if (!readyToSave() ||
        !services_.messageBoxes->yesNo(tr("Save?"),
                                       tr("Are you sure you want to save this  question?"),
                                       MessageBoxes::Answer::Yes) ||
        !save()) {
        return;
    }
    services_.messageBoxes->inform(tr("Question Saved"),
                                   tr("The question was saved successfully."));
    accept();
}

void frmAddNewQuestion::cmdSaveAnother_Click()
{
    if (!readyToSave() || !save()) {
        return;
    }
    question_ = {};
    txtAnswer_->clear();
    panel_->begin();
    panel_->cmdPaste()->setFocus();
    lblSaved_->setText(tr("%n saved", nullptr, ++savedCount_));
    lblSaved_->show();
}

void frmAddNewQuestion::showObstacle()
{
    cmdFitHint_->setVisible(canvas().selectionExceedsPage() || canvas().imageExceedsPage());
    // What is framed is at hand now; the save comes later.
    QStringList hints{FrameHint(canvas())};
    if (hints.front().isEmpty()) {
        hints = {PageHint(canvas()), saveObstacle()};
        hints.removeAll({});
    }
    lblSaveHint_->say(hints.join(u'\n'));
}

QString frmAddNewQuestion::saveObstacle() const
{
    return SaveObstacle({txtAnswer_->text(), canvas().state().hasPicture,
                         cboSubtopics_->listIndex() >= 0, library_.connection().isReadOnly()},
                        services_.programFolder);
}

bool frmAddNewQuestion::eventFilter(QObject* watched, QEvent* event)
{
    return (event->type() == QEvent::KeyPress && watched == txtAnswer_ &&
            answerKeyPress(static_cast<QKeyEvent*>(event))) ||
           QDialog::eventFilter(watched, event);
}

bool frmAddNewQuestion::answerKeyPress(QKeyEvent* event)
{
    if (!event->matches(QKeySequence::Paste)) {
        return false;
    }
    // A text goes into the answer, anything else is for the canvas.
    if (!panel_->clipboardAnswers()) {
        return true;
    }
    const QString before = txtAnswer_->text();
    txtAnswer_->paste();
    if (txtAnswer_->text() == before && services_.clipboard->hasImage()) {
        panel_->cmdPaste_Click();
    }
    return true;
}

void frmAddNewQuestion::keyPressEvent(QKeyEvent* event)
{
    if (event->key() != Qt::Key_Escape) {
        QDialog::keyPressEvent(event);
    } else if (!panel_->takeBack() && !canvas().state().hasPicture &&
               txtAnswer_->text().isEmpty()) {
        // With work to lose, Cancel or the close box it takes.
        reject();
    }
}

} // namespace varnholt
