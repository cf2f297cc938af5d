#include "show/Show.h"

#include "store/nearest.h"
#include "store/services.h"

#include <algorithm>
#include <utility>

namespace varnholt {

namespace {

const QRectF whole(0, 0, 1, 1);
/// Nobody needs a smaller part of a picture on a whole screen.
constexpr double smallestPart = 1.0 / 12;
/// More than that at once is a computer that slept or whose clock was set.
constexpr std::int64_t longestMoment = 2000;
constexpr qsizetype mostDigits = 4;

/// The outcome that digits stand for by themselves.
std::optional<Outcome> outcomeOf(const QString& typed)
{
    const int number = typed.size() == 1 ? typed.toInt() : 0;
    return number >= static_cast<int>(Outcome::Few) && number <= static_cast<int>(Outcome::Most)
               ? std::optional(static_cast<Outcome>(number))
               : std::nullopt;
}

} // namespace

Show::Show(ShowTest test, ShowWishes wishes, const Clock& clock)
    : test_(std::move(test))
    , wishes_(wishes)
    , clock_(clock)
    , countdown_(wishes.seconds)
    , outcomes_(test_.items.size(), Outcome::Unknown)
    , now_(clock.millisecondsSinceEpoch())
{
    show(0);
}

bool Show::begin()
{
    pass();
    note_ = Note::None;
    return settleDigits();
}

bool Show::settleDigits()
{
    const std::optional<Outcome> outcome = outcomeOf(std::exchange(typed_, {}));
    if (!outcome || !position()) {
        return false;
    }
    outcomes_[static_cast<std::size_t>(at_)] = *outcome;
    return true;
}

void Show::next()
{
    const bool marked = begin();
    if (cover_ != PupilsView::Cover::None) {
        cover_ = PupilsView::Cover::None;
    } else if (marked) {
        show(at_ + 1);
    } else {
        advance();
    }
}

void Show::advance()
{
    if (position() && wishes_.answers == ShowAnswers::AfterEach && !answerShown_) {
        setAnswerShown(true);
    } else {
        show(at_ + 1);
    }
}

void Show::back()
{
    begin();
    if (cover_ != PupilsView::Cover::None) {
        cover_ = PupilsView::Cover::None;
    } else if (answerShown_ && wishes_.answers == ShowAnswers::AfterEach) {
        setAnswerShown(false);
    } else {
        show(at_ - 1);
    }
}

void Show::goTo(int number)
{
    begin();
    if (number < 1 || number > questions()) {
        note_ = Note::NoSuchQuestion;
        return;
    }
    show(number - 1);
}

void Show::goToEnd()
{
    begin();
    show(questions() - 1);
}

void Show::answer()
{
    begin();
    if (position()) {
        cover_ = PupilsView::Cover::None;
        setAnswerShown(!answerShown_);
    }
}

void Show::toggleClock()
{
    begin();
    if (position()) {
        countdown_.toggle();
    }
}

void Show::stretch(int seconds)
{
    begin();
    if (position()) {
        countdown_.stretch(seconds);
    }
}

void Show::cover(PupilsView::Cover colour)
{
    begin();
    cover_ = cover_ == colour ? PupilsView::Cover::None : colour;
}

void Show::zoomTo(const QRectF& part)
{
    begin();
    const QRectF inside = part.normalized() & whole;
    if (!position() || inside.isEmpty()) {
        return;
    }
    const QSizeF size(std::max(inside.width(), smallestPart),
                      std::max(inside.height(), smallestPart));
    zoom_ = QRectF(inside.center() - QPointF(size.width(), size.height()) / 2, size);
    zoom_.moveLeft(std::clamp(zoom_.left(), 0.0, 1 - size.width()));
    zoom_.moveTop(std::clamp(zoom_.top(), 0.0, 1 - size.height()));
}

void Show::zoomAt(const QPointF& point, double factor)
{
    const QRectF seen = zoom_.isNull() ? whole : zoom_;
    const QSizeF size = seen.size() / factor;
    if (size.width() >= 1 && size.height() >= 1) {
        begin();
        zoom_ = {};
        return;
    }
    // What would be smaller than the smallest part stays.
    if (std::min(size.width(), size.height()) >= smallestPart || factor < 1) {
        zoomTo({point + (seen.topLeft() - point) / factor, size});
    }
}

void Show::swap()
{
    begin();
    if (!canSwap()) {
        note_ = Note::NoOtherQuestion;
        return;
    }
    ShowItem& item = test_.items[static_cast<std::size_t>(at_)];
    const auto nearest = NearestQuestion(test_.spares.begin(), test_.spares.end(), item.question);
    item = test_.take(*nearest);
    test_.spares.erase(nearest);
    outcomes_[static_cast<std::size_t>(at_)] = Outcome::Unknown;
    show(at_);
}

void Show::mark(Outcome outcome)
{
    begin();
    if (position()) {
        outcomes_[static_cast<std::size_t>(at_)] = outcome;
        show(at_ + 1);
    }
}

void Show::digit(int digit)
{
    pass();
    note_ = Note::None;
    if (typed_.size() < mostDigits && (digit != 0 || !typed_.isEmpty())) {
        typed_ += QString::number(digit);
        typedFor_ = 0;
    }
}

void Show::enter()
{
    const QString typed = std::exchange(typed_, {});
    if (typed.isEmpty()) {
        next();
    } else {
        goTo(typed.toInt());
    }
}

bool Show::takeBack()
{
    note_ = Note::None;
    if (!typed_.isEmpty()) {
        typed_.clear();
    } else if (cover_ != PupilsView::Cover::None) {
        cover_ = PupilsView::Cover::None;
    } else if (!zoom_.isNull()) {
        zoom_ = {};
    } else {
        return false;
    }
    return true;
}

bool Show::pass()
{
    const std::int64_t now = clock_.millisecondsSinceEpoch();
    const std::int64_t passed =
        std::clamp(now - std::exchange(now_, now), std::int64_t{0}, longestMoment);
    const std::optional<ClockFace> before = countdown_.face();
    bool changed = false;
    if (countdown_.pass(passed) && wishes_.moveOn && !isOnLastStep()) {
        settleDigits();
        cover_ = PupilsView::Cover::None;
        advance();
        changed = true;
    }
    if (!typed_.isEmpty()) {
        typedFor_ += passed;
        if (typedFor_ >= (outcomeOf(typed_) && position() ? outcomeWaitMs : numberWaitMs)) {
            if (settleDigits()) {
                show(at_ + 1);
            }
            changed = true;
        }
    }
    return changed || countdown_.face() != before;
}

void Show::show(int at)
{
    if (at < 0 || at >= questions() + pages()) {
        note_ = at < 0 ? Note::AtTheStart : Note::AtTheEnd;
        return;
    }
    at_ = at;
    answerShown_ = false;
    cover_ = PupilsView::Cover::None;
    zoom_ = {};
    if (position()) {
        countdown_.questionCame();
    } else {
        countdown_.questionAnswered();
    }
}

void Show::setAnswerShown(bool shown)
{
    answerShown_ = shown;
    if (shown) {
        countdown_.questionAnswered();
    }
}

int Show::pages() const
{
    return wishes_.answers == ShowAnswers::AtTheEnd
               ? (questions() + answersPerPage - 1) / answersPerPage
               : 0;
}

bool Show::isOnLastStep() const
{
    return at_ == questions() + pages() - 1 &&
           (wishes_.answers != ShowAnswers::AfterEach || answerShown_);
}

std::optional<int> Show::position() const
{
    return at_ < questions() ? std::optional(at_ + 1) : std::nullopt;
}

const ShowItem& Show::item(int position) const
{
    return test_.items.at(static_cast<std::size_t>(position) - 1);
}

Outcome Show::outcome(int position) const
{
    return outcomes_.at(static_cast<std::size_t>(position) - 1);
}

PupilsView Show::pupilsView() const
{
    PupilsView view;
    view.cover = cover_;
    if (!position()) {
        const int first = (page() - 1) * answersPerPage;
        for (int i = first; i < std::min(first + answersPerPage, questions()); ++i) {
            view.answers.push_back({i + 1, item(i + 1).question.Answer});
        }
        return view;
    }
    const ShowItem& shown = item(*position());
    view.number = *position();
    view.topic = test_.topicLine ? shown.topicText : QString();
    view.picture = shown.picture;
    view.answer = answerShown_ ? shown.question.Answer : QString();
    view.clock = countdown_.face();
    view.zoom = zoom_;
    return view;
}

} // namespace varnholt
