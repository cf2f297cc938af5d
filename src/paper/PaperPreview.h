#pragma once

#include "paper/PaperLayout.h"
#include "pictures/ThumbnailLoader.h"

#include <QAbstractScrollArea>
#include <QCache>
#include <QImage>

namespace varnholt {

/// The pages of a layout below each other, as wide as there is room, but larger than life only as
/// long as the whole page can be seen. Pictures come when their page is first seen.
class PaperPreview : public QAbstractScrollArea
{
    Q_OBJECT

public:
    explicit PaperPreview(QWidget* parent = nullptr);

    /// `test` must outlive what is on show.
    void show(const PaperTest& test, PaperLayout layout, const QString& fontFamily);

    [[nodiscard]] const PaperLayout& layout() const { return layout_; }
    /// The page at the top of the view, from 0.
    [[nodiscard]] int currentPage() const;

    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    void pageChanged();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    [[nodiscard]] double scale() const;
    /// From one page's top to the next one's, in pixels.
    [[nodiscard]] double pitch() const;
    void updateScrollBar();
    [[nodiscard]] QImage imageOf(std::size_t question);
    void imageCame(std::int32_t key, const QImage& image);

    const PaperTest* test_ = nullptr;
    PaperLayout layout_;
    QString fontFamily_;
    QCache<std::int32_t, QImage> images_;
    ThumbnailLoader loader_;
};

} // namespace varnholt
