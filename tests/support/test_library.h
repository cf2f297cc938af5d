#pragma once

#include "store/connection.h"

#include <QImage>
#include <QStringList>
#include <QTemporaryDir>

#include <cstdint>

namespace varnholt::test {

/// A program folder of its own: an empty library made from the real schema, and `Files`. What is
/// put in goes through the database's own command-line client, and so does what is looked at: the
/// program's own store is not asked about itself.
class TestLibrary
{
public:
    TestLibrary();

    [[nodiscard]] QString folder() const { return folder_.path(); }
    [[nodiscard]] QString databasePath() const
    {
        return folder_.filePath(QStringLiteral("Varnholt.mdb"));
    }

    /// Runs SQL in the database's own client; lines of the result, fields joined with '|'.
    QStringList sql(const QString& statements) const;
    /// The single line that a query gives.
    QString value(const QString& query) const;

    // Rows with keys of the database's choosing; the key is returned.
    std::int32_t addAssessment(const QString& name);
    std::int32_t addTopic(std::int32_t assessment, const QString& name);
    std::int32_t addSubTopic(std::int32_t assessment, std::int32_t topic, const QString& name);
    /// With a picture of the given size unless it is empty.
    std::int32_t addQuestion(std::int32_t assessment, std::int32_t topic, std::int32_t subTopic,
                             const QString& answer, QSize picture = {60, 40});

    /// Path under which the picture of a question is stored.
    [[nodiscard]] QString picturePath(std::int32_t solIndex) const;

    /// Adds an assessment of `topics` x `subTopics` x `questions` rows, named "Topic 1", "Subtopic
    /// 1.2" and answered "A1", "A2" and so on; quick enough for many thousands.
    std::int32_t addGenerated(const QString& name, int topics, int subTopics, int questions,
                              bool pictures = false);

private:
    std::int32_t insert(const QString& table, const QString& columns,
                        const QStringList& values) const;

    QTemporaryDir folder_;
};

/// A picture with a pattern that tells pictures apart.
[[nodiscard]] QImage testPicture(QSize size, int seed = 0);

} // namespace varnholt::test
