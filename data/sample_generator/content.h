#pragma once

#include <QString>
#include <QStringList>

#include <vector>

namespace varnholt {

/// One line of a question: its keyword, the text after it, and the indented lines below it
/// (the rows of a table, the commands of a figure).
struct ContentLine
{
    QString keyword;
    QString text;
    QStringList body;
};

/// One question as the content files describe it (notation: data/sample/README.md).
struct SampleQuestion
{
    int key = 0; ///< SOLIndex: 1 for the first question of the first file, then counted on.
    QString topic;
    QString subtopic;
    QString answer;
    QStringList options;            ///< Empty, or the four texts of the options A to D.
    QStringList value;              ///< Expressions that the answer must equal.
    QStringList zero;               ///< Expressions that the answer's values must make zero.
    QString where;                  ///< File and line, for messages.
    std::vector<ContentLine> lines; ///< What is drawn, in order.
};

struct SampleContent
{
    QString assessment;
    std::vector<SampleQuestion> questions; ///< In the order of their keys.
};

/// Reads `assessment.txt` in `folder` and the topic files that it lists, in that order.
/// Throws std::runtime_error naming file and line when something cannot be understood.
SampleContent readSampleContent(const QString& folder);

} // namespace varnholt
