#pragma once

#include "exchange/WorkFolder.h"
#include "exchange/cZip.h"
#include "exchange/exchange_progress.h"
#include "exchange/text_encoding.h"
#include "store/list1.h"

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include <optional>

namespace varnholt {

class Connection;
struct ProgramState;

/// Loads the list of assessments for the export window. Throws `DatabaseError`; what was read
/// until then stays.
void LoadAssessmentInfo(ProgramState& state, Connection& connection);

/// What in the current assessment cannot come out of a package as it went in, a sentence for
/// each kind: what the format cannot carry, and what an import refuses.
[[nodiscard]] QStringList PackageProblems(const ProgramState& state);

/// The comment that marks a package whose text files are UTF-8.
inline const QString utf8Comment = QStringLiteral("Text files: UTF-8");

/// The export of the current assessment into one package. Everything throws `Error` and asks
/// nobody anything.
class PackageExport
{
    Q_DECLARE_TR_FUNCTIONS(PackageExport)

public:
    /// `assessmentName` is what the export window shows. Takes the work folder.
    PackageExport(const QString& programFolder, const ProgramState& state,
                  const QString& assessmentName, ExchangeProgress progress);

    /// Puts everything that is to be packed into the work folder, emptied before. False when a
    /// picture is missing: see `ExportAborted`.
    [[nodiscard]] bool collect();
    /// A name for the package that no file dialog reads as a path.
    [[nodiscard]] QString initialName() const;
    /// Packs what was collected; then the package is on the disk. None when that worked. Refuses
    /// a place where the package would harm the library.
    [[nodiscard]] std::optional<ZipFailure> pack(const QString& archivePath);
    void cleanUp() const { workFolder_.empty(); }

    // The steps of `collect`. `folder` is the work folder's name in the program folder.
    void WriteTopicsFile(const QString& folder) const;
    void WriteSubTopicsFile(const QString& folder) const;
    void WriteQuestionsFile(const QString& folder) const;
    void WriteAssessmentInfoFile(const QString& folder) const;
    /// Puts the pictures into the work folder and appends their paths to `ExportFiles`. The
    /// first that is missing sets `ExportAborted` and ends it.
    void CopyPictureFiles(const QString& folder);

    /// Full paths of the files to pack, in packing order.
    List1<QString> ExportFiles;
    bool ExportAborted = false;
    /// Of which question the picture is missing, a sentence.
    QString reason;

private:
    /// Throws `Error` when a package at that place would harm the library.
    void requireOutsideLibrary(const QString& archivePath) const;
    [[nodiscard]] QString pathIn(const QString& folder, const QString& file) const;

    QString programFolder_;
    const ProgramState& state_;
    QString assessmentName_;
    ExchangeProgress progress_;
    /// Windows-1252 unless a text holds a character that it lacks.
    TextEncoding encoding_;
    WorkFolder workFolder_;
};

} // namespace varnholt
