#pragma once

#include <QString>

#include <cstdint>

namespace varnholt {

/// When the answers of a show come on the screen.
enum class ShowAnswers : std::int8_t
{
    WhenAsked,
    AfterEach,
    AtTheEnd
};

/// How a test is to be shown in class.
struct ShowWishes
{
    /// For each question; 0 for no clock.
    int seconds = 0;
    ShowAnswers answers = ShowAnswers::WhenAsked;
    /// The next step comes by itself when the time is up.
    bool moveOn = false;

    static constexpr int mostSeconds = 3600;

    friend bool operator==(const ShowWishes&, const ShowWishes&) = default;
};

/// They are kept in the user's settings, for each program folder.
[[nodiscard]] ShowWishes LoadShowWishes(const QString& programFolder);
void SaveShowWishes(const QString& programFolder, const ShowWishes& wishes);

} // namespace varnholt
