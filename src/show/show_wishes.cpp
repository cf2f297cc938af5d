#include "show/show_wishes.h"

#include <QCryptographicHash>
#include <QDir>
#include <QSettings>

#include <algorithm>

namespace varnholt {

namespace {

/// A settings key holds no slashes of a path.
QString groupOf(const QString& programFolder)
{
    const QByteArray path = QDir(programFolder).canonicalPath().toUtf8();
    return QStringLiteral("libraries/%1/show")
        .arg(QLatin1String(
            QCryptographicHash::hash(path, QCryptographicHash::Sha1).toHex().left(16)));
}

} // namespace

ShowWishes LoadShowWishes(const QString& programFolder)
{
    QSettings settings;
    settings.beginGroup(groupOf(programFolder));
    ShowWishes wishes;
    wishes.seconds =
        std::clamp(settings.value(QStringLiteral("seconds")).toInt(), 0, ShowWishes::mostSeconds);
    const int answers = settings.value(QStringLiteral("answers")).toInt();
    if (answers > 0 && answers <= static_cast<int>(ShowAnswers::AtTheEnd)) {
        wishes.answers = static_cast<ShowAnswers>(answers);
    }
    wishes.moveOn = settings.value(QStringLiteral("moveOn")).toBool();
    return wishes;
}

void SaveShowWishes(const QString& programFolder, const ShowWishes& wishes)
{
    QSettings settings;
    settings.beginGroup(groupOf(programFolder));
    settings.setValue(QStringLiteral("seconds"), wishes.seconds);
    settings.setValue(QStringLiteral("answers"), static_cast<int>(wishes.answers));
    settings.setValue(QStringLiteral("moveOn"), wishes.moveOn);
}

} // namespace varnholt
