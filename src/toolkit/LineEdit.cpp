#include "toolkit/LineEdit.h"

#include "toolkit/clipboard_probe.h"
#include "toolkit/short_text.h"

#include <QKeyEvent>
#include <QToolTip>
#include <QValidator>

namespace varnholt {

namespace {

/// A validator sees every change of a field, whatever brought it, and may put it right.
class OneLineValidator : public QValidator
{
public:
    using QValidator::QValidator;

    State validate(QString& text, int& position) const override
    {
        const int behind = static_cast<int>(OneLine(text.mid(position)).size());
        text = OneLine(std::move(text));
        position = static_cast<int>(text.size()) - behind;
        return Acceptable;
    }
};

} // namespace

LineEdit::LineEdit(QWidget* parent)
    : LineEdit(QString(), parent)
{}

LineEdit::LineEdit(const QString& text, QWidget* parent)
    : QLineEdit(parent)
{
    setValidator(new OneLineValidator(this));
    setText(text);
}

void LineEdit::focusInEvent(QFocusEvent* event)
{
    QLineEdit::focusInEvent(event);
    if (hasSelectedText() && selectedText() == text()) {
        setSelection(static_cast<int>(text().size()), -static_cast<int>(text().size()));
    }
}

void LineEdit::keyPressEvent(QKeyEvent* event)
{
    if (event->matches(QKeySequence::Paste) && !ClipboardAnswers()) {
        QToolTip::showText(mapToGlobal(rect().bottomLeft()), ClipboardSilentSentence(), this);
        return;
    }
    QLineEdit::keyPressEvent(event);
}

} // namespace varnholt
