#include "class_results/results_csv.h"

#include "selection/draw_wishes.h"
#include "store/save_file.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QLocale>

namespace varnholt {

namespace {

class Words
{
    Q_DECLARE_TR_FUNCTIONS(varnholt::ClassResults)
};

QString field(QString text, QChar separator)
{
    bool number = false;
    text.toDouble(&number);
    if (!number && !text.isEmpty() && QStringLiteral("=+-@\t\r").contains(text.front())) {
        text.prepend(u'\'');
    }
    if (!text.contains(separator) && !text.contains(u'"') && !text.contains(u'\n') &&
        !text.contains(u'\r')) {
        return text;
    }
    return u'"' + text.replace(u'"', QStringLiteral("\"\"")) + u'"';
}

QStringList namesOf(const ClassResults& results)
{
    QStringList names{Words::tr("All")};
    for (const ClassRecord& record : results.classes) {
        names.append(record.ClassName);
    }
    return names;
}

} // namespace

QByteArray Csv(const std::vector<QStringList>& rows, QChar separator)
{
    QString text(QChar::ByteOrderMark);
    for (const QStringList& row : rows) {
        QStringList fields;
        for (const QString& value : row) {
            fields.append(field(value, separator));
        }
        text += fields.join(separator) + QStringLiteral("\r\n");
    }
    return text.toUtf8();
}

QChar CsvSeparator()
{
    return QLocale().decimalPoint() == QStringLiteral(",") ? u';' : u',';
}

std::vector<QStringList> QuestionRows(const ClassResults& results)
{
    const QStringList names = namesOf(results);
    QStringList headings{Words::tr("Answer"), Words::tr("Topic"), Words::tr("Subtopic")};
    for (const QString& name : names) {
        headings << Words::tr("%1: times used").arg(name)
                 << Words::tr("%1: how many knew it").arg(name)
                 << Words::tr("%1: last used").arg(name);
    }
    headings.append(Words::tr("Hard for all"));
    std::vector<QStringList> rows{headings};
    for (const QuestionResult& question : results.questions) {
        QStringList row{question.answer, question.topic, question.subtopic};
        for (qsizetype i = 0; i < names.size(); ++i) {
            const UseSummary use = question.uses.empty()
                                       ? UseSummary()
                                       : question.uses.at(static_cast<std::size_t>(i));
            row << QString::number(use.uses) << OutcomeInWords(use.outcome)
                << (use.uses > 0
                        ? QDateTime::fromSecsSinceEpoch(use.lastUsed).date().toString(Qt::ISODate)
                        : QString());
        }
        row.append(question.hardForAll ? Words::tr("yes") : QString());
        rows.push_back(row);
    }
    return rows;
}

std::vector<QStringList> SubtopicRows(const ClassResults& results)
{
    std::vector<QStringList> rows{
        QStringList{Words::tr("Topic"), Words::tr("Subtopic"), Words::tr("Questions")} +
        namesOf(results)};
    for (const SubtopicCoverage& subtopic : results.subtopics) {
        QStringList row{subtopic.topic, subtopic.subtopic, QString::number(subtopic.questions)};
        for (const int used : subtopic.used) {
            row.append(QString::number(used));
        }
        rows.push_back(row);
    }
    return rows;
}

void SaveCsv(const QString& path, const std::vector<QStringList>& rows)
{
    SaveFile(path, Csv(rows, CsvSeparator()));
}

} // namespace varnholt
