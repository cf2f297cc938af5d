#pragma once

#include <QFrame>
#include <QImage>
#include <QPixmap>

namespace varnholt {

/// Shows a picture as large as fits, in its own proportions, at the screen's own resolution.
/// Small pictures grow, large ones shrink.
class PictureView : public QFrame
{
    Q_OBJECT

public:
    explicit PictureView(QWidget* parent = nullptr);

    void setPicture(const QImage& picture);
    [[nodiscard]] const QImage& picture() const { return picture_; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QImage picture_;
    /// The picture at the size in device pixels in which it was painted last.
    QPixmap scaled_;
};

} // namespace varnholt
