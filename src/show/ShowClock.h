#pragma once

#include <cstdint>
#include <optional>

namespace varnholt {

/// What the clock says.
struct ClockFace
{
    /// Left, from 0; begun seconds count as whole ones.
    int seconds = 0;

    /// The last seconds, and the time after them.
    [[nodiscard]] bool isLast() const { return seconds <= lastSeconds; }
    [[nodiscard]] bool isOver() const { return seconds == 0; }

    static constexpr int lastSeconds = 5;

    friend bool operator==(const ClockFace&, const ClockFace&) = default;
};

/// The clock of a show: counts down for the question on the screen and stops at 0. It is told how
/// much time has passed.
class ShowClock
{
public:
    /// For each question; 0 for a clock that is off until it is asked for.
    explicit ShowClock(int secondsPerQuestion);

    /// A question has come: it gets its time, if the clock is on.
    void questionCame();
    /// Nothing is left to be answered.
    void questionAnswered() { left_.reset(); }

    /// Switches it on, now and for the questions to come, or off. A clock that has come to its end
    /// starts once more.
    void toggle();
    /// More or fewer seconds for this question alone. More of them start a clock that is off.
    void stretch(int seconds);

    /// True when that was the end of the time.
    bool pass(std::int64_t milliseconds);

    /// None while it is off.
    [[nodiscard]] std::optional<ClockFace> face() const;

    /// What a clock that is asked for begins with where nothing else was said.
    static constexpr int usualSeconds = 60;

private:
    std::int64_t length_;
    bool on_;
    /// Milliseconds; none while no clock is shown.
    std::optional<std::int64_t> left_;
};

} // namespace varnholt
