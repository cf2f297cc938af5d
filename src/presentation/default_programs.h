#pragma once

#include "presentation/impress/impress_settings.h"
#include "presentation/powerpoint/powerpoint.h"
#include "store/services.h"

#include <QDateTime>
#include <QString>

#include <functional>

namespace varnholt {

/// What `DefaultPresentationPrograms` is told about the world; the defaults are the real one.
struct PresentationSettings
{
    /// "powerpoint", "impress" or "pptx" to have that one; empty to choose.
    QString program = qEnvironmentVariable("VARNHOLT_PRESENTATION");
    std::function<QDateTime()> now = QDateTime::currentDateTime;
    /// Opens a finished .pptx; false when there is no program for it.
    std::function<bool(const QString& path)> open = &openWithDesktop;
    /// Whether a window of another program would be seen.
    std::function<bool()> hasDisplay = &displayIsThere;
    /// How the office is started; `keepGoing` is filled in here.
    ImpressSettings impress = impressFromEnvironment();

    /// The desktop's program for the file, or an office suite where the desktop knows none;
    /// false also where there is no display to show it on.
    static bool openWithDesktop(const QString& path);
    static bool displayIsThere();
    /// `VARNHOLT_OFFICE_PROFILE` names a folder to keep the office's profile in, apart from
    /// the user's own.
    static ImpressSettings impressFromEnvironment();
};

/// Where there is a display to show it on, PowerPoint if the machine has it, else Impress if it
/// is installed; the .pptx file otherwise. A program that was chosen here but does not start is
/// replaced by the .pptx, which tells why in its notice, because the user is waiting for slides;
/// one that was asked for by name is an `Error`.
class DefaultPresentationPrograms final : public PresentationPrograms
{
public:
    explicit DefaultPresentationPrograms(QString programFolder, PresentationSettings settings = {});

    [[nodiscard]] std::unique_ptr<PresentationProgram> start(SlidesInto into,
                                                             const KeepGoing& keepGoing) override;
    /// Has Impress ready. PowerPoint is not: one that was started and never told to quit would
    /// stay behind.
    [[nodiscard]] std::shared_ptr<void> prepare() override;
    [[nodiscard]] bool canWriteFileInstead() const override;

private:
    [[nodiscard]] std::unique_ptr<PresentationProgram>
    startPptx(const KeepGoing& keepGoing, const QString& insteadBecause = {}) const;
    [[nodiscard]] std::unique_ptr<PresentationProgram>
    startImpress(const KeepGoing& keepGoing) const;
    [[nodiscard]] std::unique_ptr<PresentationProgram>
    startPowerPoint(const KeepGoing& keepGoing) const;

    QString programFolder_;
    PresentationSettings settings_;
    /// Null where there is none; keeps its line to PowerPoint from one build to the next.
    std::unique_ptr<PowerPoint> powerPoint_;
    /// What `prepare` gave out last.
    std::weak_ptr<void> prepared_;
};

} // namespace varnholt
