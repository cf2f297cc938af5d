#include "show/show_screens.h"

#include <algorithm>

namespace varnholt {

ShowPlaces PlaceShow(const std::vector<ShowScreen>& screens, const QString& remembered)
{
    // Screens that show the same lie at the same place.
    std::vector<int> places;
    for (int i = 0; i < static_cast<int>(screens.size()); ++i) {
        const auto at = [&](int k) {
            return screens[static_cast<std::size_t>(k)].geometry.topLeft();
        };
        if (std::none_of(places.begin(), places.end(), [&](int k) { return at(k) == at(i); })) {
            places.push_back(i);
        }
    }
    if (places.size() < 2) {
        return {places.front(), std::nullopt};
    }
    const auto first = [&](const auto& wanted) {
        const auto found = std::find_if(places.begin(), places.end(), [&](int k) {
            return wanted(screens[static_cast<std::size_t>(k)], k);
        });
        return found == places.end() ? -1 : *found;
    };
    int pupils = first([&](const ShowScreen& screen, int) { return screen.id() == remembered; });
    if (pupils < 0) {
        pupils = first([](const ShowScreen& screen, int) { return !screen.primary; });
    }
    int teacher =
        first([&](const ShowScreen& screen, int k) { return screen.primary && k != pupils; });
    if (teacher < 0) {
        teacher = first([&](const ShowScreen&, int k) { return k != pupils; });
    }
    return {pupils, teacher};
}

} // namespace varnholt
