#pragma once

#include "toolkit/accessible_picture.h"

#include <QWidget>

#include <optional>

namespace varnholt {

class PictureSurface;

/// Shows a surface, one image pixel to one unit of the widget whatever the screen's scale,
/// and takes its outer size. Mouse events arrive in image pixels: one press, moves and one
/// release, whichever button; what other buttons do meanwhile is left out, and a release that
/// got lost outside is made up for at the next move.
class PictureBox : public QWidget, public DescribedPicture
{
    Q_OBJECT

public:
    /// The surface must outlive the widget.
    explicit PictureBox(PictureSurface& surface, QWidget* parent = nullptr);

    /// Takes the surface's size and repaints what has changed on it.
    void refresh();

    [[nodiscard]] QSize sizeHint() const override;

    [[nodiscard]] QString pictureDescription() const override;
    /// Empty while the surface has no picture.
    [[nodiscard]] QSize pictureSize() const override;

Q_SIGNALS:
    void MouseDown(double X, double Y);
    /// Also without a button held.
    void MouseMove(double X, double Y);
    void MouseUp(double X, double Y);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    [[nodiscard]] QPoint origin() const;

    PictureSurface& surface_;
    std::optional<Qt::MouseButton> held_;
};

} // namespace varnholt
