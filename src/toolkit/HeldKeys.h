#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>

class QKeyEvent;

namespace varnholt {

/// While it lives, a key held down acts once in all windows of the program: Return, Enter, Esc
/// and, outside text fields, Space and the character keys, with or without Alt. Nothing is
/// judged, deleted or answered again by a key that has not been released since. Keys that move
/// go on repeating, and so do those that type, but only into the field they were pressed in: where
/// a key has led to another window it leaves nothing there.
///
/// X11 sends a held key as releases and presses, which Qt does not always tell from the real
/// ones; it gives both the same time, which no finger can.
class HeldKeys : public QObject
{
    Q_OBJECT

public:
    /// Watches the application, which must exist.
    explicit HeldKeys(QObject* parent = nullptr);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// Times are milliseconds of the windowing system.
    struct Key
    {
        quint64 pressed = 0; ///< at first, without the repetitions
        quint64 released = 0;
        QPointer<QObject> focus; ///< what had the focus when it was pressed
    };

    [[nodiscard]] bool leadsNowhere(const QKeyEvent& event);

    QHash<int, Key> keys_;
};

} // namespace varnholt
