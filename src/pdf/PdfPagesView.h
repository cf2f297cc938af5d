#pragma once

#include "pdf/PdfFrames.h"

#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <QCache>
#include <QPixmap>
#include <QSet>

#include <functional>
#include <optional>
#include <vector>

namespace varnholt {

class PdfReader;

/// The pages of a PDF file one below the other with the frames on them, drawn, moved and sized
/// with the mouse and by keys. Pages are drawn when they come into view, and a few are kept.
class PdfPagesView : public QAbstractScrollArea
{
    Q_OBJECT

public:
    explicit PdfPagesView(PdfReader& reader, QWidget* parent = nullptr);

    /// Begins anew with the pages that the reader has.
    void begin();
    [[nodiscard]] const PdfFrames& frames() const { return frames_; }
    /// Changes the frames and shows the selected one.
    void change(const std::function<void(PdfFrames& frames)>& with);

    /// The page that fills the middle of the view.
    [[nodiscard]] int currentPage() const;
    void showPage(int page);
    /// 1 for the widest page as wide as the view.
    void setZoom(double zoom);

    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    /// The frames, the selected one or the page in view are others now.
    void changed();
    /// The selected frame is to be cut in two; at this height if it is one.
    void splitWanted(double y);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    enum class Drag
    {
        None,
        Draw,
        Move,
        Size
    };
    struct Place
    {
        int page = 0;
        QPointF point;
    };

    void updateScrollBars();
    [[nodiscard]] double scale() const;
    [[nodiscard]] QRectF pageRect(int page) const;
    [[nodiscard]] QRectF toView(int page, const QRectF& area) const;
    /// On the page nearest to a point of the view.
    [[nodiscard]] Place placeAt(QPointF position) const;
    /// As far as it lies on that page.
    [[nodiscard]] QPointF onPage(int page, QPointF position) const;
    [[nodiscard]] int frameAt(QPointF position) const;
    /// Which sides of the selected frame the handle there moves.
    [[nodiscard]] Qt::Edges handleAt(QPointF position) const;
    [[nodiscard]] std::vector<std::pair<QRectF, Qt::Edges>> handles() const;
    void dragTo(QPointF position);
    void showPointer(QPointF position);
    void paintPage(QPainter& painter, int page);
    void paintFrames(QPainter& painter);
    void reveal(const PdfFrame& frame);
    bool moveByKey(const QKeyEvent& event);
    void selectNext(int step);
    void turnPage(int step);
    void addInView();
    void came(int page, const QImage& picture);
    void announce();

    PdfReader& reader_;
    PdfFrames frames_;
    /// Where each page begins, at scale 1 without the space between pages.
    std::vector<double> tops_;
    double widest_ = 1;
    double zoom_ = 1;
    QCache<int, QImage> drawn_;
    QSet<int> bad_;

    Drag drag_ = Drag::None;
    Qt::Edges edges_;
    Place from_;
    QPointF pressedAt_;
    QRectF before_;
    /// What is drawn or dragged, while it is.
    std::optional<QRectF> draft_;
    QBasicTimer scrolling_;
};

} // namespace varnholt
