#pragma once

#include "presentation/impress/impress_settings.h"
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
    /// Called while something outside is waited for. Must not throw.
    std::function<void()> alive = &processWaitingEvents;

    /// Whether a window of another program would be seen.
    std::function<bool()> hasDisplay = &displayIsThere;
    /// How the office is started; `alive` and `keepWaiting` are filled in here.
    ImpressSettings impress = impressFromEnvironment();

    /// The desktop's program for the file; false also where there is no display to show it on.
    static bool openWithDesktop(const QString& path);
    /// Lets windows repaint and dialogs react.
    static void processWaitingEvents();
    static bool displayIsThere();
    /// `VARNHOLT_OFFICE_PROFILE` names a folder to keep the office's profile in, apart from
    /// the user's own.
    static ImpressSettings impressFromEnvironment();
};

/// PowerPoint where the machine has it, else Impress where it is installed and there is a
/// display to show it on, else the .pptx file. An Impress that was chosen here but does not
/// start is replaced by the .pptx after a message, because the user is waiting for slides; one
/// that was asked for by name is an `Error`.
class DefaultPresentationPrograms final : public PresentationPrograms
{
public:
    /// `messages` must outlive this object and every program it starts.
    DefaultPresentationPrograms(MessageBoxes& messages, QString programFolder,
                                PresentationSettings settings = {});

    [[nodiscard]] std::unique_ptr<PresentationProgram> start() override;

private:
    [[nodiscard]] std::unique_ptr<PresentationProgram> startPptx() const;
    [[nodiscard]] std::unique_ptr<PresentationProgram> startImpress() const;

    MessageBoxes& messages_;
    QString programFolder_;
    PresentationSettings settings_;
};

} // namespace varnholt
