#pragma once

#include <QJsonObject>
#include <QString>

namespace varnholt {

/// What a teacher asks of her slides beyond the plain ones. At first everything is off, and then
/// the slides are made as they always were.
struct SlideWishes
{
    static constexpr int longestMoveOn = 3600;

    /// Pictures as large as the slide has room under the text, at most twice their own size.
    bool fitPictures = false;
    /// After each question a slide that is the same with the answer at its foot.
    bool answersAfterEach = false;
    /// A title that screen readers find, reading order, language, descriptions of pictures.
    bool titles = false;
    bool answersInNotes = false;
    /// Seconds, 1 to `longestMoveOn`, after which a question or an answer gives way to the next
    /// slide; 0 for never.
    int moveOnSeconds = 0;
    /// The answer key in as many columns as there is room for.
    bool keyColumns = false;

    /// Empty when everything is off; only what is on stands in it.
    [[nodiscard]] QJsonObject toJson() const;
    /// What is not there, or makes no sense, is off.
    [[nodiscard]] static SlideWishes fromJson(const QJsonObject& object);
    /// One line for the window: "Fitted pictures, answers after each question."; empty when
    /// everything is off.
    [[nodiscard]] QString inWords() const;
    [[nodiscard]] bool any() const { return *this != SlideWishes(); }

    friend bool operator==(const SlideWishes&, const SlideWishes&) = default;
};

} // namespace varnholt
