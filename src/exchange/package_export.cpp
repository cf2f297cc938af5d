#include "exchange/package_export.h"

#include "exchange/package_fields.h"
#include "files/placing.h"
#include "pictures/picture_files.h"
#include "store/catalogue.h"
#include "store/connection.h"
#include "store/file_name.h"
#include "store/library_file.h"
#include "store/modMain.h"
#include "store/statements.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <limits>
#include <utility>

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

void LoadAssessmentInfo(ProgramState& state, Connection& connection)
{
    state.AssessmentList.clear();
    Recordset rows = connection.read(statements::SelectAssessments());
    const int number = rows.field("AssessmentNum");
    const int name = rows.field("AssessmentName");
    while (rows.next()) {
        state.AssessmentList.append({rows.integer(number), rows.text(name)});
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
        problems.append(PackageExport::tr(
            "Some names or answers of this assessment hold a double quote (\"). A package cannot "
            "carry it: whoever imports it gets such a text cut short. Change those texts first."));
    }
    if (name.isEmpty()) {
        problems.append(
            PackageExport::tr("This assessment has no name. Nobody can import a package "
                              "whose assessment has none."));
    }
    const auto refused = [](const QString& text) { return !statements::canHold(text); };
    if (const auto text = findText(state, refused)) {
        problems.append(PackageExport::tr("Some names or answers of this assessment hold an "
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
        problems.append(
            PackageExport::tr("Some names or answers of this assessment are longer than "
                              "1 MiB, and nobody can import such a package. Shorten "
                              "those texts first, such as: %1")
                .arg(shortened(*text)));
    }
    constexpr int most = std::numeric_limits<std::int16_t>::max();
    if (std::max({state.TopicList.upperBound(), state.SubTopicList.upperBound(),
                  state.QuestionList.upperBound()}) > most) {
        problems.append(
            PackageExport::tr("This assessment has more than 32,767 topics, subtopics or "
                              "questions. Nobody can import so many; delete some first."));
    }
    return problems;
}

PackageExport::PackageExport(const QString& programFolder, const ProgramState& state,
                             const QString& assessmentName, ExchangeProgress progress)
    : programFolder_(programFolder)
    , state_(state)
    , assessmentName_(assessmentName)
    , progress_(std::move(progress))
    , encoding_(encodingFor(state, assessmentName))
    , workFolder_(programFolder, workFolder)
{}

QString PackageExport::pathIn(const QString& folder, const QString& file) const
{
    return programFolder_ + u'/' + folder + u'/' + file;
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

void PackageExport::CopyPictureFiles(const QString& folder)
{
    const auto native = [](const QString& path) { return QFileInfo(path).filesystemFilePath(); };
    const int count = state_.QuestionList.upperBound();
    int done = 0;
    for (const QuestionRecord& question : state_.QuestionList) {
        const QString copy = pathIn(folder, pictureMember(question.SOLIndex));
        const QString picture = FindPictureFile(programFolder_, question.SOLIndex);
        if (PlaceFile(native(picture), native(copy), Placing::MayShare)) {
            reason = PackageExport::tr("The picture of the question with the answer %1 in %2 is "
                                       "missing or cannot be read: %3")
                         .arg(shortened(question.Answer), GetTopicText(state_, question),
                              QDir::toNativeSeparators(picture));
            ExportAborted = true;
            return;
        }
        ExportFiles.append(copy);
        progress_(ExchangeWork::Collecting, ++done, count);
    }
}

bool PackageExport::collect()
{
    workFolder_.empty();
    WriteTopicsFile(workFolder);
    WriteSubTopicsFile(workFolder);
    WriteQuestionsFile(workFolder);
    WriteAssessmentInfoFile(workFolder);
    ExportFiles.clear();
    for (const QString& file : {topicsFile, subTopicsFile, questionsFile, assessmentInfoFile}) {
        ExportFiles.append(pathIn(workFolder, file));
    }
    CopyPictureFiles(workFolder);
    return !ExportAborted;
}

QString PackageExport::initialName() const
{
    return FileNameHere(assessmentName_);
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
    const QString library = QFileInfo(LibraryPath(programFolder_)).fileName();
    const QString pictures = canonicalFolder(QFileInfo(NewPictureFile(programFolder_, 1)).path());

    // The library's companions bear its name and something behind it.
    const bool ofLibrary = folder == canonicalFolder(programFolder_) &&
                           name.startsWith(library, Qt::CaseInsensitive) &&
                           !name.endsWith(QStringLiteral(".zip"), Qt::CaseInsensitive);
    const bool ofPictures =
        !pictures.isEmpty() && (folder + u'/').startsWith(pictures + u'/', Qt::CaseSensitive);
    const bool ofPackage =
        folder == canonicalFolder(pathIn(workFolder, {})) && !packageMember(name).isEmpty();
    if (ofLibrary || ofPictures || ofPackage) {
        throw Error(
            PackageExport::tr("%1 belongs to your question library, and a package saved there "
                              "would harm it. Choose another folder or name.")
                .arg(QDir::toNativeSeparators(archivePath)));
    }
}

std::optional<ZipFailure> PackageExport::pack(const QString& archivePath)
{
    requireOutsideLibrary(archivePath);
    cZip zip;
    zip.setZipFileName(archivePath);
    zip.progress = progress_;
    if (encoding_ == TextEncoding::Utf8) {
        zip.setComment(utf8Comment);
    }
    return zip.AddFilesToZip(ExportFiles) ? std::nullopt : std::optional(zip.failure());
}

} // namespace varnholt
