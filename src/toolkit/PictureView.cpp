#include "toolkit/PictureView.h"

#include <QApplication>
#include <QPainter>

#include <utility>

namespace varnholt {

namespace {

constexpr int askAgainMs = 100;

}

PictureView::PictureView(QWidget* parent)
    : QFrame(parent)
{
    setFrameStyle(QFrame::StyledPanel | QFrame::Sunken);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    announcePictures();
    untilAnswered_.setSingleShot(true);
    untilAnswered_.setInterval(askAgainMs);
    untilAnswered_.callOnTimeout(this, &PictureView::tell);
}

void PictureView::setPicture(const QImage& picture)
{
    picture_ = picture;
    scaled_ = {};
    update();
}

void PictureView::load(const QString& path, Done done)
{
    forget();
    done_ = std::move(done);
    // Set before: what is called may ask for the next picture.
    loading_ = true;
    loader_.load(path, [this](const LoadedPicture& loaded) { came(loaded); });
    update();
}

void PictureView::forget()
{
    loader_.drop();
    untilAnswered_.stop();
    done_ = nullptr;
    loading_ = false;
    update();
}

void PictureView::came(const LoadedPicture& loaded)
{
    loading_ = false;
    news_ = loaded.fault;
    if (loaded.fault == PictureFault::None) {
        setPicture(loaded.picture);
    }
    update();
    tell();
}

void PictureView::tell()
{
    // A message must not come up over another one, nor over a menu.
    if (news_ != PictureFault::None &&
        (QApplication::activeModalWidget() || QApplication::activePopupWidget())) {
        untilAnswered_.start();
        return;
    }
    const Done done = std::exchange(done_, nullptr);
    if (done) {
        done(news_);
    }
}

QString PictureView::pictureDescription() const
{
    return QStringLiteral("%1 %2")
        .arg(subject_,
             loading_ ? tr("The picture is being loaded.") : pictureSizeSentence(pictureSize()))
        .trimmed();
}

QSize PictureView::sizeHint() const
{
    const QFontMetrics metrics = fontMetrics();
    return {metrics.averageCharWidth() * 70, metrics.height() * 20};
}

QSize PictureView::minimumSizeHint() const
{
    const QFontMetrics metrics = fontMetrics();
    return {metrics.averageCharWidth() * 20, metrics.height() * 6};
}

void PictureView::paintEvent(QPaintEvent* event)
{
    QFrame::paintEvent(event);
    if (loading_) {
        QPainter painter(this);
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(contentsRect(), Qt::AlignCenter | Qt::TextWordWrap,
                         tr("The picture is being loaded."));
        return;
    }
    if (picture_.isNull() || contentsRect().isEmpty()) {
        return;
    }
    const qreal ratio = devicePixelRatioF();
    const QSize room = (QSizeF(contentsRect().size()) * ratio).toSize();
    const QSize size = picture_.size().scaled(room, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
    if (scaled_.size() != size) {
        QImage scaled = picture_.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        if (scaled.hasAlphaChannel()) {
            QPainter painter(&scaled);
            painter.setCompositionMode(QPainter::CompositionMode_DestinationOver);
            painter.fillRect(scaled.rect(), Qt::white);
        }
        scaled_ = QPixmap::fromImage(scaled);
    }
    scaled_.setDevicePixelRatio(ratio);
    // Whole device pixels, or the picture would be smeared over two.
    const QPoint corner((room.width() - size.width()) / 2, (room.height() - size.height()) / 2);
    QPainter painter(this);
    painter.drawPixmap(contentsRect().topLeft() + QPointF(corner) / ratio, scaled_);
}

} // namespace varnholt
