#pragma once

#include "show/show_screens.h"

#include <QObject>

class QWidget;

namespace varnholt {

/// The screens, and windows on them. Tests have others.
class ShowDesktop : public QObject
{
    Q_OBJECT

public:
    ShowDesktop();

    /// Never empty.
    [[nodiscard]] virtual std::vector<ShowScreen> screens() const;
    /// Shows a window on all of a screen, or as large as windows get there.
    virtual void cover(QWidget& window, const ShowScreen& screen);
    virtual void fill(QWidget& window, const ShowScreen& screen);

Q_SIGNALS:
    /// A screen has come, gone or changed.
    void screensChanged();
};

} // namespace varnholt
