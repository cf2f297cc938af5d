#pragma once

#include <QRect>
#include <QString>

#include <optional>
#include <vector>

namespace varnholt {

/// A screen as the desktop has it.
struct ShowScreen
{
    QString name;
    /// Empty where the screen gives none.
    QString serial;
    QRect geometry;
    bool primary = false;

    /// What it is known by the next time.
    [[nodiscard]] QString id() const { return name + u'/' + serial; }
};

/// Which screens, by their positions in the list, have which window.
struct ShowPlaces
{
    int pupils = 0;
    /// None while there is one screen only, or while all show the same.
    std::optional<int> teacher;

    friend bool operator==(const ShowPlaces&, const ShowPlaces&) = default;
};

/// The pupils' window goes where it was the last time (`remembered`, an id; or empty), else to the
/// first screen that is not the primary one. `screens` is not empty.
[[nodiscard]] ShowPlaces PlaceShow(const std::vector<ShowScreen>& screens,
                                   const QString& remembered);

} // namespace varnholt
