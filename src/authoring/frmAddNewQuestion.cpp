#include "authoring/frmAddNewQuestion.h"

#include "authoring/frmPictureText.h"
#include "authoring/hints.h"
#include "library/Library.h"
#include "store/services.h"
#include "toolkit/ComboBox.h"
#include "toolkit/HintLabel.h"
#include "toolkit/LongWork.h"
#include "toolkit/PictureBox.h"
#include "toolkit/clipboard_probe.h"

#include <QCoreApplication>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSettings>
#include <QShortcut>
#include <QSignalBlocker>

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

void frmAddNewQuestion::connectControls()
{
    connect(cboTopics_, &ComboBox::Click, this, &frmAddNewQuestion::cboTopics_Click);
    connect(cboSubtopics_, &ComboBox::Click, this, &frmAddNewQuestion::showObstacle);
    connect(cmdNewTopic_, &QPushButton::clicked, this, &frmAddNewQuestion::cmdNewTopic_Click);
    connect(cmdNewSubtopic_, &QPushButton::clicked, this, &frmAddNewQuestion::cmdNewSubtopic_Click);
    connect(txtAnswer_, &QLineEdit::textChanged, this, &frmAddNewQuestion::showObstacle);
    connect(cmdPaste_, &QPushButton::clicked, this, &frmAddNewQuestion::cmdPaste_Click);
    connect(HScroll_, &QScrollBar::valueChanged, this, &frmAddNewQuestion::HScroll_Change);
    connect(VScroll_, &QScrollBar::valueChanged, this, &frmAddNewQuestion::VScroll_Change);
    connect(cmdText_, &QPushButton::clicked, this, &frmAddNewQuestion::cmdText_Click);
    const auto shortcut = [this](QKeySequence::StandardKey keys, auto handler) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, handler);
    };
    shortcut(QKeySequence::Paste, &frmAddNewQuestion::cmdPaste_Click);
    shortcut(QKeySequence::Save, &frmAddNewQuestion::cmdSave_Click);
    connect(cmdSave_, &QPushButton::clicked, this, &frmAddNewQuestion::cmdSave_Click);
    connect(cmdCancel_, &QPushButton::clicked, this, &QDialog::reject);

    connect(picQuestion_, &PictureBox::MouseDown, this,
            [this](double X, double Y) { onCanvas({}, [&] { canvas_.MouseDown(X, Y); }); });
    connect(picQuestion_, &PictureBox::MouseMove, this, [this](double X, double Y) {
        if (canvas_.isDragging()) {
            onCanvas({}, [&] { canvas_.MouseMove(X, Y); });
        }
        showPointer(X, Y);
    });
    connect(picQuestion_, &PictureBox::MouseUp, this, [this](double X, double Y) {
        onCanvas({}, [&] { canvas_.MouseUp(); });
        showPointer(X, Y);
    });
    const auto moves = [this](QPushButton* button, SelectionMove mode) {
        connect(button, &QPushButton::clicked, this,
                [this, mode] { onCanvas({}, [&] { canvas_.MoveSelection(mode); }); });
    };
    moves(cmdUp_, SelectionMove::Up);
    moves(cmdRight_, SelectionMove::Right);
    moves(cmdDown_, SelectionMove::Down);
    moves(cmdMoveLeft_, SelectionMove::Left);
    moves(cmdErase_, SelectionMove::Erase);
    for (QPushButton* button : {cmdCrop_, cmdCenter_}) {
        connect(button, &QPushButton::clicked, this,
                [this] { onCanvas({}, [&] { canvas_.Crop(); }); });
    }
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
    showCanvas();
}

bool frmAddNewQuestion::clipboardAnswers()
{
    bool answers = false;
    {
        const LongWork busy(this, tr("Reading the clipboard..."), LongWork::Cancel::NotOffered);
        answers = services_.clipboard->answers();
    }
    if (!answers) {
        services_.messageBoxes->inform(tr("Paste Error"), ClipboardSilentSentence());
    }
    return answers;
}

void frmAddNewQuestion::cmdPaste_Click()
{
    if (!clipboardAnswers()) {
        return;
    }
    onCanvas(tr("Paste Error"), [this] {
        QImage picture;
        {
            const LongWork busy(this, tr("Reading the clipboard..."), LongWork::Cancel::NotOffered);
            picture = services_.clipboard->image();
        }
        try {
            if (canvas_.Paste(picture)) {
                picQuestion_->setFocus();
                return;
            }
        } catch (const OverflowError&) {
            throw Error(tr("The copied picture is too large to work on: %1 by %2 "
                           "pixels. Please copy a smaller part of it.")
                            .arg(picture.width())
                            .arg(picture.height()));
        }
        showCanvas();
        services_.messageBoxes->inform(
            tr("Paste Error"), tr("A question needs to be copied before it can be pasted."));
    });
}

void frmAddNewQuestion::cmdText_Click()
{
    frmPictureText dialog(canvas_.font, *services_.messageBoxes, this);
    dialog.exec();
    if (dialog.textToAdd()) {
        onCanvas({}, [&] { canvas_.StampText(*dialog.textToAdd()); });
    }
}

void frmAddNewQuestion::cmdSave_Click()
{
    onCanvas({}, [this] { canvas_.CancelDrag(); });
    if (txtAnswer_->text().isEmpty()) {
        services_.messageBoxes->inform(tr("Save Error"),
                                       tr("Cannot save because Answer is a required field."));
        txtAnswer_->setFocus();
        return;
    }
    if (!canvas_.picQuestion.hasPicture()) {
        services_.messageBoxes->inform(tr("Save Error"),
                                       tr("Cannot save because the picture of the question is "
                                          "missing.  Please paste a picture before saving."));
        return;
    }
    onCanvas({}, [this] { canvas_.DropSelection(); });
    if (!services_.messageBoxes->yesNo(tr("Save?"),
                                       tr("Are you sure you want to save this  question?"),
                                       MessageBoxes::Answer::Yes)) {
        return;
    }
    try {
        const LongWork busy(this, tr("Saving the question..."), LongWork::Cancel::NotOffered);
        question_ = {{state_.CurrentAssessmentNum, cboTopics_->entryData(cboTopics_->listIndex()),
                      cboSubtopics_->entryData(cboSubtopics_->listIndex())},
                     txtAnswer_->text().trimmed(),
                     question_.SOLIndex};
        SaveQuestion(library_, question_, canvas_);
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
        return;
    }
    services_.messageBoxes->inform(tr("Question Saved"),
                                   tr("The question was saved successfully."));
    questionSaved_ = true;
    accept();
}

void frmAddNewQuestion::HScroll_Change(int value)
{
    onCanvas({}, [&] { canvas_.setHScroll(value); });
}

void frmAddNewQuestion::VScroll_Change(int value)
{
    onCanvas({}, [&] { canvas_.setVScroll(value); });
}

void frmAddNewQuestion::onCanvas(const QString& title, const std::function<void()>& work)
{
    QString failure;
    try {
        work();
    } catch (const Error& error) {
        failure = error.message();
    } catch (const std::bad_alloc&) {
        failure = tr("There is not enough memory for this picture.");
    }
    showCanvas();
    if (!failure.isEmpty()) {
        services_.messageBoxes->inform(title.isEmpty() ? tr("Error") : title, failure);
    }
}

void frmAddNewQuestion::showCanvas()
{
    picQuestion_->refresh();
    picQuestion_->move(canvas_.left(), canvas_.top());
    const auto show = [](QScrollBar* bar, const PictureCanvas::ScrollBar& from) {
        const QSignalBlocker quiet(bar);
        bar->setRange(0, from.visible ? from.maximum : 0);
        bar->setValue(from.value);
        bar->setVisible(from.visible);
    };
    show(HScroll_, canvas_.HScroll());
    show(VScroll_, canvas_.VScroll());
    fraPictureControls_->setVisible(canvas_.controlsShown());
    if (!canvas_.isDragging()) {
        picQuestion_->setAccessibleDescription(CanvasDescription(canvas_));
        showObstacle();
    }
}

void frmAddNewQuestion::showPointer(double X, double Y)
{
    const Qt::CursorShape shape = canvas_.Moving || (!canvas_.Drawing && canvas_.grabs(X, Y))
                                      ? Qt::SizeAllCursor
                                      : Qt::CrossCursor;
    if (picQuestion_->cursor().shape() != shape) {
        picQuestion_->setCursor(shape);
    }
}

void frmAddNewQuestion::showObstacle()
{
    // What is framed is at hand now; the save comes later.
    for (const QString& hint : {FrameHint(canvas_), saveObstacle(), PageHint(canvas_)}) {
        if (!hint.isEmpty()) {
            lblSaveHint_->say(hint);
            return;
        }
    }
    lblSaveHint_->say({});
}

QString frmAddNewQuestion::saveObstacle() const
{
    return SaveObstacle({txtAnswer_->text(), canvas_.picQuestion.hasPicture(),
                         cboSubtopics_->listIndex() >= 0, library_.connection().isReadOnly()},
                        services_.programFolder);
}

bool frmAddNewQuestion::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::KeyPress: {
        auto* key = static_cast<QKeyEvent*>(event);
        if ((watched == txtAnswer_ && answerKeyPress(key)) ||
            (watched == picQuestion_ && canvasKeyPress(key))) {
            return true;
        }
        break;
    }
    case QEvent::FocusIn:
    case QEvent::FocusOut:
        if (watched == picQuestion_) {
            fraCanvas_->setForegroundRole(event->type() == QEvent::FocusIn ? QPalette::Highlight
                                                                           : QPalette::Mid);
        }
        break;
    case QEvent::Wheel:
        if (watched == picCropped_) {
            auto* wheel = static_cast<QWheelEvent*>(event);
            const QPoint delta = wheel->angleDelta();
            const bool sideways = std::abs(delta.x()) > std::abs(delta.y()) ||
                                  wheel->modifiers().testFlag(Qt::ShiftModifier);
            QScrollBar* bar = sideways ? HScroll_ : VScroll_;
            return bar->isVisible() && QCoreApplication::sendEvent(bar, event);
        }
        break;
    default:
        break;
    }
    return QDialog::eventFilter(watched, event);
}

bool frmAddNewQuestion::answerKeyPress(QKeyEvent* event)
{
    if (!event->matches(QKeySequence::Paste)) {
        return false;
    }
    // A text goes into the answer, anything else is for the canvas.
    if (!clipboardAnswers()) {
        return true;
    }
    const QString before = txtAnswer_->text();
    txtAnswer_->paste();
    if (txtAnswer_->text() == before && services_.clipboard->hasImage()) {
        cmdPaste_Click();
    }
    return true;
}

bool frmAddNewQuestion::canvasKeyPress(QKeyEvent* event)
{
    const int step = event->modifiers().testFlag(Qt::ShiftModifier) ? 10 : 1;
    const auto nudge = [this](int dx, int dy) {
        onCanvas({}, [&] { canvas_.Nudge(dx, dy); });
        return true;
    };
    if (event->matches(QKeySequence::SelectAll)) {
        onCanvas({}, [this] { canvas_.SelectAll(); });
        return true;
    }
    switch (event->key()) {
    case Qt::Key_Left:
        return nudge(-step, 0);
    case Qt::Key_Right:
        return nudge(step, 0);
    case Qt::Key_Up:
        return nudge(0, -step);
    case Qt::Key_Down:
        return nudge(0, step);
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        if (canvas_.SelectionShown && !canvas_.isDragging()) {
            onCanvas({}, [this] { canvas_.MoveSelection(SelectionMove::Erase); });
        }
        return true;
    default:
        return false;
    }
}

void frmAddNewQuestion::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape) {
        if (canvas_.isDragging()) {
            onCanvas({}, [this] { canvas_.CancelDrag(); });
        } else if (canvas_.SelectionShown) {
            onCanvas({}, [this] { canvas_.DropSelection(); });
        } else if (!canvas_.picQuestion.hasPicture() && txtAnswer_->text().isEmpty()) {
            // With work to lose, Cancel or the close box it takes.
            reject();
        }
    } else {
        QDialog::keyPressEvent(event);
    }
}

} // namespace varnholt
