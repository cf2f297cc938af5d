#include "exchange/package_import.h"

#include "exchange/cZip.h"
#include "exchange/in_background.h"
#include "exchange/package_export.h"
#include "exchange/package_fields.h"
#include "files/disk_space.h"
#include "files/placing.h"
#include "files/sync.h"
#include "library/Library.h"
#include "pictures/picture_files.h"
#include "store/statements.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QHash>

#include <algorithm>
#include <filesystem>
#include <utility>
#include <vector>

namespace varnholt {

namespace {

/// For the translator.
class Words
{
    Q_DECLARE_TR_FUNCTIONS(Package)
};

/// The disk takes no more, or has failed: what has been put there goes again.
class DiskError : public Error
{
public:
    using Error::Error;
};

std::filesystem::path native(const QString& path)
{
    return QFileInfo(path).filesystemFilePath();
}

/// Throws what a failed placing means for an import.
void check(std::error_code error, const QString& from, const QString& to)
{
    if (error == std::errc::no_such_file_or_directory) {
        throw Error(Words::tr("The package lacks the picture %1 of one of its questions.")
                        .arg(QFileInfo(from).fileName()));
    }
    if (error) {
        throw DiskError(
            Words::tr("The picture %1 could not be saved (%2).")
                .arg(QDir::toNativeSeparators(to), QString::fromStdString(error.message())));
    }
}

/// Reads a list file record by record, as many as can be counted in 16 bits.
template <typename Record, typename ReadRecord>
void readList(List1<Record>& list, const QString& file, TextEncoding encoding,
              ReadRecord readRecord)
{
    FieldReader reader(file, encoding);
    while (!reader.atEnd()) {
        static_cast<void>(toInt16(list.upperBound() + 1));
        list.append(readRecord(reader));
    }
}

void LoadImportTopics(Package& package, const QString& file, TextEncoding encoding)
{
    readList(package.ImportTopics, file, encoding, [](FieldReader& reader) {
        ImportTopicRecord record;
        record.OldTopicID = reader.number();
        record.Topic = reader.text();
        return record;
    });
}

void LoadImportSubTopics(Package& package, const QString& file, TextEncoding encoding)
{
    readList(package.ImportSubTopics, file, encoding, [](FieldReader& reader) {
        ImportSubTopicRecord record;
        record.OldTopicID = reader.number();
        record.SubTopic = reader.text();
        record.OldSubTopicNum = reader.number();
        return record;
    });
}

void LoadImportQuestions(Package& package, const QString& file, TextEncoding encoding)
{
    readList(package.ImportQuestions, file, encoding, [](FieldReader& reader) {
        ImportQuestionRecord record;
        record.OldSOLIndex = reader.number();
        record.OldTopicID = reader.number();
        record.Answer = reader.text();
        record.OldSubTopicNum = reader.number();
        return record;
    });
}

/// Positions in the plan by the package's keys.
class NewKeys
{
public:
    /// The next position is that key's.
    void append(std::int32_t oldKey) { positions_.insert(oldKey, next_++); }

    [[nodiscard]] std::optional<std::size_t> find(std::int32_t oldKey) const
    {
        const auto found = positions_.constFind(oldKey);
        return found == positions_.constEnd() ? std::nullopt : std::optional(*found);
    }

private:
    QHash<std::int32_t, std::size_t> positions_;
    std::size_t next_ = 0;
};

} // namespace

std::optional<QString> GetAssessmentInfo(const QString& strFile, TextEncoding encoding)
{
    try {
        return FieldReader(strFile, encoding).text();
    } catch (const Error&) {
        return std::nullopt;
    }
}

Package ReadPackage(const QString& folder, TextEncoding encoding)
{
    const auto in = [&](const QString& file) { return folder + u'/' + file; };
    Package package;
    package.AssessmentName = GetAssessmentInfo(in(assessmentInfoFile), encoding);
    if (package.AssessmentName.value_or(QString()).isEmpty()) {
        return package;
    }
    try {
        LoadImportTopics(package, in(topicsFile), encoding);
        LoadImportSubTopics(package, in(subTopicsFile), encoding);
        LoadImportQuestions(package, in(questionsFile), encoding);
    } catch (const Error& error) {
        package.defect = error.message();
    }
    return package;
}

ImportPlan PlanImport(const Package& package, const QString& name)
{
    ImportPlan plan;
    plan.AssessmentName = name;
    plan.defect = package.defect;
    NewKeys topics;
    for (const ImportTopicRecord& record : package.ImportTopics) {
        topics.append(record.OldTopicID);
        plan.topics.push_back({record.Topic});
    }
    const auto GetNewTopicID = [&](std::int32_t intOldID) { return topics.find(intOldID); };
    NewKeys subtopics;
    for (const ImportSubTopicRecord& record : package.ImportSubTopics) {
        subtopics.append(record.OldSubTopicNum);
        plan.subtopics.push_back({GetNewTopicID(record.OldTopicID), record.SubTopic});
    }
    const auto GetNewSubTopicID = [&](std::int32_t intOldID) { return subtopics.find(intOldID); };
    plan.questions.reserve(static_cast<std::size_t>(package.ImportQuestions.upperBound()));
    for (const ImportQuestionRecord& record : package.ImportQuestions) {
        plan.questions.push_back({GetNewTopicID(record.OldTopicID),
                                  GetNewSubTopicID(record.OldSubTopicNum), record.Answer});
    }
    return plan;
}

PackageImport::PackageImport(Library& library, ExchangeProgress progress)
    : library_(library)
    , progress_(std::move(progress))
    , workFolder_(library.programFolder(), QStringLiteral("Import"))
    , pictureFolder_(QFileInfo(NewPictureFile(library.programFolder(), 1)).path())
{
    workFolder_.empty();
}

Package PackageImport::read(const QString& archivePath)
{
    workFolder_.requireEmpty();
    cZip zip;
    zip.setZipFileName(archivePath);
    zip.members = Members::OfPackage;
    zip.progress = progress_;
    zip.UnzipToFolder(workFolder_.path());
    bytesLeft_ = zip.bytesLeft;
    return ReadPackage(workFolder_.path(), zip.comment() == utf8Comment
                                               ? TextEncoding::Utf8
                                               : TextEncoding::Windows1252);
}

bool PackageImport::CheckAssessmentName(const QString& strAssessment)
{
    return !library_.connection().read(statements::SelectAssessmentsNamed(strAssessment)).next();
}

QString PackageImport::inLibrary(std::int32_t SOLIndex) const
{
    return pictureFolder_ + u'/' + pictureMember(SOLIndex);
}

void PackageImport::placePicture(const Package& package, std::size_t question,
                                 std::int32_t SOLIndex)
{
    const auto oldKey = [&](std::size_t i) {
        return package.ImportQuestions(static_cast<int>(i) + 1).OldSOLIndex;
    };
    const std::int32_t OldSOLIndex = oldKey(question);
    const QString source = workFolder_.file(pictureMember(OldSOLIndex));
    const QString target = inLibrary(SOLIndex);
    const std::error_code error = TakeFileTo(native(source), native(target));
    // It may have gone with an earlier question of that key: each gets its own bytes.
    std::size_t twin = error ? 0 : question;
    while (twin < question && oldKey(twin) != OldSOLIndex) {
        ++twin;
    }
    if (twin < question) {
        copyPicture(inLibrary(placed_.at(twin)), target);
    } else {
        check(error, source, target);
    }
    placed_.push_back(SOLIndex);
}

void PackageImport::copyPicture(const QString& from, const QString& to)
{
    const std::int64_t size = QFileInfo(from).size();
    bytesLeft_ -= size;
    if (bytesLeft_ < 0) {
        throw DiskError(Words::tr("The questions of the package share pictures, and the copies "
                                  "would take far more room than a package does."));
    }
    const auto free = FreeBytes(native(pictureFolder_));
    if (free && *free - size < UnpackLimits().diskReserve) {
        throw DiskError(Words::tr("The disk has too little free space for the pictures of "
                                  "this package. Make room on it and try again."));
    }
    check(PlaceFile(native(from), native(to), Placing::Copy), from, to);
}

void PackageImport::syncPictures()
{
    if (placed_.empty()) {
        return;
    }
    std::vector<std::filesystem::path> pictures;
    pictures.reserve(placed_.size());
    for (const auto& picture : placed_) {
        pictures.push_back(native(inLibrary(picture)));
    }
    const std::error_code error = InBackground(
        [&] { return SyncFiles(pictures); }, [this] { progress_(ExchangeWork::Importing, 1, 1); });
    if (error) {
        throw DiskError(Words::tr("The pictures could not be put on the disk (%1).")
                            .arg(QString::fromStdString(error.message())));
    }
}

void PackageImport::returnPictures(const Package& package, bool libraryKeepsThem)
{
    int question = 0;
    for (const std::int32_t key : placed_) {
        const QString member = pictureMember(package.ImportQuestions(++question).OldSOLIndex);
        const auto picture = native(workFolder_.file(member));
        const auto placed = native(inLibrary(key));
        // Should that fail: it was on offer only, the package still has it.
        static_cast<void>(libraryKeepsThem ? PlaceFile(placed, picture, Placing::MayShare)
                                           : TakeFileTo(placed, picture));
    }
    placed_.clear();
}

ImportResult PackageImport::apply(const Package& package, const ImportPlan& plan)
{
    bool diskFailed = false;
    const auto watched = [&](const auto& step) {
        try {
            step();
        } catch (const DiskError&) {
            diskFailed = true;
            throw;
        }
    };
    ImportSteps steps;
    steps.placePicture = [&](std::size_t question, std::int32_t SOLIndex) {
        watched([&] { placePicture(package, question, SOLIndex); });
    };
    steps.syncPictures = [&] { watched([&] { syncPictures(); }); };
    steps.progress = [this](std::size_t done, std::size_t all) {
        progress_(ExchangeWork::Importing, static_cast<std::int64_t>(done),
                  static_cast<std::int64_t>(all));
    };
    placed_.clear();
    ImportResult result;
    try {
        result = library_.apply(plan, steps);
    } catch (const ImportFailure& failure) {
        returnPictures(package, failure.rowsStay && !diskFailed);
        throw;
    } catch (...) {
        returnPictures(package, false);
        throw;
    }
    library_.connection().settle();
    return result;
}

} // namespace varnholt
