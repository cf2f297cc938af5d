#include "exchange/package_export.h"

#include "exchange/cZip.h"
#include "exchange/package_fields.h"
#include "exchange/work_folder.h"
#include "exchange/work_view.h"
#include "pictures/picture_files.h"
#include "store/connection.h"
#include "store/modMain.h"
#include "store/services.h"
#include "store/statements.h"

#include <algorithm>
#include <optional>

namespace varnholt {

namespace {

const QString workFolder = QStringLiteral("Export");

/// True when any text of the current assessment's catalogue satisfies the condition.
template <typename Condition>
bool anyText(const ProgramState& state, Condition condition)
{
    return std::any_of(state.TopicList.begin(), state.TopicList.end(),
                       [&](const TopicRecord& record) { return condition(record.Topic); }) ||
           std::any_of(state.SubTopicList.begin(), state.SubTopicList.end(),
                       [&](const SubTopicRecord& record) { return condition(record.SubTopic); }) ||
           std::any_of(state.QuestionList.begin(), state.QuestionList.end(),
                       [&](const QuestionRecord& record) { return condition(record.Answer); });
}

TextEncoding encodingFor(const ProgramState& state, const QString& assessmentName)
{
    const auto needsMore = [](const QString& text) { return !fitsWindows1252(text); };
    return needsMore(assessmentName) || anyText(state, needsMore) ? TextEncoding::Utf8
                                                                  : TextEncoding::Windows1252;
}

} // namespace

void LoadAssessmentInfo(ProgramState& state, Connection& connection, MessageBoxes& messages)
{
    state.AssessmentList.clear();
    try {
        Recordset rows = connection.read(statements::SelectAssessments());
        const int number = rows.field("AssessmentNum");
        const int name = rows.field("AssessmentName");
        while (rows.next()) {
            state.AssessmentList.append({rows.integer(number), rows.text(name)});
        }
    } catch (const DatabaseError& error) {
        messages.inform(QStringLiteral("Varnholt"), error.message());
        messages.inform(QStringLiteral("Database Error"),
                        QStringLiteral("There was an error loading the assessments."));
    }
}

bool holdsDoubleQuote(const ProgramState& state)
{
    const auto holds = [](const QString& text) { return text.contains(u'"'); };
    const auto current = std::find_if(state.AssessmentList.begin(), state.AssessmentList.end(),
                                      [&](const AssessmentRecord& record) {
                                          return record.AssessmentNum == state.CurrentAssessmentNum;
                                      });
    return anyText(state, holds) ||
           (current != state.AssessmentList.end() && holds(current->AssessmentName));
}

PackageExport::PackageExport(Services& services, const ProgramState& state,
                             const QString& assessmentName)
    : services_(services)
    , state_(state)
    , assessmentName_(assessmentName)
    , encoding_(encodingFor(state, assessmentName))
{}

QString PackageExport::pathIn(const QString& folder, const QString& file) const
{
    return services_.programFolder + u'/' + folder + u'/' + file;
}

void PackageExport::WriteTopicsFile(const QString& folder) const
{
    FieldWriter file(pathIn(folder, topicsFile), encoding_);
    for (const TopicRecord& record : state_.TopicList) {
        file.writeRecord({record.TopicID, record.Topic});
    }
    file.close();
}

void PackageExport::WriteSubTopicsFile(const QString& folder) const
{
    FieldWriter file(pathIn(folder, subTopicsFile), encoding_);
    for (const SubTopicRecord& record : state_.SubTopicList) {
        file.writeRecord({record.TopicID, record.SubTopic, record.SubtopicNum});
    }
    file.close();
}

void PackageExport::WriteQuestionsFile(const QString& folder) const
{
    FieldWriter file(pathIn(folder, questionsFile), encoding_);
    for (const QuestionRecord& record : state_.QuestionList) {
        file.writeRecord({record.SOLIndex, record.TopicID, record.Answer, record.SubtopicNum});
    }
    file.close();
}

void PackageExport::WriteAssessmentInfoFile(const QString& folder) const
{
    FieldWriter file(pathIn(folder, assessmentInfoFile), encoding_);
    file.writeRecord({assessmentName_});
    file.close();
}

void PackageExport::CopyPictureFiles(const QString& folder, WorkView& view)
{
    const int count = state_.QuestionList.upperBound();
    int done = 0;
    for (const QuestionRecord& question : state_.QuestionList) {
        const QString copy = pathIn(folder, pictureMember(question.SOLIndex));
        try {
            PlaceFile(FindPictureFile(services_.programFolder, question.SOLIndex), copy,
                      Placing::MayShare);
        } catch (const Error&) {
            services_.messageBoxes->inform(
                QStringLiteral("File Missing"),
                QStringLiteral("Export was aborted because one of the questions is missing a "
                               "picture file.  Please go to Manage Assessments and delete that "
                               "question."));
            ExportAborted = true;
            return;
        }
        ExportFiles.append(copy);
        view.progress(QStringLiteral("Collecting: "), ++done, count);
    }
}

void PackageExport::collect(WorkView& view)
{
    const BusyStretch busy(view);
    EmptyWorkFolder(services_.programFolder + u'/' + workFolder);
    WriteTopicsFile(workFolder);
    WriteSubTopicsFile(workFolder);
    WriteQuestionsFile(workFolder);
    WriteAssessmentInfoFile(workFolder);
    ExportFiles.clear();
    for (const QString& file : {topicsFile, subTopicsFile, questionsFile, assessmentInfoFile}) {
        ExportFiles.append(pathIn(workFolder, file));
    }
    CopyPictureFiles(workFolder, view);
}

void PackageExport::pack(WorkView& view, const QString& archivePath)
{
    bool packed = false;
    {
        const BusyStretch busy(view);
        view.showBar();
        cZip zip(*services_.messageBoxes);
        zip.setZipFileName(archivePath);
        if (encoding_ == TextEncoding::Utf8) {
            zip.setComment(utf8Comment);
        }
        packed = zip.AddFilesToZip(ExportFiles, view.backLabel(), view.faceLabel());
    }
    if (packed) {
        services_.messageBoxes->inform(QStringLiteral("Export Complete"),
                                       QStringLiteral("Export was successful."));
    }
    view.hideBar();
    // A package saved into the work folder is what the user wanted, not a leftover.
    EmptyWorkFolder(services_.programFolder + u'/' + workFolder, packed ? archivePath : QString());
}

PackageExport::End PackageExport::run(WorkView& view)
{
    try {
        collect(view);
        view.hideBar();
        if (ExportAborted) {
            return End::WindowCloses;
        }
        // A name with slashes would be read as a path.
        QString initialName = assessmentName_;
        initialName.replace(u'/', u'-').replace(u'\\', u'-');
        const std::optional<QString> archivePath =
            services_.fileDialogs->saveFile(QStringLiteral("Zip Files (*.zip)"), initialName);
        if (archivePath) {
            pack(view, *archivePath);
        }
    } catch (const std::exception&) {
        services_.messageBoxes->inform(
            QStringLiteral("Export Error"),
            QStringLiteral("There was an error creating this export file."));
        view.hideBar();
    }
    return End::WindowStays;
}

} // namespace varnholt
