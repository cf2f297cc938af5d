#pragma once

#include "pictures/picture_loader.h"
#include "toolkit/accessible_picture.h"

#include <QFrame>
#include <QImage>
#include <QPixmap>

#include <functional>

namespace varnholt {

/// Shows a picture as large as fits, in its own proportions, at the screen's own resolution.
/// Small pictures grow, large ones shrink; what is transparent is white, as on a slide.
class PictureView : public QFrame, public DescribedPicture
{
    Q_OBJECT

public:
    using Done = std::function<void(PictureFault)>;

    explicit PictureView(QWidget* parent = nullptr);

    void setPicture(const QImage& picture);
    [[nodiscard]] const QImage& picture() const { return picture_; }

    /// Shows the file's picture and calls `done`; when it cannot be shown the picture before it
    /// stays. Nearly always that has happened when this returns. A picture that takes longer
    /// has a placeholder until it comes, and bad news waits for open messages to be answered.
    /// Only the file asked for last counts.
    void load(const QString& path, Done done);
    /// Decodes a file that will be wanted next.
    void prefetch(const QString& path) { loader_.prefetch(path); }
    /// Whether the file asked for last is still to come.
    [[nodiscard]] bool isLoading() const { return loading_; }
    /// What was asked for is no longer wanted: nothing is shown and nobody told.
    void forget();

    /// What the picture belongs to, as a sentence for assistive programs.
    void setSubject(const QString& sentence) { subject_ = sentence; }
    [[nodiscard]] QString pictureDescription() const override;
    [[nodiscard]] QSize pictureSize() const override { return picture_.size(); }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void came(const LoadedPicture& loaded);
    void tell();

    QImage picture_;
    /// The picture at the size in device pixels in which it was painted last.
    QPixmap scaled_;
    QString subject_;
    PictureLoader loader_;
    bool loading_ = false;
    Done done_;
    PictureFault news_ = PictureFault::None;
    QTimer untilAnswered_;
};

} // namespace varnholt
