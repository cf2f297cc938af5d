#include "authoring/filing.h"

#include "pictures/picture_files.h"
#include "store/statements.h"

#include <QDir>
#include <QFileInfo>
#include <QStringList>

#include <unordered_set>

namespace varnholt {

std::vector<FilingChoice> TopicChoices(const ProgramState& state)
{
    std::unordered_set<std::int32_t> withSubtopics;
    for (const SubTopicRecord& record : state.SubTopicList) {
        withSubtopics.insert(record.TopicID);
    }
    std::vector<FilingChoice> choices;
    for (const TopicRecord& record : state.TopicList) {
        if (withSubtopics.contains(record.TopicID)) {
            choices.push_back({record.Topic, record.TopicID});
        }
    }
    return choices;
}

std::vector<FilingChoice> SubtopicChoices(const ProgramState& state, std::int32_t topicId)
{
    std::vector<FilingChoice> choices;
    for (const SubTopicRecord& record : state.SubTopicList) {
        if (record.TopicID == topicId) {
            choices.push_back({record.SubTopic, record.SubtopicNum});
        }
    }
    return choices;
}

int PositionOf(const std::vector<FilingChoice>& choices, std::int32_t key)
{
    std::size_t position = 0;
    for (std::size_t i = 0; i < choices.size(); ++i) {
        if (choices[i].key == key) {
            position = i;
        }
    }
    return static_cast<int>(position);
}

QString SaveObstacle(const SaveReadiness& readiness, const QString& programFolder)
{
    if (readiness.libraryReadOnly) {
        return QStringLiteral("The question library can only be read: nothing can be saved.");
    }
    const QFileInfo files(QFileInfo(NewPictureFile(programFolder, 0)).path());
    if (files.exists() && !(files.isDir() && files.isWritable())) {
        return QStringLiteral("Pictures cannot be saved: the folder %1 takes no files.")
            .arg(QDir::toNativeSeparators(files.filePath()));
    }
    if (!statements::canHold(readiness.answer)) {
        return QStringLiteral("The question cannot be saved while its answer holds an "
                              "apostrophe (').");
    }
    QStringList missing;
    if (!readiness.hasPicture) {
        missing.append(QStringLiteral("a picture"));
    }
    if (readiness.answer.isEmpty()) {
        missing.append(QStringLiteral("an answer"));
    }
    if (!readiness.hasSubtopic) {
        missing.append(QStringLiteral("a subtopic"));
    }
    if (missing.isEmpty()) {
        return {};
    }
    const QString last = missing.takeLast();
    return QStringLiteral("Still needed before saving: %1.")
        .arg(missing.isEmpty()
                 ? last
                 : missing.join(QStringLiteral(", ")) + QStringLiteral(" and ") + last);
}

} // namespace varnholt
