#include "toolkit/latin_key.h"

#include <QChar>
#include <QKeyEvent>
#include <QLatin1StringView>

namespace varnholt {

namespace {

/// Where nothing is known about the key.
constexpr int noKey = 0;

int keyAtItsPlace(const QKeyEvent& event)
{
#ifdef Q_OS_WIN
    // The layouts of other scripts give keys the codes of Latin letters.
    constexpr quint32 comma = 0xBC;
    constexpr quint32 period = 0xBE;
    const quint32 code = event.nativeVirtualKey();
    if (code == comma || code == period) {
        return code == comma ? Qt::Key_Comma : Qt::Key_Period;
    }
    return code >= Qt::Key_A && code <= Qt::Key_Z ? static_cast<int>(code) : noKey;
#else
    struct Row
    {
        quint32 firstCode;
        QLatin1StringView keys;
    };
    for (const Row& row : {Row{24, QLatin1StringView("QWERTYUIOP")},
                           {38, QLatin1StringView("ASDFGHJKL")},
                           {52, QLatin1StringView("ZXCVBNM,.")}}) {
        const qint64 at = qint64(event.nativeScanCode()) - row.firstCode;
        if (at >= 0 && at < row.keys.size()) {
            return row.keys.at(at).unicode();
        }
    }
    return noKey;
#endif
}

} // namespace

int LatinKey(const QKeyEvent& event)
{
    constexpr int lastOfAscii = 0x7F;
    const int key = event.key();
    // Keys without a character lie above all characters.
    if (key <= lastOfAscii || key > QChar::LastValidCodePoint) {
        return key;
    }
    const auto character = static_cast<char32_t>(key);
    if (const int digit = QChar::digitValue(character); digit >= 0) {
        return Qt::Key_0 + digit;
    }
    if (!QChar::isLetter(character) || QChar::script(character) == QChar::Script_Latin) {
        return key;
    }
    const int place = keyAtItsPlace(event);
    return place == noKey ? key : place;
}

} // namespace varnholt
