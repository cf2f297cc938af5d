#include "presentation/presentation_name.h"

namespace varnholt {

QString PresentationName(const QString& of, QDate day)
{
    const QString date = day.toString(Qt::ISODate);
    const QString name = of.simplified();
    return name.isEmpty() ? date : name + u' ' + date;
}

QString FileNameOf(const QString& name)
{
    // Of the 255 that most file systems allow, with room for " (1000).pptx". The end of a name is
    // its date.
    constexpr qsizetype mostBytes = 200;
    QString file = name.isEmpty() ? QStringLiteral("-") : name;
    for (QChar& c : file) {
        if (c < u' ' || c == u'\x7F' || QStringLiteral("/\\:*?\"<>|").contains(c)) {
            c = u'-';
        }
    }
    constexpr qsizetype dateLength = 11;
    while (file.toUtf8().size() > mostBytes && file.size() > dateLength) {
        const qsizetype at = file.size() - dateLength - 1;
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
    return file;
}

} // namespace varnholt
