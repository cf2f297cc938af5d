#pragma once

#include "library/items.h"

#include <QImage>
#include <QString>

#include <cstdint>
#include <functional>

namespace varnholt {

class Library;

/// What a new question is filed with.
struct NewQuestion
{
    Filing filing;
    QString Answer;
    /// Key of its row once that is in the library, 0 before.
    std::int32_t SOLIndex = 0;
};

/// The steps of making the picture, in their order.
enum class SaveStep
{
    FillBuffer,
    Sample,
    WritePicture
};

/// Called before each step; may throw. Tests make steps fail with it.
using SaveStepObserver = std::function<void(SaveStep)>;

/// Writes a question's picture as a JPEG. The file appears when it is whole; there is none of that
/// name yet. Throws `Error`.
void WriteQuestionPicture(const QString& path, const QImage& picture, int quality,
                          const SaveStepObserver& observer = {});

/// Adds the question with a picture, encoded at quality 75; its key goes into `question`. A
/// question that has a key already is completed: see `Library::addQuestion` and
/// `Library::completeQuestion`, also for what is left when this throws. `question` has a key then
/// if its row is in the library.
void SaveQuestion(Library& library, NewQuestion& question, const QImage& picture,
                  const SaveStepObserver& observer = {});

} // namespace varnholt
