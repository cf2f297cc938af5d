#pragma once

#include <QString>

namespace varnholt {

/// One of the two labels that make a progress bar: the back is the bar at full length, the
/// face grows over it from the left edge. Widths are in the window's own units.
class ProgressLabel
{
public:
    virtual ~ProgressLabel() = default;

    [[nodiscard]] virtual float width() const = 0;
    virtual void setWidth(float width) = 0;
    virtual void setCaption(const QString& caption) = 0;
    /// Lets the user interface handle pending events, so that the bar repaints. Called very
    /// often; must not throw.
    virtual void processEvents() = 0;
};

} // namespace varnholt
