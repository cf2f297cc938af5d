#include "presentation/slide_text.h"

#include <algorithm>

namespace varnholt {

namespace {

/// Nothing that does not stay as it is.
bool isPlain(QChar c)
{
    return c >= u' ' && c < QChar(0x2028);
}

} // namespace

QStringList slideParagraphs(const QString& text)
{
    if (std::all_of(text.begin(), text.end(), isPlain)) {
        return {text};
    }
    QStringList paragraphs(QString{});
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        const bool pairs =
            c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        QString& paragraph = paragraphs.last();
        if (pairs) {
            paragraph += c;
            paragraph += text.at(++i);
        } else if (c.isSurrogate() || c.unicode() >= 0xFFFE) {
            paragraph += QChar(QChar::ReplacementCharacter);
        } else if (c == u'\r' && i + 1 < text.size() && text.at(i + 1) == u'\n') {
            // The line feed that follows makes the break.
        } else if (c == u'\n' || c == u'\r' || c == u'\v' || c == u'\f' ||
                   c == QChar::LineSeparator || c == QChar::ParagraphSeparator) {
            paragraphs.append(QString());
        } else if (c == u'\t' || c >= u' ') {
            paragraph += c;
        }
    }
    return paragraphs;
}

} // namespace varnholt
