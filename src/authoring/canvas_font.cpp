#include "authoring/canvas_font.h"

#include <QFontDatabase>
#include <QHash>

namespace varnholt {

QStringList faceAndSubstitutes(const QString& name)
{
    static const QHash<QString, QStringList> substitutes{
        {QStringLiteral("Arial"),
         {QStringLiteral("Liberation Sans"), QStringLiteral("Arimo"), QStringLiteral("Nimbus Sans"),
          QStringLiteral("FreeSans"), QStringLiteral("DejaVu Sans")}},
        {QStringLiteral("Calibri"),
         {QStringLiteral("Carlito"), QStringLiteral("Liberation Sans"),
          QStringLiteral("DejaVu Sans")}},
        {QStringLiteral("Courier"),
         {QStringLiteral("Nimbus Mono PS"), QStringLiteral("Courier 10 Pitch"),
          QStringLiteral("FreeMono"), QStringLiteral("Courier New"),
          QStringLiteral("Liberation Mono"), QStringLiteral("DejaVu Sans Mono")}},
        {QStringLiteral("Courier New"),
         {QStringLiteral("Liberation Mono"), QStringLiteral("Cousine"),
          QStringLiteral("Nimbus Mono PS"), QStringLiteral("FreeMono"),
          QStringLiteral("DejaVu Sans Mono")}},
        {QStringLiteral("MS Sans Serif"),
         {QStringLiteral("Microsoft Sans Serif"), QStringLiteral("Arial"),
          QStringLiteral("Liberation Sans"), QStringLiteral("Arimo"), QStringLiteral("Nimbus Sans"),
          QStringLiteral("DejaVu Sans")}},
        {QStringLiteral("Times New Roman"),
         {QStringLiteral("Liberation Serif"), QStringLiteral("Tinos"),
          QStringLiteral("Nimbus Roman"), QStringLiteral("FreeSerif"),
          QStringLiteral("DejaVu Serif")}},
        {QStringLiteral("Verdana"),
         {QStringLiteral("DejaVu Sans"), QStringLiteral("Bitstream Vera Sans"),
          QStringLiteral("Liberation Sans")}},
    };
    return QStringList(name) + substitutes.value(name);
}

QFont stampFont(const CanvasFont& font)
{
    // Asking for the face by name alone would end at the system's default for most of them.
    QString family = font.name;
    for (const QString& face : faceAndSubstitutes(font.name)) {
        if (QFontDatabase::hasFamily(face)) {
            family = face;
            break;
        }
    }
    QFont result(family);
    result.setPixelSize(qRound(font.size * 96 / 72.0));
    result.setBold(font.bold);
    result.setItalic(font.italic);
    result.setUnderline(font.underline);
    result.setStyleStrategy(
        QFont::StyleStrategy(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
    result.setHintingPreference(QFont::PreferFullHinting);
    return result;
}

} // namespace varnholt
