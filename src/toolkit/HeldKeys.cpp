#include "toolkit/HeldKeys.h"

#include <QGuiApplication>
#include <QInputMethodQueryEvent>
#include <QKeyEvent>

namespace varnholt {

namespace {

/// Some remote desktops let a moment pass between the two halves of a repetition; fingers need
/// several times as long.
constexpr quint64 noFingerMs = 15;

/// What the control that has the focus takes of what is typed.
struct Typing
{
    bool characters = false;
    bool lines = false;
};

Typing typing()
{
    QObject* focus = QGuiApplication::focusObject();
    if (!focus) {
        return {};
    }
    QInputMethodQueryEvent query(Qt::ImEnabled | Qt::ImHints);
    QCoreApplication::sendEvent(focus, &query);
    const auto hints = query.value(Qt::ImHints).value<Qt::InputMethodHints>();
    const bool enabled = query.value(Qt::ImEnabled).toBool();
    return {enabled, enabled && hints.testFlag(Qt::ImhMultiLine)};
}

bool actsOnce(const QKeyEvent& event)
{
    // Taking back, pasting and the like go on while Ctrl is held, as everywhere.
    if (event.modifiers() & (Qt::ControlModifier | Qt::MetaModifier)) {
        return false;
    }
    switch (event.key()) {
    case Qt::Key_Escape:
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return !typing().lines;
    default:
        // Keys above have no character.
        return event.key() < Qt::Key_Escape &&
               (event.modifiers().testFlag(Qt::AltModifier) || !typing().characters);
    }
}

} // namespace

HeldKeys::HeldKeys(QObject* parent)
    : QObject(parent)
{
    qApp->installEventFilter(this);
}

bool HeldKeys::repeated(const QKeyEvent& event) const
{
    if (event.isAutoRepeat()) {
        return true;
    }
    const auto released = released_.constFind(event.key());
    return released != released_.cend() && event.timestamp() - *released <= noFingerMs;
}

bool HeldKeys::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::KeyRelease: {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        if (key.timestamp() != 0) {
            released_.insert(key.key(), key.timestamp());
        }
        break;
    }
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress: {
        auto& key = static_cast<QKeyEvent&>(*event);
        if (repeated(key) && actsOnce(key)) {
            // An accepted override starts no shortcut and comes back as a press.
            key.accept();
            return true;
        }
        break;
    }
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace varnholt
