#pragma once

#include "exchange/text_encoding.h"
#include "store/list1.h"

#include <QString>

namespace varnholt {

class Connection;
class MessageBoxes;
class WorkView;
struct ProgramState;
struct Services;

/// Loads the list of assessments for the export window. A failure is reported in two message
/// boxes; what was read until then stays.
void LoadAssessmentInfo(ProgramState& state, Connection& connection, MessageBoxes& messages);

/// True when a name or an answer of the current assessment holds a double quote: the package
/// format cannot carry it, and an import would misread it.
[[nodiscard]] bool holdsDoubleQuote(const ProgramState& state);

/// The comment that marks a package whose text files are UTF-8.
inline const QString utf8Comment = QStringLiteral("Text files: UTF-8");

/// The export of the current assessment into one package.
class PackageExport
{
public:
    /// `assessmentName` is what the export window shows.
    PackageExport(Services& services, const ProgramState& state, const QString& assessmentName);

    enum class End
    {
        WindowStays,
        WindowCloses
    };

    /// The whole export, with its questions and messages to the user.
    End run(WorkView& view);

    // The steps. `folder` is the work folder's name in the program folder. They throw `Error`.
    void WriteTopicsFile(const QString& folder) const;
    void WriteSubTopicsFile(const QString& folder) const;
    void WriteQuestionsFile(const QString& folder) const;
    void WriteAssessmentInfoFile(const QString& folder) const;
    /// Puts the pictures into the work folder and appends their paths to `ExportFiles`. The
    /// first that is missing is reported, sets `ExportAborted` and ends it.
    void CopyPictureFiles(const QString& folder, WorkView& view);

    /// Full paths of the files to pack, in packing order.
    List1<QString> ExportFiles;
    bool ExportAborted = false;

private:
    void collect(WorkView& view);
    void pack(WorkView& view, const QString& archivePath);
    [[nodiscard]] QString pathIn(const QString& folder, const QString& file) const;

    Services& services_;
    const ProgramState& state_;
    QString assessmentName_;
    /// Windows-1252 unless a text holds a character that it lacks.
    TextEncoding encoding_;
};

} // namespace varnholt
