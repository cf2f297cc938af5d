#pragma once

#include "toolkit/accessible_picture.h"

#include <QImage>
#include <QWidget>

#include <optional>

namespace varnholt {

class PictureCanvas;

/// Shows a canvas at any zoom, with its frames, their handles and the block on the move painted
/// over it. Mouse events arrive in whole canvas pixels: one press, moves and one release, whichever
/// button; what other buttons do meanwhile is left out, and a release that got lost outside is made
/// up for at the next move.
class CanvasView : public QWidget, public DescribedPicture
{
    Q_OBJECT

public:
    /// The canvas must outlive the widget.
    explicit CanvasView(const PictureCanvas& canvas, QWidget* parent = nullptr);

    /// Widget units for a canvas pixel.
    void setZoom(double zoom);
    [[nodiscard]] double zoom() const { return zoom_; }
    [[nodiscard]] QPointF toCanvas(QPointF position) const;
    [[nodiscard]] QPoint toWidget(QPoint canvasPixel) const;

    /// Takes the canvas's size and place behind its page, and repaints what has changed.
    void refresh();

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QString pictureDescription() const override;
    /// Empty while there is no picture.
    [[nodiscard]] QSize pictureSize() const override;

Q_SIGNALS:
    void MouseDown(double X, double Y);
    /// On a handle of the finished frame: its side across and down, -1, 0 or 1.
    void HandleDown(int across, int down);
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
    struct Handle
    {
        QRect place;
        int across = 0;
        int down = 0;
    };
    /// What is painted over the image.
    struct Overlay
    {
        std::optional<QRect> frame, moving;
        bool handles = false;
        friend bool operator==(const Overlay&, const Overlay&) = default;
    };

    [[nodiscard]] Overlay overlay() const;
    /// A frame's outline in widget units, on the last pixels where it ends with the image.
    [[nodiscard]] QRect outline(const QRect& frame) const;
    [[nodiscard]] QList<Handle> handles() const;
    [[nodiscard]] std::optional<Handle> handleAt(QPoint position) const;
    [[nodiscard]] QRegion regionOf(const Overlay& overlay) const;
    void paintImage(QPainter& painter, const QRect& area);
    void showPointer(QPoint position);

    const PictureCanvas& canvas_;
    double zoom_ = 1;
    std::optional<Qt::MouseButton> held_;
    Overlay painted_;
    /// The image in the screen's pixels where it is shown smaller, and of what that was made.
    QImage shrunk_;
    qint64 shrunkFrom_ = 0;
    qint64 paintedImage_ = 0;
};

} // namespace varnholt
