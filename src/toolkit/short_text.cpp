#include "toolkit/short_text.h"

namespace varnholt {

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

QString Wrappable(const QString& text, qsizetype longest)
{
    constexpr qsizetype longestWord = 60;
    constexpr QChar zeroWidthSpace(0x200b);
    const qsizetype end = longest / 3;
    const QString shortened =
        text.size() <= longest ? text
                               : text.left(longest - end) + QStringLiteral(" … ") + text.right(end);
    QString wrappable;
    qsizetype word = 0;
    for (const QChar character : shortened) {
        word = character.isSpace() ? 0 : word + 1;
        if (word > longestWord && !character.isLowSurrogate()) {
            wrappable += zeroWidthSpace;
            word = 1;
        }
        wrappable += character;
    }
    return wrappable;
}

} // namespace varnholt
