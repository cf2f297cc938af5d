#include "selection/draw_wishes.h"

#include "library/Library.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDateTime>
#include <QDir>
#include <QJsonDocument>
#include <QLocale>
#include <QSettings>

namespace varnholt {

namespace {

struct Words
{
    Q_DECLARE_TR_FUNCTIONS(DrawWishes)
};

/// A settings key holds no slashes of a path.
QString keyOf(const QString& programFolder, const QString& name)
{
    const QByteArray path = QDir(programFolder).canonicalPath().toUtf8();
    return QStringLiteral("libraries/%1/%2")
        .arg(QLatin1String(
                 QCryptographicHash::hash(path, QCryptographicHash::Sha1).toHex().left(16)),
             name);
}

void put(const QString& key, const QString& value)
{
    QSettings settings;
    if (value.isEmpty()) {
        settings.remove(key);
    } else {
        settings.setValue(key, value);
    }
}

QString quotaName(std::int32_t assessmentNum)
{
    return QStringLiteral("topicNumbers/%1").arg(assessmentNum);
}

} // namespace

DrawWishes LoadWishes(const QString& programFolder)
{
    const QSettings settings;
    DrawWishes wishes;
    wishes.className = settings.value(keyOf(programFolder, QStringLiteral("class"))).toString();
    wishes.classId = settings.value(keyOf(programFolder, QStringLiteral("classKey"))).toInt();
    const int rule = settings.value(keyOf(programFolder, QStringLiteral("draw"))).toInt();
    if (rule > 0 && rule <= static_cast<int>(DrawRule::FreshAndDue)) {
        wishes.rule = static_cast<DrawRule>(rule);
    }
    return wishes;
}

void SaveWishes(const QString& programFolder, const DrawWishes& wishes)
{
    put(keyOf(programFolder, QStringLiteral("class")), wishes.className);
    put(keyOf(programFolder, QStringLiteral("classKey")),
        wishes.classId == 0 ? QString() : QString::number(wishes.classId));
    put(keyOf(programFolder, QStringLiteral("draw")),
        wishes.rule == DrawRule::Any ? QString() : QString::number(static_cast<int>(wishes.rule)));
}

SlideWishes LoadSlideWishes(const QString& programFolder)
{
    const QString kept =
        QSettings().value(keyOf(programFolder, QStringLiteral("slides"))).toString();
    return SlideWishes::fromJson(QJsonDocument::fromJson(kept.toUtf8()).object());
}

void SaveSlideWishes(const QString& programFolder, const SlideWishes& wishes)
{
    const QByteArray json = QJsonDocument(wishes.toJson()).toJson(QJsonDocument::Compact);
    put(keyOf(programFolder, QStringLiteral("slides")),
        wishes.any() ? QString::fromUtf8(json) : QString());
}

Quotas LoadQuotas(const QString& programFolder, std::int32_t assessmentNum)
{
    Quotas quotas;
    const QString kept =
        QSettings().value(keyOf(programFolder, quotaName(assessmentNum))).toString();
    for (const QString& entry : kept.split(u' ', Qt::SkipEmptyParts)) {
        const int topic = entry.section(u':', 0, 0).toInt();
        const int wanted = entry.section(u':', 1, 1).toInt();
        if (topic > 0 && wanted > 0) {
            quotas[topic] = wanted;
        }
    }
    return quotas;
}

void SaveQuotas(const QString& programFolder, std::int32_t assessmentNum, const Quotas& quotas)
{
    QStringList entries;
    for (const auto& [topic, wanted] : quotas) {
        entries.append(QStringLiteral("%1:%2").arg(topic).arg(wanted));
    }
    put(keyOf(programFolder, quotaName(assessmentNum)), entries.join(u' '));
}

QString UseInWords(const UseSummary& use, const QString& className, std::int64_t now)
{
    if (use.uses == 0) {
        return Words::tr("Not used yet.");
    }
    const QDate day = QDateTime::fromSecsSinceEpoch(use.lastUsed).date();
    const QDate today = QDateTime::fromSecsSinceEpoch(now).date();
    const QString date = QLocale().toString(
        day, day.year() == today.year() ? Words::tr("d MMMM") : Words::tr("d MMMM yyyy"));
    if (use.uses == 1) {
        return className.isEmpty() ? Words::tr("Used once, on %1.").arg(date)
                                   : Words::tr("Used once, on %1 with %2.").arg(date, className);
    }
    if (use.uses == 2) {
        return className.isEmpty()
                   ? Words::tr("Used twice, last on %1.").arg(date)
                   : Words::tr("Used twice, last on %1 with %2.").arg(date, className);
    }
    return className.isEmpty()
               ? Words::tr("Used %n time(s), last on %1.", nullptr, use.uses).arg(date)
               : Words::tr("Used %n time(s), last on %1 with %2.", nullptr, use.uses)
                     .arg(date, className);
}

QString UseInWords(Library& library, const UseBook& book, std::int32_t solIndex, std::int64_t now)
{
    try {
        if (!library.tables().exist()) {
            return {};
        }
        const UseSummary use = book.of(solIndex, UseBook::anybody, now);
        QString className;
        for (const ClassRecord& record : library.pastTests().classes()) {
            className = record.ClassID == use.lastClass ? record.ClassName : className;
        }
        return UseInWords(use, className, now);
    } catch (const DatabaseError&) {
        return {};
    }
}

QStringList ShortTopicsInWords(const std::vector<ShortTopic>& shortTopics,
                               const List1<TopicRecord>& topics)
{
    QStringList sentences;
    for (const ShortTopic& topic : shortTopics) {
        QString name;
        for (const TopicRecord& record : topics) {
            name = record.TopicID == topic.TopicID ? record.Topic : name;
        }
        sentences.append(
            Words::tr("%1 has only %2: %n place(s) free.", nullptr, topic.wanted - topic.available)
                .arg(name, QString::number(topic.available)));
    }
    return sentences;
}

QString OutcomeInWords(Outcome outcome)
{
    switch (outcome) {
    case Outcome::Few:
        return Words::tr("few knew it");
    case Outcome::Half:
        return Words::tr("half knew it");
    case Outcome::Most:
        return Words::tr("most knew it");
    case Outcome::Unknown:
        break;
    }
    return {};
}

} // namespace varnholt
