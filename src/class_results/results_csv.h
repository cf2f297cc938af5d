#pragma once

#include "class_results/ClassResults.h"

#include <QByteArray>
#include <QChar>

namespace varnholt {

/// Texts in rows for a spreadsheet: UTF-8 that says so, one line a row, fields in quotes where they
/// need them. A text that a spreadsheet would take for a formula is made harmless; numbers stay.
[[nodiscard]] QByteArray Csv(const std::vector<QStringList>& rows, QChar separator);

/// What a spreadsheet of this desktop separates fields with.
[[nodiscard]] QChar CsvSeparator();

/// The questions with their uses, how many knew them and their last use for each class; or the
/// subtopics with how many of their questions were used. The first row is the headings.
[[nodiscard]] std::vector<QStringList> QuestionRows(const ClassResults& results);
[[nodiscard]] std::vector<QStringList> SubtopicRows(const ClassResults& results);

/// Puts it all under that name, or leaves what is there as it is. Throws `Error`.
void SaveCsv(const QString& path, const std::vector<QStringList>& rows);

} // namespace varnholt
