#include "toolkit/LineEdit.h"

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

QString OneLine(QString text)
{
    text.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
    for (QChar& character : text) {
        const QChar::Category category = character.category();
        if (category == QChar::Other_Control || category == QChar::Separator_Line ||
            category == QChar::Separator_Paragraph) {
            character = u' ';
        }
    }
    return text;
}

QString ShortLine(const QString& text, qsizetype longest)
{
    if (text.size() <= longest) {
        return OneLine(text);
    }
    const qsizetype end = longest / 2;
    return OneLine(text.left(longest - end - 1) + u'…' + text.right(end));
}

} // namespace varnholt
