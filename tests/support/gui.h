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
