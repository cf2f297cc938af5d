#pragma once

#include <QHash>
#include <QObject>

class QKeyEvent;

namespace varnholt {

/// While it lives, a key held down acts once in all windows of the program: Return, Enter, Esc
/// and, outside text fields, Space and the character keys, with or without Alt. Nothing is
/// judged, deleted or answered again by a key that has not been released since. Keys that move
/// or type go on repeating.
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
    [[nodiscard]] bool repeated(const QKeyEvent& event) const;

    /// When each key was last released, in milliseconds of the windowing system.
    QHash<int, quint64> released_;
};

} // namespace varnholt
