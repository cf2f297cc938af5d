#pragma once

#include <QLineEdit>
#include <QString>

namespace varnholt {

/// A one-line field whose text really is one line, however it comes in: typed, pasted, dropped,
/// by an input method or by the program.
class LineEdit : public QLineEdit
{
    Q_OBJECT

public:
    explicit LineEdit(QWidget* parent = nullptr);
    explicit LineEdit(const QString& text, QWidget* parent = nullptr);
};

/// The text with a blank for every line break, tab and other control character; CR LF counts as
/// one line break.
[[nodiscard]] QString OneLine(QString text);

/// The text on one line and, where it is longer than `longest` characters, with dots in place of
/// its middle: what a name says is at its beginning, and what was added to it at its end.
[[nodiscard]] QString ShortLine(const QString& text, qsizetype longest);

} // namespace varnholt
