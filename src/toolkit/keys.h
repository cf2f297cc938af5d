#pragma once

#include <QShortcut>
#include <QWidget>

#include <utility>

namespace varnholt {

/// A key does something while a widget has the focus.
template <typename Action>
void onKey(QWidget* widget, const QKeySequence& key, Action action)
{
    QObject::connect(new QShortcut(key, widget, nullptr, nullptr, Qt::WidgetShortcut),
                     &QShortcut::activated, widget, std::move(action));
}

} // namespace varnholt
