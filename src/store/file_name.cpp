#include "store/file_name.h"

#include <QRegularExpression>

namespace varnholt {

namespace {

/// Windows looks only at what stands before the first dot, and not at blanks there.
bool isDevice(const QString& name)
{
    static const QRegularExpression device(
        QStringLiteral(
            "^(CON|PRN|AUX|NUL|CONIN\\$|CONOUT\\$|(COM|LPT)[0-9\u00B9\u00B2\u00B3]) *(\\.|$)"),
        QRegularExpression::CaseInsensitiveOption);
    return device.match(name).hasMatch();
}

} // namespace

QString PortableFileName(const QString& text, qsizetype kept)
{
    // Of the 255 that most file systems allow, with room for " (1000).pptx".
    constexpr qsizetype mostBytes = 200;
    QString file = text.isEmpty() ? QStringLiteral("-") : text;
    for (QChar& c : file) {
        if (c < u' ' || c == u'\x7F' || QStringLiteral("/\\:*?\"<>|").contains(c)) {
            c = u'-';
        }
    }
    while (file.toUtf8().size() > mostBytes && file.size() > kept) {
        const qsizetype at = file.size() - kept - 1;
        const bool pair = at > 0 && file.at(at).isLowSurrogate();
        file.remove(pair ? at - 1 : at, pair ? 2 : 1);
    }
    // A name that begins with a dot is hidden, one that ends so loses it on Windows.
    if (file.startsWith(u'.')) {
        file[0] = u'_';
    }
    if (file.endsWith(u'.') || file.endsWith(u' ')) {
        file.back() = u'-';
    }
    return isDevice(file) ? u'_' + file : file;
}

QString FileNameHere(const QString& text)
{
#ifdef Q_OS_WIN
    return PortableFileName(text);
#else
    return QString(text).replace(u'/', u'-').replace(u'\\', u'-');
#endif
}

} // namespace varnholt
