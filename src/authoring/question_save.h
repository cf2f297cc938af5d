#pragma once

#include <QString>

#include <cstdint>
#include <functional>

namespace varnholt {

class Connection;
class PictureCanvas;

/// What a new question is filed with.
struct NewQuestion
{
    std::int32_t AssessmentNum = 0;
    std::int32_t TopicID = 0;
    std::int32_t SubtopicNum = 0;
    QString Answer;
    /// Key of its row once that is in the library, 0 before.
    std::int32_t SOLIndex = 0;
};

/// The steps of a save, in their order.
enum class SaveStep
{
    InsertRow,
    ReadKey,
    SetOldPictureAside,
    RenderPage,
    FillBuffer,
    Sample,
    WritePicture,
    Commit
};

/// Called before each step; may throw. Tests make steps fail with it.
using SaveStepObserver = std::function<void(SaveStep)>;

/// Inserts the row, reads its key back into `question`, and encodes the canvas's page at
/// quality 75 to `Files/<key>.jpg`. Throws when a step fails (an `Error` says why):
///
/// - The row and the picture become visible together: a program killed in between leaves
///   neither, and at most a picture file without a row.
/// - A handled failure after the insert leaves the row, without a picture. `question` has its
///   key then, and another try with it completes this row.
/// - A file that has the new key's name already belongs to no question of this library (keys
///   are never used twice; a library put back from a backup comes to this). It is renamed to
///   "<name>.bak", so that it is neither lost nor shown as the new question's picture. Where
///   that fails, or the key cannot be read to look for it, the row goes too.
void SaveQuestion(Connection& connection, const QString& programFolder, NewQuestion& question,
                  PictureCanvas& canvas, const SaveStepObserver& observer = {});

} // namespace varnholt
