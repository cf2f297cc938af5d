#pragma once

#include "exchange/text_encoding.h"
#include "store/list1.h"

#include <QString>
#include <QStringList>

namespace varnholt {

class Connection;
class MessageBoxes;
class WorkFolder;
class WorkView;
struct ProgramState;
struct Services;

/// Loads the list of assessments for the export window. A failure is reported in two message
/// boxes; what was read until then stays.
void LoadAssessmentInfo(ProgramState& state, Connection& connection, MessageBoxes& messages);

/// What in the current assessment cannot come out of a package as it went in, a sentence for
/// each kind: what the format cannot carry, and what an import refuses.
[[nodiscard]] QStringList PackageProblems(const ProgramState& state);

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

    /// The whole export, with its questions and messages to the user. When success is reported
    /// the package is on the disk.
    End run(WorkView& view);

    // The steps. `folder` is the work folder's name in the program folder. They throw `Error`.
    void WriteTopicsFile(const QString& folder) const;
    void WriteSubTopicsFile(const QString& folder) const;
    void WriteQuestionsFile(const QString& folder) const;
    void WriteAssessmentInfoFile(const QString& folder) const;
    /// Puts the pictures into the work folder and appends their paths to `ExportFiles`. The
    /// first that is missing is reported, sets `ExportAborted` and ends it.
    void CopyPictureFiles(const QString& folder, WorkView& view);

    /// Where the package was saved; empty until then.
    QString savedAs;

    /// Full paths of the files to pack, in packing order.
    List1<QString> ExportFiles;
    bool ExportAborted = false;

private:
    End runIn(const WorkFolder& folder, WorkView& view);
    void collect(const WorkFolder& folder, WorkView& view);
    void pack(WorkView& view, const QString& archivePath);
    /// Throws `Error` when a package at that place would harm the library.
    void requireOutsideLibrary(const QString& archivePath) const;
    [[nodiscard]] QString pathIn(const QString& folder, const QString& file) const;

    Services& services_;
    const ProgramState& state_;
    QString assessmentName_;
    /// Windows-1252 unless a text holds a character that it lacks.
    TextEncoding encoding_;
};

} // namespace varnholt
