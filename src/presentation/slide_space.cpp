#include "presentation/slide_space.h"

#include <QList>

namespace varnholt {

namespace {

/// As a part of the text's size.
double widthOf(QChar c)
{
    constexpr double usual = 0.58;
    constexpr double capital = 0.74;
    constexpr double widest = 0.95;
    constexpr double ideograph = 1;
    constexpr char16_t firstIdeograph = 0x1100;
    if (c.isSurrogate()) {
        return ideograph / 2;
    }
    if (c.unicode() >= firstIdeograph && c.isLetter()) {
        return ideograph;
    }
    switch (c.unicode()) {
    case u'm':
    case u'w':
    case u'M':
    case u'W':
    case u'@':
    case u'%':
    case u'—':
    case u'…':
        return widest;
    default:
        return c.isUpper() ? capital : usual;
    }
}

} // namespace

double GuessedWidth(QStringView line, double size)
{
    double width = 0;
    for (const QChar c : line) {
        width += widthOf(c) * size;
    }
    return width;
}

std::vector<QStringView> GuessedLines(QStringView text, double size, double boxWidth)
{
    const double room = boxWidth - boxMargins;
    std::vector<QStringView> lines;
    for (const QStringView paragraph : text.split(u'\n')) {
        qsizetype start = 0;
        qsizetype afterWord = 0;
        double width = 0;
        for (qsizetype i = 0; i < paragraph.size(); ++i) {
            width += widthOf(paragraph[i]) * size;
            if (paragraph[i] == u' ') {
                afterWord = i + 1;
            } else if (width > room && i > start) {
                const qsizetype end = afterWord > start ? afterWord : i;
                lines.push_back(paragraph.sliced(start, end - start));
                start = end;
                width = GuessedWidth(paragraph.sliced(start, i + 1 - start), size);
            }
        }
        lines.push_back(paragraph.sliced(start));
    }
    return lines;
}

double FittingSize(QStringView text, std::initializer_list<double> sizes, const QSizeF& box)
{
    for (const double size : sizes) {
        if (BoxHeight(GuessedLines(text, size, box.width()).size(), size) <= box.height()) {
            return size;
        }
    }
    return *(sizes.end() - 1);
}

} // namespace varnholt
