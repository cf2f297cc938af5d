#pragma once

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace varnholt {

struct BenchRow
{
    QString id;
    double value = 0;
    double must = 0;
    /// Not above 0: none.
    double aim = 0;
    QString unit;
    QString peer;
};

inline double median(std::vector<double> values)
{
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Prints the rows as a table and, after "--json FILE", writes them as a list of objects.
/// The exit code of the program.
inline int report(int argc, char** argv, const std::vector<BenchRow>& rows)
{
    QJsonArray list;
    for (const BenchRow& row : rows) {
        std::printf("%-14s %8.2f %-3s must %.2f  aim %s  against %s\n", qPrintable(row.id),
                    row.value, qPrintable(row.unit), row.must,
                    row.aim > 0 ? qPrintable(QString::number(row.aim)) : "-", qPrintable(row.peer));
        QJsonObject object{{QStringLiteral("id"), row.id},
                           {QStringLiteral("value"), row.value},
                           {QStringLiteral("must"), row.must},
                           {QStringLiteral("unit"), row.unit},
                           {QStringLiteral("peer"), row.peer}};
        object.insert(QStringLiteral("aim"), row.aim > 0 ? QJsonValue(row.aim) : QJsonValue());
        list.append(object);
    }
    for (int i = 1; i + 1 < argc; ++i) {
        if (qstrcmp(argv[i], "--json") == 0) {
            QFile file(QString::fromLocal8Bit(argv[i + 1]));
            if (!file.open(QIODevice::WriteOnly) || file.write(QJsonDocument(list).toJson()) < 0) {
                std::fprintf(stderr, "cannot write %s\n", argv[i + 1]);
                return 1;
            }
        }
    }
    return 0;
}

} // namespace varnholt
