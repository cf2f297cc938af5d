#pragma once

#include "library/UseBook.h"
#include "show/ShowClock.h"
#include "show/show_wishes.h"
#include "store/modMain.h"

#include <QRectF>
#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace varnholt {

class Clock;

/// A question to be shown.
struct ShowItem
{
    QuestionRecord question;
    QString topicText;
    /// Path of its picture, whether it is there or not.
    QString picture;
};

/// A test to be shown.
struct ShowTest
{
    /// The topic stands above each question.
    bool topicLine = true;
    /// At least one.
    std::vector<ShowItem> items;
    /// What can come in the place of one of them, in this order.
    std::vector<QuestionRecord> spares;
    /// Makes a question to be shown of a spare.
    std::function<ShowItem(const QuestionRecord&)> take;
};

/// All that the pupils see. The answer is in it only while it is shown.
struct PupilsView
{
    enum class Cover
    {
        None,
        Black,
        White
    };

    struct Answer
    {
        int number = 0;
        QString text;

        friend bool operator==(const Answer&, const Answer&) = default;
    };

    Cover cover = Cover::None;
    /// Of the question, from 1; 0 on a page of answers.
    int number = 0;
    /// Empty without the topic line.
    QString topic;
    QString picture;
    /// Empty while it is not shown.
    QString answer;
    /// On a page of answers.
    std::vector<Answer> answers;
    std::optional<ClockFace> clock;
    /// What of the picture is to be seen, as parts of its width and height; null for all of it.
    QRectF zoom;
    /// Words for the teacher where this window is hers as well; else empty.
    QString note;

    friend bool operator==(const PupilsView&, const PupilsView&) = default;
};

/// A test shown in class: its steps, and what a teacher does with them. Without windows; what it
/// shows is asked for after each call.
///
/// A digit waits a moment: 1, 2 and 3 alone say how many knew the question, at once when another
/// key comes, and any digits with `enter` behind them are the number of a question to go to.
class Show
{
public:
    /// Why something that was asked for did not happen.
    enum class Note
    {
        None,
        NoSuchQuestion,
        NoOtherQuestion,
        AtTheEnd,
        AtTheStart
    };

    /// The clock tells how time passes; it outlives the show.
    Show(ShowTest test, ShowWishes wishes, const Clock& clock);

    /// The next step: with "After each question" first the answer. While a colour covers the screen
    /// this only takes it away, and so does `back`.
    void next();
    /// The question before, without its answer, or the same one without it.
    void back();
    /// The question of a number from 1.
    void goTo(int number);
    /// The last question: not the answers behind it.
    void goToEnd();
    /// Shows the answer, or hides it again.
    void answer();
    void toggleClock();
    void stretch(int seconds);
    /// Covers the screen with a colour, or uncovers it.
    void cover(PupilsView::Cover colour);
    /// Shows a part of the picture, in parts of its width and height.
    void zoomTo(const QRectF& part);
    /// Makes what is seen larger (above 1) or smaller, with the point staying where it is.
    void zoomAt(const QPointF& point, double factor);
    /// Another question in the place of this one, which is left out: the nearest of the spares.
    void swap();
    /// Says how many knew this question, and moves on to the next.
    void mark(Outcome outcome);
    void digit(int digit);
    void enter();
    /// Takes back digits, else the colour, else the zoom; false when there is nothing of them.
    bool takeBack();

    /// Lets time pass, for the clock and for digits that wait; true when something has changed. To
    /// be called several times a second.
    bool pass();

    [[nodiscard]] PupilsView pupilsView() const;

    [[nodiscard]] int questions() const { return static_cast<int>(test_.items.size()); }
    /// The question of a position from 1.
    [[nodiscard]] const ShowItem& item(int position) const;
    [[nodiscard]] Outcome outcome(int position) const;
    /// The position of the question on show, from 1; none on a page of answers.
    [[nodiscard]] std::optional<int> position() const;
    /// The page of answers on show and how many there are, from 1.
    [[nodiscard]] int page() const { return at_ - questions() + 1; }
    [[nodiscard]] int pages() const;
    [[nodiscard]] bool isAnswerShown() const { return answerShown_; }
    [[nodiscard]] bool isOnLastStep() const;
    [[nodiscard]] bool canSwap() const { return position() && !test_.spares.empty(); }
    /// The digits that wait.
    [[nodiscard]] const QString& typed() const { return typed_; }
    /// Of the last call.
    [[nodiscard]] Note note() const { return note_; }

    static constexpr int answersPerPage = 20;
    /// So long a digit waits for another one or for `enter`.
    static constexpr int outcomeWaitMs = 1000;
    static constexpr int numberWaitMs = 5000;

private:
    /// To be first in every call: digits that wait become what they were meant to be. True when
    /// that was an outcome.
    bool begin();
    bool settleDigits();
    void advance();
    void show(int at);
    void setAnswerShown(bool shown);

    ShowTest test_;
    ShowWishes wishes_;
    const Clock& clock_;
    ShowClock countdown_;
    std::vector<Outcome> outcomes_;
    /// The step: questions from 0, and behind them the pages of answers.
    int at_ = 0;
    bool answerShown_ = false;
    PupilsView::Cover cover_ = PupilsView::Cover::None;
    QRectF zoom_;
    QString typed_;
    std::int64_t typedFor_ = 0;
    std::int64_t now_;
    Note note_ = Note::None;
};

} // namespace varnholt
