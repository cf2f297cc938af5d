#include "exchange/package_export.h"

#include "exchange/WorkFolder.h"
#include "exchange/cZip.h"
#include "exchange/package_fields.h"
#include "exchange/work_view.h"
#include "files/placing.h"
#include "pictures/picture_files.h"
#include "store/catalogue.h"
#include "store/connection.h"
#include "store/library_file.h"
#include "store/modMain.h"
#include "store/services.h"
#include "store/statements.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <limits>
#include <optional>

namespace varnholt {

namespace {

const QString workFolder = QStringLiteral("Export");

/// The first text of the current assessment's catalogue that satisfies the condition.
template <typename Condition>
std::optional<QString> findText(const ProgramState& state, Condition condition)
{
    const auto search = [&](const auto& list, auto text) {
        const auto found = std::find_if(
            list.begin(), list.end(), [&](const auto& record) { return condition(record.*text); });
        return found == list.end() ? std::nullopt : std::optional<QString>((*found).*text);
    };
    std::optional<QString> found = search(state.TopicList, &TopicRecord::Topic);
    if (!found) {
        found = search(state.SubTopicList, &SubTopicRecord::SubTopic);
    }
    return found ? found : search(state.QuestionList, &QuestionRecord::Answer);
}

/// A text as an example in a sentence.
QString shortened(const QString& text)
{
    constexpr qsizetype enough = 40;
    return text.size() > enough ? text.first(enough) + u'…' : text;
}

TextEncoding encodingFor(const ProgramState& state, const QString& assessmentName)
{
    const auto needsMore = [](const QString& text) { return !fitsWindows1252(text); };
    return needsMore(assessmentName) || findText(state, needsMore) ? TextEncoding::Utf8
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

QStringList PackageProblems(const ProgramState& state)
{
    const auto current = std::find_if(state.AssessmentList.begin(), state.AssessmentList.end(),
                                      [&](const AssessmentRecord& record) {
                                          return record.AssessmentNum == state.CurrentAssessmentNum;
                                      });
    const QString name =
        current == state.AssessmentList.end() ? QStringLiteral("?") : current->AssessmentName;
    QStringList problems;

    const auto quoted = [](const QString& text) { return text.contains(u'"'); };
    if (quoted(name) || findText(state, quoted)) {
        problems.append(QStringLiteral(
            "Some names or answers of this assessment hold a double quote (\"). A package cannot "
            "carry it: whoever imports it gets such a text cut short. Change those texts first."));
    }
    if (name.isEmpty()) {
        problems.append(QStringLiteral("This assessment has no name. Nobody can import a package "
                                       "whose assessment has none."));
    }
    const auto refused = [](const QString& text) { return !statements::canHold(text); };
    if (const auto text = findText(state, refused)) {
        problems.append(QStringLiteral("Some names or answers of this assessment hold an "
                                       "apostrophe ('), and nobody can import such a package. "
                                       "Change those texts first, such as: %1")
                            .arg(shortened(*text)));
    }
    const TextEncoding encoding = encodingFor(state, name);
    const auto tooLong = [&](const QString& text) {
        constexpr qsizetype mostBytes = 3; // of a UTF-16 unit
        return text.size() * mostBytes > longestField &&
               encodeText(text, encoding).size() > longestField;
    };
    if (const auto text = tooLong(name) ? name : findText(state, tooLong)) {
        problems.append(QStringLiteral("Some names or answers of this assessment are longer than "
                                       "1 MiB, and nobody can import such a package. Shorten "
                                       "those texts first, such as: %1")
                            .arg(shortened(*text)));
    }
    constexpr int most = std::numeric_limits<std::int16_t>::max();
    if (std::max({state.TopicList.upperBound(), state.SubTopicList.upperBound(),
                  state.QuestionList.upperBound()}) > most) {
        problems.append(QStringLiteral("This assessment has more than 32,767 topics, subtopics or "
                                       "questions. Nobody can import so many; delete some first."));
    }
    return problems;
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
    const auto native = [](const QString& path) { return QFileInfo(path).filesystemFilePath(); };
    const int count = state_.QuestionList.upperBound();
    int done = 0;
    for (const QuestionRecord& question : state_.QuestionList) {
        const QString copy = pathIn(folder, pictureMember(question.SOLIndex));
        const QString picture = FindPictureFile(services_.programFolder, question.SOLIndex);
        if (PlaceFile(native(picture), native(copy), Placing::MayShare)) {
            view.explain(QStringLiteral("The picture of the question with the answer %1 in %2 is "
                                        "missing or cannot be read: %3")
                             .arg(shortened(question.Answer), GetTopicText(state_, question),
                                  QDir::toNativeSeparators(picture)));
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

void PackageExport::collect(const WorkFolder& folder, WorkView& view)
{
    const BusyStretch busy(view);
    folder.empty();
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

void PackageExport::requireOutsideLibrary(const QString& archivePath) const
{
    const auto canonicalFolder = [](const QString& folder) {
        return QFileInfo(folder).canonicalFilePath();
    };
    const QFileInfo chosen(archivePath);
    const QFileInfo target(chosen.exists() ? chosen.canonicalFilePath() : archivePath);
    const QString folder = canonicalFolder(target.absolutePath());
    const QString name = target.fileName();
    const QString library = QFileInfo(LibraryPath(services_.programFolder)).fileName();
    const QString pictures =
        canonicalFolder(QFileInfo(NewPictureFile(services_.programFolder, 1)).path());

    // The library's companions bear its name and something behind it.
    const bool ofLibrary = folder == canonicalFolder(services_.programFolder) &&
                           name.startsWith(library, Qt::CaseInsensitive) &&
                           !name.endsWith(QStringLiteral(".zip"), Qt::CaseInsensitive);
    const bool ofPictures =
        !pictures.isEmpty() && (folder + u'/').startsWith(pictures + u'/', Qt::CaseSensitive);
    const bool ofPackage =
        folder == canonicalFolder(pathIn(workFolder, {})) && !packageMember(name).isEmpty();
    if (ofLibrary || ofPictures || ofPackage) {
        throw Error(QStringLiteral("%1 belongs to your question library, and a package saved there "
                                   "would harm it. Choose another folder or name.")
                        .arg(QDir::toNativeSeparators(archivePath)));
    }
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
        view.explain(zip.reason());
    }
    if (packed) {
        savedAs = archivePath;
        services_.messageBoxes->inform(QStringLiteral("Export Complete"),
                                       QStringLiteral("Export was successful."));
    }
}

PackageExport::End PackageExport::runIn(const WorkFolder& folder, WorkView& view)
{
    collect(folder, view);
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
        requireOutsideLibrary(*archivePath);
        pack(view, *archivePath);
        view.hideBar();
        folder.empty();
    }
    return End::WindowStays;
}

PackageExport::End PackageExport::run(WorkView& view)
{
    view.explain({});
    try {
        const WorkFolder folder(services_.programFolder, workFolder);
        return runIn(folder, view);
    } catch (const std::exception& failure) {
        if (const auto* error = dynamic_cast<const Error*>(&failure)) {
            view.explain(error->message());
        }
        services_.messageBoxes->inform(
            QStringLiteral("Export Error"),
            QStringLiteral("There was an error creating this export file."));
        view.hideBar();
    }
    return End::WindowStays;
}

} // namespace varnholt
