#pragma once

#include "pictures/picture_info.h"
#include "store/modMain.h"

#include <QCoreApplication>
#include <QString>

#include <optional>

namespace varnholt {

/// What the library manager browses: the questions of one subtopic, one at a time.
struct QuestionBrowser
{
    Q_DECLARE_TR_FUNCTIONS(QuestionBrowser)

public:
    List1<QuestionRecord> BrowseQuestions;
    /// See `UpdateCount2`.
    std::int32_t QuestionCount = 0;
    /// 1-based position in `BrowseQuestions`; 0 when no question is shown.
    std::int32_t QuestionPosition = 0;

    /// Takes from the catalogue, in its order, the questions of a topic (none without one) that
    /// are filed under a subtopic, or under one that the catalogue does not know, and counts them.
    /// Puts on show the question with the key `wanted` or, where it is not among them, the one at
    /// `orAt` or the last before it; none when there are none.
    void show(const ProgramState& catalogue, std::optional<std::int32_t> topicId,
              std::optional<std::int32_t> subtopicNum, std::int32_t wanted = 0,
              std::int32_t orAt = 1);
    /// Shows no question; the count of the last subtopic stays.
    void hide() { QuestionPosition = 0; }

    /// `QuestionCount` becomes the number of questions to browse.
    void UpdateCount2();

    /// Puts on show the question at a position from 1 to `QuestionCount`.
    void stepTo(std::int32_t position) { QuestionPosition = position; }
    /// One question back or on; at an end the position stays.
    void stepLeft();
    void stepRight();

    /// Throws `std::out_of_range` when none is on show.
    [[nodiscard]] const QuestionRecord& current() const
    {
        return BrowseQuestions(QuestionPosition);
    }
    /// "3 of 12".
    [[nodiscard]] QString positionText() const;
};

/// What stands beside the picture of a question whose own cannot be shown: the reason where the
/// message does not give it, and, where the picture is `borrowed`, that it belongs to the
/// question before.
[[nodiscard]] QString PictureHint(PictureFault fault, bool borrowed);

/// Which of the stepping buttons work.
struct PictureButtons
{
    bool left = false;
    bool right = false;

    bool operator==(const PictureButtons&) const = default;
};

[[nodiscard]] PictureButtons EnabledPictureButtons(std::int32_t questionPosition,
                                                   std::int32_t questionCount);

} // namespace varnholt
