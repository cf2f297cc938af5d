#pragma once

#include <QLineEdit>
#include <QString>

namespace varnholt {

/// A one-line field whose text really is one line, however it comes in: typed, pasted, dropped,
/// by an input method or by the program. Pasting from a program that hangs says so beside the
/// field instead of standing still. Of a long text that is selected as a whole when the keys come
/// to it, the beginning shows.
class LineEdit : public QLineEdit
{
    Q_OBJECT

public:
    explicit LineEdit(QWidget* parent = nullptr);
    explicit LineEdit(const QString& text, QWidget* parent = nullptr);

protected:
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};

} // namespace varnholt
