#pragma once

#include <QGroupBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QString>

#include <utility>

namespace varnholt {

/// Gives a control its name and, for assistive technology, a name people understand.
template <typename Control>
Control* named(Control* control, const char* objectName, const QString& accessibleName = {})
{
    control->setObjectName(QLatin1String(objectName));
    if (!accessibleName.isEmpty()) {
        control->setAccessibleName(accessibleName);
    }
    return control;
}

/// A frame with a caption; its mnemonic leads to the first control inside.
inline QGroupBox* makeFrame(const char* objectName, const QString& caption)
{
    return named(new QGroupBox(caption), objectName);
}

/// A button that Enter presses only while it has the focus.
inline QPushButton* makeButton(const char* objectName, const QString& caption)
{
    auto* button = named(new QPushButton(caption), objectName);
    button->setAutoDefault(false);
    return button;
}

/// A label that shows its text as it is, never as markup.
inline QLabel* makeLabel(const char* objectName, const QString& text = {})
{
    auto* label = named(new QLabel(text), objectName);
    label->setTextFormat(Qt::PlainText);
    return label;
}

/// A label that is there only while it has a text: assistive technology calls an empty one by the
/// caption of the frame around it, or finds a nameless place to stop at. Its room stays.
inline void sayIn(QLabel* label, const QString& text)
{
    QSizePolicy policy = label->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    label->setSizePolicy(policy);
    label->setText(text);
    label->setVisible(!text.isEmpty());
}

/// Runs `task` when the editor in a list has gone: a message before that would take the keys from
/// it, and they would not come back to the list.
template <typename Task>
void whenEditorHasGone(QWidget* window, Task task)
{
    QMetaObject::invokeMethod(window, std::move(task), Qt::QueuedConnection);
}

/// Gives a window its first size, smaller where the screen is: its frame and a panel of the
/// desktop must have room, too.
inline void resizeWithinScreen(QWidget* window, QSize wanted)
{
    const int frame = window->fontMetrics().height() * 2;
    window->resize(wanted.boundedTo(window->screen()->availableSize() - QSize(frame / 2, frame)));
}

} // namespace varnholt
