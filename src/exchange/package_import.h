#pragma once

#include "exchange/text_encoding.h"
#include "store/list1.h"

#include <QHash>
#include <QString>

#include <cstdint>
#include <functional>

namespace varnholt {

class Connection;
class FieldReader;
class WorkFolder;
class WorkView;
struct Services;

struct ImportTopicRecord
{
    std::int32_t OldTopicID = 0;
    QString Topic;
    std::int32_t AssessmentNum = 0;
    /// The key the database gave the topic.
    std::int32_t MappedTopicID = 0;
};

struct ImportSubTopicRecord
{
    std::int32_t OldTopicID = 0;
    std::int32_t OldSubTopicNum = 0;
    QString SubTopic;
    std::int32_t AssessmentNum = 0;
    std::int32_t MappedTopicID = 0;
    std::int32_t MappedSubTopicNum = 0;
};

struct ImportQuestionRecord
{
    std::int32_t OldSOLIndex = 0;
    std::int32_t OldTopicID = 0;
    std::int32_t OldSubTopicNum = 0;
    std::int32_t AssessmentNum = 0;
    QString Answer;
    std::int32_t MappedSOLIndex = 0;
    std::int32_t MappedTopicID = 0;
    std::int32_t MappedSubTopicNum = 0;
};

/// The import of one package as a new assessment. Keys are the database's own; those of the
/// package only serve to translate its references.
class PackageImport
{
public:
    PackageImport(Services& services, Connection& connection);

    /// The whole import, with its questions and messages to the user; of the archive at
    /// `archivePath`, or of one that the user is asked for when it is empty.
    ///
    /// The new rows are one transaction: a program killed at any moment leaves nothing of
    /// them. In a failure that is handled the rows and their pictures stay, under an assessment
    /// that is deleted again; the pictures go where it is the disk that failed or is full.
    /// Pictures are on the disk under their new keys before the rows can be seen, and the rows
    /// before success is reported.
    void run(WorkView& view, const QString& archivePath = {});

    // The steps. They throw `Error` unless said otherwise.

    /// The assessment's name as packed. Empty when there is none; a file that is missing or
    /// unreadable has then been reported.
    [[nodiscard]] QString GetAssessmentInfo(const QString& strFile);
    /// True when no available assessment has the name.
    [[nodiscard]] bool CheckAssessmentName(const QString& strAssessment);
    /// The new assessment's `AssessmentNum`.
    [[nodiscard]] std::int32_t AddAssessment(const QString& strAssessment);
    /// Each replaces one list and inserts its rows. More than 32767 records are an error.
    void LoadImportTopics(std::int32_t AssessmentNum, const QString& file);
    void LoadImportSubTopics(std::int32_t AssessmentNum, const QString& file);
    void LoadImportQuestions(std::int32_t AssessmentNum, const QString& file);
    /// The new key of an old one, the last where it came twice; 0 when it is not known.
    [[nodiscard]] std::int32_t GetNewTopicID(std::int32_t intOldID) const;
    [[nodiscard]] std::int32_t GetNewSubTopicID(std::int32_t intOldID) const;

    List1<ImportTopicRecord> ImportTopics;
    List1<ImportSubTopicRecord> ImportSubTopics;
    List1<ImportQuestionRecord> ImportQuestions;
    std::int16_t TopicsImported = 0;
    std::int16_t SubtopicsImported = 0;
    std::int16_t QuestionsImported = 0;

    /// Of the package being read.
    TextEncoding encoding = TextEncoding::Windows1252;
    /// Bytes read of the list of questions, and its size.
    std::function<void(std::int64_t done, std::int64_t all)> questionProgress;

private:
    void runIn(const WorkFolder& workFolder, WorkView& view, QString archivePath);
    void unpack(const WorkFolder& workFolder, WorkView& view, const QString& archivePath);
    [[nodiscard]] QString askForName(QString name);
    /// True when the assessment was imported.
    [[nodiscard]] bool insertAll(WorkView& view, const QString& name);
    void loadLists(WorkView& view, std::int32_t assessmentNum);
    void placePicture(const ImportQuestionRecord& question);
    void copyPicture(const QString& from, const QString& to);
    /// Puts the pictures placed so far back into the work folder; the library keeps its own
    /// unless their keys will be given out again.
    void returnPictures(bool libraryKeepsThem);
    void reportFailure(WorkView& view, const std::exception& failure);
    [[nodiscard]] QString inWorkFolder(const QString& file) const;
    [[nodiscard]] QString inLibrary(const ImportQuestionRecord& question) const;

    Services& services_;
    Connection& connection_;
    QHash<std::int32_t, std::int32_t> newTopicIds_;
    QHash<std::int32_t, std::int32_t> newSubTopicIds_;
    /// Folder of the library's pictures.
    QString pictureFolder_;
    /// How many bytes the pictures of questions that share one may take.
    std::int64_t bytesLeft_;
    /// So many of `ImportQuestions`, from the first, have their picture in the library.
    int placedPictures_ = 0;
};

} // namespace varnholt
