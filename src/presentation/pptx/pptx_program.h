#pragma once

#include "presentation/pptx/pptx_draft.h"
#include "store/services.h"

#include <QDateTime>

#include <functional>

namespace varnholt {

/// Where a .pptx goes and what happens to it then. Callbacks may be empty.
struct PptxSettings
{
    /// The folder `Presentations` is made in it when it is not there.
    QString programFolder;
    std::function<QDateTime()> now;
    /// Opens the finished file with the desktop's program for it; false when there is none.
    std::function<bool(const QString& path)> open;
    /// Why the slides go to a file although another program was wanted, a whole sentence; empty
    /// when none was.
    QString insteadBecause;
    KeepGoing keepGoing;
};

/// The back end that needs no presentation program: a document in memory which `finish`
/// writes as "<name>.pptx", or "Varnholt <date> <time>.pptx" where it has no name, under a
/// temporary name until it is whole, and opens. A presentation without slides is not written.
class PptxProgram final : public PptxDraft
{
public:
    explicit PptxProgram(PptxSettings settings);
    ~PptxProgram() override;

    /// Throws when nothing can be written to the folder, before any work is done.
    void addPresentation() override;
    void finish() override;
    [[nodiscard]] QString notice() const override { return notice_; }

    /// Where the file was written; empty before `finish` and when nothing was.
    [[nodiscard]] QString writtenPath() const { return writtenPath_; }

private:
    [[nodiscard]] QDateTime now() const;
    QString giveFinalName();

    PptxSettings settings_;
    QString folder_;
    /// The name the file is written under.
    QString partPath_;
    QString writtenPath_;
    QString notice_;
};

} // namespace varnholt
