#include "toolkit/LongWork.h"

#include "store/errors.h"

#include <QApplication>
#include <QEvent>
#include <QProgressBar>
#include <QProgressDialog>
#include <QPushButton>

namespace varnholt {

namespace {

constexpr int patienceMs = 500;
constexpr int eventsEveryMs = 10;

bool isInput(QEvent::Type type)
{
    switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::Shortcut:
    case QEvent::ShortcutOverride:
    case QEvent::Wheel:
    case QEvent::TouchBegin:
    case QEvent::ContextMenu:
    case QEvent::Drop:
    case QEvent::Close:
        return true;
    default:
        return false;
    }
}

} // namespace

LongWork::LongWork(QWidget* window, const QString& label, Cancel cancel)
    : dialog_(std::make_unique<QProgressDialog>(window))
    , bar_(new QProgressBar)
    , cancel_(cancel)
{
    dialog_->setWindowTitle(QApplication::applicationDisplayName());
    dialog_->setLabelText(label);
    dialog_->setWindowModality(Qt::ApplicationModal);
    dialog_->setAutoClose(false);
    dialog_->setAutoReset(false);
    // The dialog's own `setValue` would open it by a timer: the bar's value is set here instead.
    bar_->setRange(0, 0);
    dialog_->setBar(bar_);
    if (cancel == Cancel::NotOffered) {
        dialog_->setCancelButton(nullptr);
        dialog_->setWindowFlag(Qt::WindowCloseButtonHint, false);
    }
    // Stops the timer that a dialog of this kind is made with.
    dialog_->reset();
    takeOver();
}

LongWork::LongWork()
{
    takeOver();
}

void LongWork::takeOver()
{
    sinceStart_.start();
    sinceEvents_.start();
    modalAtStart_ = QApplication::activeModalWidget();
    QApplication::setOverrideCursor(Qt::WaitCursor);
    qApp->installEventFilter(this);
}

LongWork::~LongWork()
{
    qApp->removeEventFilter(this);
    QApplication::restoreOverrideCursor();
}

void LongWork::progress(int step, int steps)
{
    bar_->setRange(0, steps);
    bar_->setValue(step - 1);
    if (!goOn()) {
        throw Cancelled();
    }
}

bool LongWork::goOn()
{
    const QWidget* modal = QApplication::activeModalWidget();
    if (dialog_ && !dialog_->isVisible() && !dialog_->wasCanceled() &&
        sinceStart_.hasExpired(patienceMs) && (!modal || modal == modalAtStart_)) {
        dialog_->show();
        QCoreApplication::processEvents();
    }
    if (sinceEvents_.hasExpired(eventsEveryMs)) {
        QCoreApplication::processEvents();
        sinceEvents_.start();
    }
    return !dialog_ || !dialog_->wasCanceled();
}

void LongWork::setLabel(const QString& label)
{
    if (dialog_->labelText() != label) {
        dialog_->setLabelText(label);
    }
}

bool LongWork::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Show && dialog_ && dialog_->isVisible()) {
        const auto* shown = qobject_cast<QWidget*>(watched);
        if (shown && shown != dialog_.get() && shown->isWindow() && shown->isModal()) {
            dialog_->hide();
        }
    }
    if (!isInput(event->type())) {
        return QObject::eventFilter(watched, event);
    }
    // A shortcut's event goes to the shortcut, which stands for the widget that owns it. Other
    // objects, such as the windowing system's windows, only pass events on to widgets.
    const bool ofShortcut = event->type() == QEvent::Shortcut;
    const auto* widget = qobject_cast<QWidget*>(watched);
    for (QObject* owner = watched; ofShortcut && owner && !widget;) {
        owner = owner->parent();
        widget = qobject_cast<QWidget*>(owner);
    }
    const bool ofBar = widget && dialog_ && widget->window() == dialog_.get();
    const bool ofMessage = widget && !ofBar && widget->window() != modalAtStart_ &&
                           widget->window() == QApplication::activeModalWidget();
    if (!widget || ofMessage || (ofBar && cancel_ == Cancel::Offered)) {
        return QObject::eventFilter(watched, event);
    }
    if (event->type() == QEvent::Close) {
        event->ignore();
    }
    return true;
}

} // namespace varnholt
