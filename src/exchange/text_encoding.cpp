#include "exchange/text_encoding.h"

#include "store/errors.h"

#include <QCoreApplication>
#include <QStringDecoder>

#include <algorithm>
#include <array>
#include <optional>

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(Package)
};

constexpr char16_t firstOwn = 0x80;
constexpr char16_t lastOwn = 0x9f;

/// Bytes 0x80 to 0x9f; all others are Latin-1.
constexpr std::array<char16_t, 32> own{
    0x20ac, 0x0081, 0x201a, 0x0192, 0x201e, 0x2026, 0x2020, 0x2021, 0x02c6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008d, 0x017d, 0x008f, 0x0090, 0x2018, 0x2019, 0x201c, 0x201d, 0x2022,
    0x2013, 0x2014, 0x02dc, 0x2122, 0x0161, 0x203a, 0x0153, 0x009d, 0x017e, 0x0178};

std::optional<char> toByte(char16_t character)
{
    if (character < firstOwn || (character > lastOwn && character <= 0xff)) {
        return static_cast<char>(character);
    }
    const auto* found = std::find(own.begin(), own.end(), character);
    if (found == own.end()) {
        return std::nullopt;
    }
    return static_cast<char>(firstOwn + (found - own.begin()));
}

} // namespace

bool fitsWindows1252(QStringView text)
{
    return std::all_of(text.begin(), text.end(),
                       [](QChar character) { return toByte(character.unicode()).has_value(); });
}

QByteArray encodeText(QStringView text, TextEncoding encoding)
{
    if (encoding == TextEncoding::Utf8) {
        return text.toUtf8();
    }
    QByteArray bytes(text.size(), Qt::Uninitialized);
    std::transform(text.begin(), text.end(), bytes.begin(),
                   [](QChar character) { return toByte(character.unicode()).value_or('?'); });
    return bytes;
}

QString decodeText(const QByteArray& bytes, TextEncoding encoding)
{
    if (encoding == TextEncoding::Utf8) {
        // Only a file begins with a mark; a text that begins with that character means it.
        QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless |
                                                         QStringDecoder::Flag::ConvertInitialBom);
        QString text = decoder(bytes);
        if (decoder.hasError()) {
            throw Error(Words::tr("A text in the package is not valid UTF-8."));
        }
        return text;
    }
    QString text = QString::fromLatin1(bytes);
    for (QChar& character : text) {
        if (character.unicode() >= firstOwn && character.unicode() <= lastOwn) {
            character = QChar(own[character.unicode() - firstOwn]);
        }
    }
    return text;
}

} // namespace varnholt
