#pragma once

#include "exchange/WorkFolder.h"
#include "exchange/exchange_progress.h"
#include "exchange/text_encoding.h"
#include "library/ImportPlan.h"
#include "store/list1.h"

#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace varnholt {

class Library;

struct ImportTopicRecord
{
    std::int32_t OldTopicID = 0;
    QString Topic;
};

struct ImportSubTopicRecord
{
    std::int32_t OldTopicID = 0;
    std::int32_t OldSubTopicNum = 0;
    QString SubTopic;
};

struct ImportQuestionRecord
{
    std::int32_t OldSOLIndex = 0;
    std::int32_t OldTopicID = 0;
    std::int32_t OldSubTopicNum = 0;
    QString Answer;
};

/// What an unpacked package says. The keys are those of the library it comes from and only serve to
/// translate its references.
struct Package
{
    /// None when the package has no readable name and so is none.
    std::optional<QString> AssessmentName;
    List1<ImportTopicRecord> ImportTopics;
    List1<ImportSubTopicRecord> ImportSubTopics;
    List1<ImportQuestionRecord> ImportQuestions;
    /// Why the lists could be read no further than they go here; empty when they are whole.
    QString defect;
};

/// The assessment's name as packed; none when the file is missing or unreadable.
[[nodiscard]] std::optional<QString> GetAssessmentInfo(const QString& strFile,
                                                       TextEncoding encoding);

/// Reads the text files of a package that stands unpacked in a folder. The lists are read only
/// where there is a name. More than 32767 records in one list are a defect.
[[nodiscard]] Package ReadPackage(const QString& folder, TextEncoding encoding);

/// What importing the package under a name is going to do. Where an old key came twice the last one
/// counts.
[[nodiscard]] ImportPlan PlanImport(const Package& package, const QString& name);

/// The import of one package as a new assessment: read it, plan, apply. Everything throws `Error`
/// and asks nobody anything.
class PackageImport
{
public:
    /// Takes the work folder and empties it.
    PackageImport(Library& library, ExchangeProgress progress);

    /// Unpacks the archive and reads it.
    [[nodiscard]] Package read(const QString& archivePath);

    /// True when no available assessment has the name.
    [[nodiscard]] bool CheckAssessmentName(const QString& strAssessment);

    /// Adds the package that was read.
    ///
    /// The new rows are one transaction: a program killed at any moment leaves nothing of
    /// them. In a failure that is handled the rows and their pictures stay, under an assessment
    /// that is deleted again; the pictures go where it is the disk that failed or is full.
    /// Pictures are on the disk under their new keys before the rows can be seen, and the rows
    /// before this returns.
    ImportResult apply(const Package& package, const ImportPlan& plan);

    /// Empties the work folder; after a failed `apply` it is better kept.
    void cleanUp() const { workFolder_.empty(); }

private:
    void placePicture(const Package& package, std::size_t question, std::int32_t SOLIndex);
    void copyPicture(const QString& from, const QString& to);
    void syncPictures();
    /// Puts the pictures placed so far back into the work folder; the library keeps its own
    /// unless their keys will be given out again.
    void returnPictures(const Package& package, bool libraryKeepsThem);
    [[nodiscard]] QString inLibrary(std::int32_t SOLIndex) const;

    Library& library_;
    ExchangeProgress progress_;
    WorkFolder workFolder_;
    /// Folder of the library's pictures.
    QString pictureFolder_;
    /// How many bytes the pictures of questions that share one may take.
    std::int64_t bytesLeft_ = 0;
    /// The new keys of the questions, from the first, that have their picture in the library.
    std::vector<std::int32_t> placed_;
};

} // namespace varnholt
