#include "toolkit/LongWork.h"

#include "store/errors.h"

#include <QApplication>
#include <QEvent>
#include <QProgressDialog>
#include <QPushButton>

namespace varnholt {

namespace {

constexpr int patienceMs = 500;

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
{
    dialog_->setWindowTitle(QApplication::applicationDisplayName());
    dialog_->setLabelText(label);
    dialog_->setWindowModality(Qt::ApplicationModal);
    dialog_->setMinimumDuration(patienceMs);
    dialog_->setAutoClose(false);
    dialog_->setAutoReset(false);
    if (cancel == Cancel::NotOffered) {
        dialog_->setCancelButton(nullptr);
        dialog_->setWindowFlag(Qt::WindowCloseButtonHint, false);
    }
    takeOver();
}

LongWork::LongWork()
{
    takeOver();
}

void LongWork::takeOver()
{
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
    if (dialog_->maximum() != steps) {
        dialog_->setMaximum(steps);
    }
    dialog_->setValue(step - 1);
    if (dialog_->wasCanceled()) {
        throw Cancelled();
    }
}

bool LongWork::eventFilter(QObject* watched, QEvent* event)
{
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
    if (!widget || widget->window() == dialog_.get() ||
        widget->window() == QApplication::activeModalWidget()) {
        return QObject::eventFilter(watched, event);
    }
    if (event->type() == QEvent::Close) {
        event->ignore();
    }
    return true;
}

} // namespace varnholt
