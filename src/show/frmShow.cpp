#include "show/frmShow.h"

#include "desktop/KeepAwake.h"
#include "show/FittedLabel.h"
#include "show/ShowDesktop.h"
#include "show/ShowMemory.h"
#include "show/ShowView.h"
#include "show/show_keys.h"
#include "store/services.h"
#include "toolkit/latin_key.h"

#include <QCloseEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QSettings>

#include <algorithm>
#include <utility>

namespace varnholt {

namespace {

const QString screenKey = QStringLiteral("frmShow/pupilsScreen");
constexpr int tickMs = 100;
constexpr int pointerMs = 2000;

} // namespace

frmShow::frmShow(Services& services, ShowTest test, const ShowWishes& wishes, ShowMemory& memory,
                 ShowDesktop& desktop, QWidget* parent)
    : QWidget(parent, Qt::Window)
    , services_(services)
    , memory_(memory)
    , desktop_(desktop)
    , show_(std::move(test), wishes, *services.clock)
    , pupilsScreen_(QSettings().value(screenKey).toString())
{
    setObjectName(QStringLiteral("frmShow"));
    setWindowTitle(tr("Show in Class"));
    setWindowModality(Qt::ApplicationModal);
    buildControls();
    connectControls();
}

frmShow::~frmShow() = default;

void frmShow::exec()
{
    const KeepAwake awake(tr("A test is being shown in class."));
    // Before it is seen for the first time.
    pupils_->setView(show_.pupilsView(), {});
    placeWindows();
    ticks_.start(tickMs);
    loop_.exec();
    ticks_.stop();
    later_.stop();
    memory_.follow(show_, false);
    pupils_->hide();
    hide();
}

void frmShow::placeWindows()
{
    const std::vector<ShowScreen> screens = desktop_.screens();
    const ShowPlaces places = PlaceShow(screens, pupilsScreen_);
    const auto screen = [&](int i) { return screens.at(static_cast<std::size_t>(i)); };
    const bool alone = !places.teacher && !takenOver_;
    // What is modal is settled when a window is shown. Beside the teacher's window the pupils' one
    // never gets the keys, nor what is asked above it.
    pupils_->hide();
    pupils_->setWindowFlag(Qt::WindowDoesNotAcceptFocus, !alone);
    pupils_->setWindowModality(alone ? Qt::ApplicationModal : Qt::NonModal);
    viewNow_->setCopyOf(screen(places.pupils).geometry.size());
    viewNext_->setCopyOf(screen(places.pupils).geometry.size());
    if (alone) {
        hide();
        desktop_.cover(*pupils_, screen(places.pupils));
        pupils_->activateWindow();
    } else {
        desktop_.fill(*this, screen(places.teacher.value_or(places.pupils)));
        if (places.teacher) {
            desktop_.cover(*pupils_, screen(places.pupils));
        }
        takenOver_ = true;
        raise();
        activateWindow();
    }
    cmdScreens_->setEnabled(!alone);
    restPointer();
    pictures_.setRoom(pupils_->pictureRoom());
    refresh();
}

void frmShow::cmdScreens_Click()
{
    const std::vector<ShowScreen> screens = desktop_.screens();
    const ShowPlaces places = PlaceShow(screens, pupilsScreen_);
    if (places.teacher) {
        pupilsScreen_ = screens.at(static_cast<std::size_t>(*places.teacher)).id();
        QSettings().setValue(screenKey, pupilsScreen_);
    } else if (!takenOver_) {
        // What the teacher sees is never put before the pupils.
        return;
    } else {
        takenOver_ = false;
    }
    placeWindows();
}

void frmShow::refresh()
{
    PupilsView view = show_.pupilsView();
    const ShowPictures::Loaded picture = pictures_.find(view.picture);
    const bool covered = view.cover != PupilsView::Cover::None;
    if (!isVisible()) {
        view.note = note(covered ? PictureFault::None : picture.fault);
    }
    pupils_->setView(view, picture.picture);
    if (pupils_->isVisible()) {
        pupils_->repaint();
    }
    // Decoding ahead takes the processor from the painting.
    QStringList wanted;
    if (const auto position = show_.position()) {
        for (const int i : {*position, *position + 1, *position - 1}) {
            if (i >= 1 && i <= show_.questions()) {
                wanted.append(show_.item(i).picture);
            }
        }
    }
    pictures_.want(wanted);
    later_.start(0);
}

void frmShow::showTeacher()
{
    const PupilsView view = show_.pupilsView();
    const ShowPictures::Loaded picture = pictures_.find(view.picture);
    if (isVisible()) {
        viewNow_->setView(view, picture.picture);
        showButtons();
        const auto position = show_.position();
        lblNote_->setText(note(picture.fault));
        lblCount_->setText(position
                               ? tr("%1 of %2").arg(*position).arg(show_.questions())
                               : tr("Answers, page %1 of %2").arg(show_.page()).arg(show_.pages()));
        lblTopic_->setText(position ? show_.item(*position).topicText : QString());
        lblAnswer_->setText(position ? show_.item(*position).question.Answer : QString());
        lblShown_->setText(show_.isAnswerShown() ? tr("The pupils see it.")
                                                 : tr("The pupils do not see it."));
        lblShown_->setVisible(position.has_value());
        PupilsView next;
        next.cover = PupilsView::Cover::White;
        if (position && *position < show_.questions()) {
            next.cover = PupilsView::Cover::None;
            next.number = *position + 1;
            next.topic = show_.item(next.number).topicText;
            next.picture = show_.item(next.number).picture;
        }
        lblNext_->setText(next.number > 0 ? tr("Next: question %1").arg(next.number) : QString());
        viewNext_->setView(next, pictures_.find(next.picture).picture);
        viewNext_->setVisible(next.number > 0);
    }
    memory_.follow(show_, picture.ready && picture.fault == PictureFault::None &&
                              view.cover == PupilsView::Cover::None);
}

QString frmShow::note(PictureFault pictureFault) const
{
    if (const QString& typed = show_.typed(); !typed.isEmpty()) {
        switch (typed.toInt()) {
        case static_cast<int>(Outcome::Few):
            return tr("Few knew it. (Enter goes to question 1 instead.)");
        case static_cast<int>(Outcome::Half):
            return tr("Half of the class knew it. (Enter goes to question 2 instead.)");
        case static_cast<int>(Outcome::Most):
            return tr("Most knew it. (Enter goes to question 3 instead.)");
        default:
            return tr("Enter goes to question %1.").arg(typed);
        }
    }
    switch (show_.note()) {
    case Show::Note::NoSuchQuestion:
        return tr("There is no question of that number.");
    case Show::Note::NoOtherQuestion:
        return tr("There is no other question to put in the place of this one.");
    case Show::Note::AtTheEnd:
        return tr("That was the last one. Esc ends the show.");
    case Show::Note::AtTheStart:
        return tr("This is the first question.");
    case Show::Note::None:
        break;
    }
    const QString fault = faultWords(pictureFault);
    return !fault.isEmpty() && show_.canSwap()
               ? fault + u' ' + tr("S puts another one in its place.")
               : fault;
}

QString frmShow::faultWords(PictureFault fault)
{
    switch (fault) {
    case PictureFault::None:
        break;
    case PictureFault::Missing:
        return tr("The picture file is missing from this picture.  Please delete this question.");
    case PictureFault::Unreadable:
        return tr("The picture file of this question is there, but cannot be read.");
    case PictureFault::Damaged:
        return tr("The picture file of this question is damaged or is not a picture.");
    case PictureFault::TooLarge:
        return tr("The picture of this question is too large to be shown.");
    }
    return {};
}

void frmShow::press(QKeyEvent* event)
{
    // A key that is held would run through the questions, and each would count as used.
    if (event->isAutoRepeat()) {
        return;
    }
    switch (PressShowKey(show_, LatinKey(*event), event->modifiers())) {
    case ShowKey::Unknown:
        event->ignore();
        break;
    case ShowKey::Done:
        refresh();
        break;
    case ShowKey::SwapScreens:
        cmdScreens_Click();
        break;
    case ShowKey::End:
        cmdEnd_Click();
        break;
    }
}

void frmShow::keyPressEvent(QKeyEvent* event)
{
    press(event);
}

void frmShow::closeEvent(QCloseEvent* event)
{
    event->ignore();
    cmdEnd_Click();
}

bool frmShow::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::KeyPress:
        event->accept();
        press(static_cast<QKeyEvent*>(event));
        return true;
    case QEvent::Close:
        event->ignore();
        cmdEnd_Click();
        return true;
    case QEvent::MouseMove:
        pupils_->unsetCursor();
        restPointer();
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

void frmShow::restPointer()
{
    pointerRests_.start(pointerMs);
}

void frmShow::cmdBack_Click()
{
    show_.back();
    refresh();
}

void frmShow::cmdNext_Click()
{
    show_.next();
    refresh();
}

void frmShow::cmdAnswer_Click()
{
    show_.answer();
    refresh();
}

void frmShow::cmdSwap_Click()
{
    show_.swap();
    refresh();
}

void frmShow::cmdClock_Click()
{
    show_.toggleClock();
    refresh();
}

void frmShow::cmdLess_Click()
{
    show_.stretch(-stretchSeconds);
    refresh();
}

void frmShow::cmdMore_Click()
{
    show_.stretch(stretchSeconds);
    refresh();
}

void frmShow::cmdBlack_Click()
{
    show_.cover(PupilsView::Cover::Black);
    refresh();
}

void frmShow::cmdWhite_Click()
{
    show_.cover(PupilsView::Cover::White);
    refresh();
}

void frmShow::cmdFew_Click()
{
    show_.mark(Outcome::Few);
    refresh();
}

void frmShow::cmdHalf_Click()
{
    show_.mark(Outcome::Half);
    refresh();
}

void frmShow::cmdMost_Click()
{
    show_.mark(Outcome::Most);
    refresh();
}

void frmShow::cmdEnd_Click()
{
    if (show_.isOnLastStep() ||
        services_.messageBoxes->yesNo(tr("Show in Class"), tr("End the show?"),
                                      MessageBoxes::Answer::Yes)) {
        loop_.quit();
    }
}

} // namespace varnholt
