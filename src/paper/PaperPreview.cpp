#include "paper/PaperPreview.h"

#include "paper/paper_painter.h"

#include <QPainter>
#include <QScrollBar>

#include <algorithm>
#include <cmath>
#include <utility>

namespace varnholt {

namespace {

constexpr int pictureSide = 900;
constexpr int keptPictures = 60;
constexpr int space = 12;
constexpr double pointsPerInch = 72;

} // namespace

PaperPreview::PaperPreview(QWidget* parent)
    : QAbstractScrollArea(parent)
    , images_(keptPictures)
    , loader_(pictureSide)
{
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setBackgroundRole(QPalette::Dark);
    viewport()->setAutoFillBackground(true);
    connect(&loader_, &ThumbnailLoader::came, this, &PaperPreview::imageCame);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, [this] {
        viewport()->update();
        Q_EMIT pageChanged();
    });
}

void PaperPreview::show(const PaperTest& test, PaperLayout layout, const QString& fontFamily)
{
    test_ = &test;
    layout_ = std::move(layout);
    fontFamily_ = fontFamily;
    updateScrollBar();
    viewport()->update();
    Q_EMIT pageChanged();
}

int PaperPreview::currentPage() const
{
    const int last = static_cast<int>(layout_.pages.size()) - 1;
    // A page that fills half of the view is the one that is looked at.
    const double middle = verticalScrollBar()->value() + viewport()->height() / 2.0;
    return std::clamp(static_cast<int>(middle / std::max(1.0, pitch())), 0, std::max(0, last));
}

QSize PaperPreview::sizeHint() const
{
    return {fontMetrics().averageCharWidth() * 70, fontMetrics().height() * 36};
}

double PaperPreview::scale() const
{
    if (layout_.width <= 0) {
        return 1;
    }
    const double wide = std::max(1, viewport()->width() - 2 * space) / layout_.width;
    const double whole = std::max(1, viewport()->height() - 2 * space) / layout_.height;
    return std::min(wide, std::max(whole, logicalDpiX() / pointsPerInch));
}

double PaperPreview::pitch() const
{
    return layout_.height * scale() + space;
}

void PaperPreview::updateScrollBar()
{
    const int all =
        static_cast<int>(std::ceil(pitch() * static_cast<double>(layout_.pages.size()))) + space;
    verticalScrollBar()->setPageStep(viewport()->height());
    verticalScrollBar()->setSingleStep(fontMetrics().height() * 3);
    verticalScrollBar()->setRange(0, std::max(0, all - viewport()->height()));
}

void PaperPreview::resizeEvent(QResizeEvent* event)
{
    const int page = currentPage();
    QAbstractScrollArea::resizeEvent(event);
    updateScrollBar();
    verticalScrollBar()->setValue(
        std::min(verticalScrollBar()->value(), static_cast<int>(pitch() * (page + 1))));
}

QImage PaperPreview::imageOf(std::size_t question)
{
    const auto key = static_cast<std::int32_t>(question);
    if (const QImage* known = images_.object(key)) {
        return *known;
    }
    loader_.load(key, test_->questions.at(question).picturePath);
    return {};
}

void PaperPreview::imageCame(std::int32_t key, const QImage& image)
{
    images_.insert(key, new QImage(image));
    viewport()->update();
}

void PaperPreview::paintEvent(QPaintEvent*)
{
    QPainter painter(viewport());
    const double top = space - verticalScrollBar()->value();
    for (std::size_t i = 0; i < layout_.pages.size(); ++i) {
        const double width = layout_.width * scale();
        const QRectF paper((viewport()->width() - width) / 2,
                           top + pitch() * static_cast<double>(i), width, layout_.height * scale());
        if (!paper.intersects(viewport()->rect())) {
            continue;
        }
        painter.fillRect(paper, Qt::white);
        painter.save();
        painter.translate(paper.topLeft());
        painter.scale(scale(), scale());
        PaintPaperPage(painter, layout_.pages[i], fontFamily_,
                       [this](std::size_t question) { return imageOf(question); });
        painter.restore();
    }
}

} // namespace varnholt
