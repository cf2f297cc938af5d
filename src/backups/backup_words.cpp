#include "backups/backup_words.h"

#include <QDateTime>
#include <QLocale>

namespace varnholt {

QString BackupWords::when(std::int64_t time, std::int64_t now)
{
    const QLocale locale;
    const QDateTime at = QDateTime::fromSecsSinceEpoch(time);
    const QString clock = locale.toString(at.time(), QLocale::ShortFormat);
    switch (at.date().daysTo(QDateTime::fromSecsSinceEpoch(now).date())) {
    case 0:
        return tr("Today %1").arg(clock);
    case 1:
        return tr("Yesterday %1").arg(clock);
    default:
        return tr("%1, %2").arg(locale.toString(at.date(), QLocale::LongFormat), clock);
    }
}

QString BackupWords::size(std::int64_t bytes)
{
    return QLocale().formattedDataSize(bytes, 1, QLocale::DataSizeTraditionalFormat);
}

QString BackupWords::number(std::int64_t value)
{
    return QLocale().toString(static_cast<qlonglong>(value));
}

QString BackupWords::newest(const BackupInfo& backup, std::int64_t now)
{
    return tr("The newest good backup (%1) holds %n question(s).", nullptr,
              static_cast<int>(backup.questions))
        .arg(when(backup.madeAt, now));
}

QStringList BackupWords::sentences(const BackupPlan& plan)
{
    QStringList result;
    const auto add = [&](const QString& sentence, int count) {
        if (count > 0) {
            result.append(sentence);
        }
    };
    const int others = plan.questionsToTrash - plan.newerQuestionsToTrash;
    add(tr("%n question(s) come back.", nullptr, plan.questionsBack), plan.questionsBack);
    add(tr("%n answer(s) change.", nullptr, plan.answersChange), plan.answersChange);
    add(tr("%n question(s) move to another place.", nullptr, plan.filingsChange),
        plan.filingsChange);
    add(tr("%n newer question(s) go to the trash.", nullptr, plan.newerQuestionsToTrash),
        plan.newerQuestionsToTrash);
    add(tr("%n question(s) that had been brought back go to the trash again.", nullptr, others),
        others);
    add(tr("%n assessment(s), topic(s) or subtopic(s) come, go or change their names.", nullptr,
           plan.placesChange),
        plan.placesChange);
    add(tr("%n missing picture(s) are put back.", nullptr, plan.picturesMissing),
        plan.picturesMissing);
    add(tr("%n picture(s) change; the present ones are kept beside them.", nullptr,
           plan.picturesChange),
        plan.picturesChange);
    if (result.isEmpty()) {
        result.append(tr("Nothing changes: the library is as it was then."));
    }
    return result;
}

} // namespace varnholt
