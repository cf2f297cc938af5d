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

/// What a repetition of the key is for.
enum class Repetition
{
    Nothing,
    TheSameField,
    Everything
};

Repetition repetitionOf(const QKeyEvent& event)
{
    // Taking back, pasting and the like go on while Ctrl is held, as everywhere.
    if (event.modifiers() & (Qt::ControlModifier | Qt::MetaModifier)) {
        return Repetition::Everything;
    }
    const auto whereTyped = [](bool types) {
        return types ? Repetition::TheSameField : Repetition::Nothing;
    };
    switch (event.key()) {
    case Qt::Key_Escape:
        return Repetition::Nothing;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return whereTyped(typing().lines);
    default:
        // Keys above have no character.
        return event.key() > Qt::Key_Escape
                   ? Repetition::Everything
                   : whereTyped(!event.modifiers().testFlag(Qt::AltModifier) &&
                                typing().characters);
    }
}

} // namespace

HeldKeys::HeldKeys(QObject* parent)
    : QObject(parent)
{
    qApp->installEventFilter(this);
}

bool HeldKeys::leadsNowhere(const QKeyEvent& event)
{
    Key& key = keys_[event.key()];
    const quint64 now = event.timestamp();
    const bool repeated =
        event.isAutoRepeat() || (key.released != 0 && now - key.released <= noFingerMs);
    if (!repeated) {
        // One press comes here once for each widget that is asked, the later ones perhaps after
        // the first has moved the focus.
        if (now != key.pressed) {
            key.pressed = now;
            key.focus = QGuiApplication::focusObject();
        }
        return false;
    }
    const Repetition meant = repetitionOf(event);
    return meant == Repetition::Nothing ||
           (meant == Repetition::TheSameField && key.focus != QGuiApplication::focusObject());
}

bool HeldKeys::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::KeyRelease: {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        keys_[key.key()].released = key.timestamp();
        break;
    }
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress: {
        auto& key = static_cast<QKeyEvent&>(*event);
        if (leadsNowhere(key)) {
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
