#include "show/ShowClock.h"

#include <algorithm>

namespace varnholt {

namespace {

constexpr std::int64_t second = 1000;
constexpr std::int64_t longest = (99 * 60 + 59) * second;

} // namespace

ShowClock::ShowClock(int secondsPerQuestion)
    : length_((secondsPerQuestion > 0 ? secondsPerQuestion : usualSeconds) * second)
    , on_(secondsPerQuestion > 0)
{}

void ShowClock::questionCame()
{
    left_ = on_ ? std::optional(length_) : std::nullopt;
}

void ShowClock::toggle()
{
    on_ = !left_ || *left_ == 0;
    questionCame();
}

void ShowClock::stretch(int seconds)
{
    if (left_ || seconds > 0) {
        left_ = std::clamp(left_.value_or(0) + seconds * second, std::int64_t{0}, longest);
    }
}

bool ShowClock::pass(std::int64_t milliseconds)
{
    if (!left_ || *left_ == 0) {
        return false;
    }
    left_ = std::max(*left_ - milliseconds, std::int64_t{0});
    return *left_ == 0;
}

std::optional<ClockFace> ShowClock::face() const
{
    return left_ ? std::optional(ClockFace{static_cast<int>((*left_ + second - 1) / second)})
                 : std::nullopt;
}

} // namespace varnholt
