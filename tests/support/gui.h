#pragma once

#include <QTest>
#include <QWidget>

#include <stdexcept>

namespace varnholt::test {

/// The control of that name; throws (and so fails the test with the name) when the window
/// has none.
template <typename Control>
Control* control(QWidget* window, const char* name)
{
    auto* found = window->findChild<Control*>(QLatin1String(name));
    if (!found) {
        throw std::runtime_error(std::string("no such control: ") + name);
    }
    return found;
}

/// Shows a window and waits until it has the keyboard; there is no window manager to give it.
inline void present(QWidget& window)
{
    window.show();
    window.activateWindow();
    if (!QTest::qWaitForWindowActive(&window, 60'000)) {
        throw std::runtime_error("the window does not become active");
    }
}

/// Clicks a control with the mouse, as a user can: it must be on show and enabled.
inline void click(QWidget* window, const char* name)
{
    auto* widget = control<QWidget>(window, name);
    if (!widget->isVisibleTo(window) || !widget->isEnabled()) {
        throw std::runtime_error(std::string("not to be clicked now: ") + name);
    }
    QTest::mouseClick(widget, Qt::LeftButton);
}

} // namespace varnholt::test
