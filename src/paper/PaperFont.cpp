#include "paper/PaperFont.h"

#include "store/errors.h"

#include <QCoreApplication>
#include <QDirIterator>
#include <QHash>
#include <QRawFont>
#include <QStandardPaths>

#include <algorithm>
#include <memory>

namespace varnholt {

namespace {

struct Face
{
    const char* family;
    const char* regular;
    const char* bold;
};

constexpr Face faces[] = {
    {"Liberation Sans", "LiberationSans-Regular.ttf", "LiberationSans-Bold.ttf"},
    {"DejaVu Sans", "DejaVuSans.ttf", "DejaVuSans-Bold.ttf"}};

/// The path of an installed font file; empty when there is none.
QString installed(const char* name)
{
    // The folders of fonts are large; a font that was found stays where it is.
    static QHash<QString, QString> known;
    QString& path = known[QLatin1String(name)];
    if (!path.isEmpty()) {
        return path;
    }
    for (const QString& folder : QStandardPaths::standardLocations(QStandardPaths::FontsLocation)) {
        QDirIterator files(folder, {QLatin1String(name)}, QDir::Files,
                           QDirIterator::Subdirectories | QDirIterator::FollowSymlinks);
        if (files.hasNext()) {
            return path = files.next();
        }
    }
    return {};
}

/// Widths are read off at this size and scaled, so that rounding does not show.
constexpr double rawSize = 1000;

bool has(const QRawFont& font, const QString& text)
{
    const QList<uint> characters = text.toUcs4();
    return std::all_of(characters.begin(), characters.end(), [&](uint character) {
        return character < u' ' || font.supportsCharacter(character);
    });
}

bool hasAll(const QString& file, const PaperTest& test)
{
    const QRawFont font(file, rawSize);
    return has(font, test.title) && has(font, test.className) && has(font, test.date) &&
           std::all_of(test.questions.begin(), test.questions.end(), [&](const auto& question) {
               return has(font, question.answer) && has(font, question.topicText);
           });
}

} // namespace

PaperFont PaperFont::forTest(const PaperTest& test)
{
    PaperFont best;
    for (const Face& face : faces) {
        const PaperFont font{QLatin1String(face.family), installed(face.regular),
                             installed(face.bold)};
        if (font.regularFile.isEmpty() || font.boldFile.isEmpty()) {
            continue;
        }
        if (hasAll(font.regularFile, test)) {
            return font;
        }
        best = font;
    }
    if (best.regularFile.isEmpty()) {
        throw Error(QCoreApplication::translate(
            "PaperFont", "Neither the font Liberation Sans nor the font DejaVu Sans is installed. "
                         "Install one of them and try again."));
    }
    return best;
}

TextWidth PaperFont::widths() const
{
    const auto regular = std::make_shared<QRawFont>(regularFile, rawSize, QFont::PreferNoHinting);
    const auto heavy = std::make_shared<QRawFont>(boldFile, rawSize, QFont::PreferNoHinting);
    return [regular, heavy](const QString& text, double size, bool bold) {
        const QRawFont& font = bold ? *heavy : *regular;
        double width = 0;
        for (const QPointF& advance : font.advancesForGlyphIndexes(font.glyphIndexesForString(text),
                                                                   QRawFont::SeparateAdvances)) {
            width += advance.x();
        }
        return width * size / rawSize;
    };
}

} // namespace varnholt
