#pragma once

#include "show/pupils_painter.h"
#include "toolkit/accessible_picture.h"

#include <QWidget>

namespace varnholt {

/// Shows what the pupils see: the whole of their window, or a smaller copy of it with the same
/// proportions in the middle of the widget.
class ShowView : public QWidget, public DescribedPicture
{
    Q_OBJECT

public:
    explicit ShowView(QWidget* parent = nullptr);

    void setView(const PupilsView& view, const ShowPicture& picture);
    /// Makes it a copy of a window of that size; an empty size makes it the window itself.
    void setCopyOf(QSize window);
    /// A frame drawn on it, and the wheel, look closer at the picture.
    void setZooms(bool zooms) { zooms_ = zooms; }

    /// The room for a picture in its window, in device pixels.
    [[nodiscard]] QSize pictureRoom() const;
    [[nodiscard]] QString pictureDescription() const override;
    [[nodiscard]] QSize pictureSize() const override { return picture_.whole.size(); }

    [[nodiscard]] QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// Its room for a picture is another one.
    void roomChanged();
    /// A part of the picture is to be seen, in parts of its width and height.
    void zoomedTo(const QRectF& part);
    void zoomedAt(const QPointF& point, double factor);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    /// Where in the widget what is seen stands.
    [[nodiscard]] QRectF area() const;
    /// The point of the picture at a point of the widget, in parts of its width and height.
    [[nodiscard]] QPointF inPicture(const QPointF& point) const;
    [[nodiscard]] bool canZoom() const;
    /// The picture, at its size where all that the pupils see has this one.
    [[nodiscard]] const ShowPicture& pictureAt(const QSizeF& size);

    PupilsView view_;
    ShowPicture picture_;
    /// For a copy: the picture at its size, and what that was made of.
    ShowPicture copied_;
    qint64 copiedFrom_ = 0;
    QSize window_;
    bool zooms_ = false;
    /// The frame being drawn; null for none.
    QRectF frame_;
};

} // namespace varnholt
