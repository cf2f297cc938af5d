#include "exchange/package_import.h"

#include "exchange/WorkFolder.h"
#include "exchange/cZip.h"
#include "exchange/in_background.h"
#include "exchange/package_export.h"
#include "exchange/package_fields.h"
#include "exchange/work_view.h"
#include "files/disk_space.h"
#include "files/placing.h"
#include "files/sync.h"
#include "pictures/picture_files.h"
#include "store/connection.h"
#include "store/services.h"
#include "store/statements.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <optional>

namespace varnholt {

namespace {

/// The largest key of a table, asked again and again. Making the statement ready costs more
/// than running it, so it is kept: stepped beyond its end it starts anew.
class LargestKey
{
public:
    LargestKey(Connection& connection, const QString& statement, const char* field)
        : rows_(connection.read(statement))
        , field_(rows_.field(field))
    {}

    [[nodiscard]] std::int32_t now()
    {
        std::int32_t key = 0;
        while (rows_.next()) {
            key = rows_.integer(field_);
        }
        return key;
    }

private:
    Recordset rows_;
    int field_;
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
        throw Error(QStringLiteral("The package lacks the picture %1 of one of its questions.")
                        .arg(QFileInfo(from).fileName()));
    }
    if (error) {
        throw DiskError(
            QStringLiteral("The picture %1 could not be saved (%2).")
                .arg(QDir::toNativeSeparators(to), QString::fromStdString(error.message())));
    }
}

} // namespace

PackageImport::PackageImport(Services& services, Connection& connection)
    : services_(services)
    , connection_(connection)
    , pictureFolder_(QFileInfo(NewPictureFile(services.programFolder, 1)).path())
    , bytesLeft_(UnpackLimits().freeBytes)
{}

QString PackageImport::inWorkFolder(const QString& file) const
{
    return services_.programFolder + QStringLiteral("/Import/") + file;
}

QString PackageImport::GetAssessmentInfo(const QString& strFile)
{
    try {
        return FieldReader(strFile, encoding).text();
    } catch (const Error&) {
        services_.messageBoxes->inform(
            QStringLiteral("Import Error"),
            QStringLiteral("This file does not appear to be a compatiable export file.  Import "
                           "will be aborted."));
        return {};
    }
}

bool PackageImport::CheckAssessmentName(const QString& strAssessment)
{
    return !connection_.read(statements::SelectAssessmentsNamed(strAssessment)).next();
}

std::int32_t PackageImport::AddAssessment(const QString& strAssessment)
{
    connection_.execute(statements::InsertAssessment(strAssessment));
    return LargestKey(connection_, statements::SelectMaxAssessmentNum(), "NewAssessmentNum").now();
}

void PackageImport::LoadImportTopics(std::int32_t AssessmentNum, const QString& file)
{
    ImportTopics.clear();
    newTopicIds_.clear();
    TopicsImported = 0;
    LargestKey largest(connection_, statements::SelectMaxTopicID(), "maxvalue");
    FieldReader reader(file, encoding);
    while (!reader.atEnd()) {
        ImportTopicRecord& record = ImportTopics.append({});
        TopicsImported = toInt16(ImportTopics.upperBound());
        record.OldTopicID = reader.number();
        record.Topic = reader.text();
        record.AssessmentNum = AssessmentNum;
        connection_.execute(statements::InsertTopic(record.Topic, AssessmentNum));
        record.MappedTopicID = largest.now();
        newTopicIds_.insert(record.OldTopicID, record.MappedTopicID);
    }
}

void PackageImport::LoadImportSubTopics(std::int32_t AssessmentNum, const QString& file)
{
    ImportSubTopics.clear();
    newSubTopicIds_.clear();
    SubtopicsImported = 0;
    LargestKey largest(connection_, statements::SelectMaxSubTopicNum(), "maxvalue");
    FieldReader reader(file, encoding);
    while (!reader.atEnd()) {
        ImportSubTopicRecord& record = ImportSubTopics.append({});
        SubtopicsImported = toInt16(ImportSubTopics.upperBound());
        record.OldTopicID = reader.number();
        record.SubTopic = reader.text();
        record.OldSubTopicNum = reader.number();
        record.AssessmentNum = AssessmentNum;
        record.MappedTopicID = GetNewTopicID(record.OldTopicID);
        connection_.execute(
            statements::InsertSubtopic(record.MappedTopicID, record.SubTopic, AssessmentNum));
        record.MappedSubTopicNum = largest.now();
        newSubTopicIds_.insert(record.OldSubTopicNum, record.MappedSubTopicNum);
    }
}

void PackageImport::LoadImportQuestions(std::int32_t AssessmentNum, const QString& file)
{
    ImportQuestions.clear();
    placedPictures_ = 0;
    QuestionsImported = 0;
    LargestKey largest(connection_, statements::SelectMaxSOLIndex(), "maxvalue");
    FieldReader reader(file, encoding);
    while (!reader.atEnd()) {
        ImportQuestionRecord& record = ImportQuestions.append({});
        QuestionsImported = toInt16(ImportQuestions.upperBound());
        record.OldSOLIndex = reader.number();
        record.OldTopicID = reader.number();
        record.Answer = reader.text();
        record.OldSubTopicNum = reader.number();
        record.AssessmentNum = AssessmentNum;
        record.MappedTopicID = GetNewTopicID(record.OldTopicID);
        record.MappedSubTopicNum = GetNewSubTopicID(record.OldSubTopicNum);
        connection_.execute(statements::InsertQuestion(record.MappedTopicID, record.Answer,
                                                       AssessmentNum, record.MappedSubTopicNum));
        record.MappedSOLIndex = largest.now();
        placePicture(record);
        if (questionProgress) {
            questionProgress(reader.position(), reader.size());
        }
    }
}

QString PackageImport::inLibrary(const ImportQuestionRecord& question) const
{
    return pictureFolder_ + u'/' + pictureMember(question.MappedSOLIndex);
}

void PackageImport::placePicture(const ImportQuestionRecord& question)
{
    const QString source = inWorkFolder(pictureMember(question.OldSOLIndex));
    const QString target = inLibrary(question);
    const std::error_code error = MoveFile(native(source), native(target));
    // It may have gone with an earlier question of that key: each gets its own bytes.
    const auto twin = error ? std::find_if(ImportQuestions.begin(), ImportQuestions.end(),
                                           [&](const ImportQuestionRecord& earlier) {
                                               return earlier.OldSOLIndex == question.OldSOLIndex;
                                           })
                            : ImportQuestions.end();
    if (error && &*twin != &question) {
        copyPicture(inLibrary(*twin), target);
    } else {
        check(error, source, target);
    }
    ++placedPictures_;
}

void PackageImport::copyPicture(const QString& from, const QString& to)
{
    const std::int64_t size = QFileInfo(from).size();
    bytesLeft_ -= size;
    if (bytesLeft_ < 0) {
        throw DiskError(
            QStringLiteral("The questions of the package share pictures, and the copies "
                           "would take far more room than a package does."));
    }
    const auto free = FreeBytes(native(pictureFolder_));
    if (free && *free - size < UnpackLimits().diskReserve) {
        throw DiskError(QStringLiteral("The disk has too little free space for the pictures of "
                                       "this package. Make room on it and try again."));
    }
    check(PlaceFile(native(from), native(to), Placing::Copy), from, to);
}

void PackageImport::returnPictures(bool libraryKeepsThem)
{
    for (int i = 1; i <= placedPictures_; ++i) {
        const ImportQuestionRecord& question = ImportQuestions(i);
        const auto picture = native(inWorkFolder(pictureMember(question.OldSOLIndex)));
        const auto placed = native(inLibrary(question));
        // Should that fail: it was on offer only, the package still has it.
        static_cast<void>(libraryKeepsThem ? PlaceFile(placed, picture, Placing::MayShare)
                                           : MoveFile(placed, picture));
    }
    placedPictures_ = 0;
}

std::int32_t PackageImport::GetNewTopicID(std::int32_t intOldID) const
{
    return newTopicIds_.value(intOldID, 0);
}

std::int32_t PackageImport::GetNewSubTopicID(std::int32_t intOldID) const
{
    return newSubTopicIds_.value(intOldID, 0);
}

void PackageImport::reportFailure(WorkView& view, const std::exception& failure)
{
    if (const auto* error = dynamic_cast<const Error*>(&failure)) {
        view.explain(error->message());
    }
    services_.messageBoxes->inform(QStringLiteral("Import Error"),
                                   QStringLiteral("There was an error importing the file."));
}

void PackageImport::unpack(const WorkFolder& workFolder, WorkView& view, const QString& archivePath)
{
    const BusyStretch busy(view);
    workFolder.requireEmpty();
    cZip zip(*services_.messageBoxes);
    zip.setZipFileName(archivePath);
    zip.members = Members::OfPackage;
    zip.unzipProgress = [&view](int member, int members) {
        view.progress(QStringLiteral("Unpacking: "), member, members);
    };
    zip.UnzipToFolder(workFolder.path());
    bytesLeft_ = zip.bytesLeft;
    encoding = zip.comment() == utf8Comment ? TextEncoding::Utf8 : TextEncoding::Windows1252;
}

QString PackageImport::askForName(QString name)
{
    const QString title = QStringLiteral("Assessment Name");
    MessageBoxes& messages = *services_.messageBoxes;
    name = messages
               .inputText(title, QStringLiteral("What do you want to call the import assessment?"),
                          name)
               .trimmed();
    while (!name.isEmpty() && !CheckAssessmentName(name)) {
        name = messages
                   .inputText(title,
                              QStringLiteral("That assessment name already exists.  Please enter "
                                             "another assessment name."),
                              name)
                   .trimmed();
    }
    return name;
}

void PackageImport::loadLists(WorkView& view, std::int32_t assessmentNum)
{
    const BusyStretch busy(view);
    const QString importing = QStringLiteral("Importing: ");
    questionProgress = [&view, importing](std::int64_t done, std::int64_t all) {
        view.progress(importing, done, all);
    };
    LoadImportTopics(assessmentNum, inWorkFolder(topicsFile));
    LoadImportSubTopics(assessmentNum, inWorkFolder(subTopicsFile));
    LoadImportQuestions(assessmentNum, inWorkFolder(questionsFile));
    if (placedPictures_ > 0) {
        std::vector<std::filesystem::path> placed;
        for (int i = 1; i <= placedPictures_; ++i) {
            placed.push_back(native(inLibrary(ImportQuestions(i))));
        }
        const std::error_code error = InBackground([&] { return SyncFiles(placed); },
                                                   [&] { view.progress(importing, 1, 1); });
        if (error) {
            throw DiskError(QStringLiteral("The pictures could not be put on the disk (%1).")
                                .arg(QString::fromStdString(error.message())));
        }
    }
}

bool PackageImport::insertAll(WorkView& view, const QString& name)
{
    placedPictures_ = 0;
    Transaction transaction(connection_);
    std::int32_t assessmentNum = 0;
    try {
        assessmentNum = AddAssessment(name);
    } catch (...) {
        transaction.commit();
        throw;
    }
    try {
        loadLists(view, assessmentNum);
        transaction.commit();
    } catch (const std::exception& failure) {
        reportFailure(view, failure);
        bool rowsStay = false;
        try {
            connection_.execute(statements::DeleteAssessment(assessmentNum));
            transaction.commit();
            rowsStay = true;
        } catch (const Error&) {
            // The rows went with the transaction.
        }
        const BusyStretch busy(view);
        returnPictures(rowsStay && !dynamic_cast<const DiskError*>(&failure));
        return false;
    }
    connection_.settle();
    services_.messageBoxes->inform(QStringLiteral("Import Complete"),
                                   QStringLiteral("Import was successful.\r\n\r\n"
                                                  "Topics Imported: %1\r\n"
                                                  "Subtopics Imported: %2\r\n"
                                                  "Questions Imported: %3")
                                       .arg(TopicsImported)
                                       .arg(SubtopicsImported)
                                       .arg(QuestionsImported));
    return true;
}

void PackageImport::runIn(const WorkFolder& workFolder, WorkView& view, QString archivePath)
{
    workFolder.empty();
    if (archivePath.isEmpty()) {
        archivePath = services_.fileDialogs->openFile(QStringLiteral("Zip Files (*.zip)"))
                          .value_or(QString());
    }
    if (archivePath.isEmpty()) {
        return;
    }
    unpack(workFolder, view, archivePath);
    view.hideBar();
    QString name = GetAssessmentInfo(workFolder.file(assessmentInfoFile));
    if (!name.isEmpty()) {
        name = askForName(name);
    }
    if (name.isEmpty() || insertAll(view, name)) {
        workFolder.empty();
    }
}

void PackageImport::run(WorkView& view, const QString& archivePath)
{
    view.explain({});
    try {
        const WorkFolder workFolder(services_.programFolder, QStringLiteral("Import"));
        runIn(workFolder, view, archivePath);
    } catch (const std::exception& failure) {
        reportFailure(view, failure);
    }
    view.hideBar();
}

} // namespace varnholt
