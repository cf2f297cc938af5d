#pragma once

#include <QString>

namespace varnholt {

class PictureCanvas;

/// What is known before a save is tried.
struct SaveReadiness
{
    QString answer;
    bool hasPicture = false;
    bool hasSubtopic = false;
    bool libraryReadOnly = false;
};

/// Why a save would not succeed, in one sentence; empty when nothing stands in its way.
[[nodiscard]] QString SaveObstacle(const SaveReadiness& readiness, const QString& programFolder);

/// What "Crop" would lose, or has lost, because the frame is larger than the page; empty when
/// nothing is lost.
[[nodiscard]] QString FrameHint(const PictureCanvas& canvas);

/// What a save would not store of a canvas larger than the page; empty when it is not.
[[nodiscard]] QString PageHint(const PictureCanvas& canvas);

/// For assistive programs: what is selected, and what the keys do.
[[nodiscard]] QString CanvasDescription(const PictureCanvas& canvas);

} // namespace varnholt
