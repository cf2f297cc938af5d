#include "pdf/PdfPagesView.h"

#include "pdf/PdfReader.h"

#include <QAccessible>
#include <QPainter>
#include <QScrollBar>
#include <QtMath>

#include <algorithm>
#include <cmath>

namespace varnholt {

namespace {

constexpr int space = 10;
/// What is drawn of pages is kept up to that, in kilobytes.
constexpr int keptKilobytes = 96 * 1024;
constexpr double mostZoom = 4;
constexpr double leastZoom = 0.25;

} // namespace

PdfPagesView::PdfPagesView(PdfReader& reader, QWidget* parent)
    : QAbstractScrollArea(parent)
    , reader_(reader)
    , drawn_(keptKilobytes)
{
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setBackgroundRole(QPalette::Dark);
    viewport()->setAutoFillBackground(true);
    viewport()->setMouseTracking(true);
    viewport()->setCursor(Qt::CrossCursor);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    connect(&reader_, &PdfReader::came, this, &PdfPagesView::came);
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &PdfPagesView::changed);
}

QSize PdfPagesView::sizeHint() const
{
    return {fontMetrics().averageCharWidth() * 100, fontMetrics().height() * 36};
}

void PdfPagesView::begin()
{
    frames_ = PdfFrames(reader_.pages());
    drawn_.clear();
    bad_.clear();
    double top = 0;
    widest_ = 1;
    for (const QSizeF& page : reader_.pages()) {
        tops_.push_back(top);
        top += page.height();
        widest_ = std::max(widest_, page.width());
    }
    tops_.push_back(top);
    updateScrollBars();
}

void PdfPagesView::change(const std::function<void(PdfFrames& frames)>& with)
{
    with(frames_);
    if (frames_.current()) {
        reveal(*frames_.current());
    }
    viewport()->update();
    announce();
    Q_EMIT changed();
}

void PdfPagesView::announce()
{
    const PdfFrame* frame = frames_.current();
    setAccessibleDescription(frame ? tr("Frame %1 of %2 is selected, on page %3.")
                                         .arg(frames_.selected() + 1)
                                         .arg(frames_.all().size())
                                         .arg(frame->page + 1)
                                   : tr("No frame is selected."));
}

double PdfPagesView::scale() const
{
    return zoom_ * std::max(1, viewport()->width() - 2 * space) / widest_;
}

QRectF PdfPagesView::pageRect(int page) const
{
    const auto at = static_cast<std::size_t>(page);
    const QSizeF size = reader_.pages()[at] * scale();
    const double across = std::max<double>(viewport()->width(), widest_ * scale() + 2 * space);
    return {(across - size.width()) / 2 - horizontalScrollBar()->value(),
            space + tops_[at] * scale() + space * page - verticalScrollBar()->value(), size.width(),
            size.height()};
}

QRectF PdfPagesView::toView(int page, const QRectF& area) const
{
    const QRectF paper = pageRect(page);
    return {paper.topLeft() + area.topLeft() * scale(), area.size() * scale()};
}

PdfPagesView::Place PdfPagesView::placeAt(QPointF position) const
{
    const auto pages = static_cast<int>(reader_.pages().size());
    const double y = position.y() + verticalScrollBar()->value();
    int low = 0;
    for (int high = pages - 1; low < high;) {
        const int middle = (low + high + 1) / 2;
        const auto at = static_cast<std::size_t>(middle);
        (tops_[at] * scale() + space * middle <= y ? low : high) =
            tops_[at] * scale() + space * middle <= y ? middle : middle - 1;
    }
    return {low, onPage(low, position)};
}

QPointF PdfPagesView::onPage(int page, QPointF position) const
{
    const QSizeF size = reader_.pages()[static_cast<std::size_t>(page)];
    const QPointF point = (position - pageRect(page).topLeft()) / scale();
    return {std::clamp(point.x(), 0.0, size.width()), std::clamp(point.y(), 0.0, size.height())};
}

int PdfPagesView::currentPage() const
{
    return reader_.pages().empty() ? 0 : placeAt({0, viewport()->height() / 2.0}).page;
}

void PdfPagesView::showPage(int page)
{
    const int last = static_cast<int>(reader_.pages().size()) - 1;
    const QRectF paper = pageRect(std::clamp(page, 0, last));
    verticalScrollBar()->setValue(verticalScrollBar()->value() + static_cast<int>(paper.top()) -
                                  space);
}

void PdfPagesView::reveal(const PdfFrame& frame)
{
    const QRectF area = toView(frame.page, frame.area);
    const double room = viewport()->height() - 2 * space;
    double by = 0;
    if (area.top() < space || area.height() > room) {
        by = area.top() - space;
    } else if (area.bottom() > viewport()->height() - space) {
        by = area.bottom() - viewport()->height() + space;
    }
    verticalScrollBar()->setValue(verticalScrollBar()->value() + static_cast<int>(std::ceil(by)));
}

void PdfPagesView::updateScrollBars()
{
    const auto pages = static_cast<double>(reader_.pages().size());
    const double height = tops_.empty() ? 0 : tops_.back() * scale() + space * (pages + 1);
    const double width = widest_ * scale() + 2 * space;
    verticalScrollBar()->setPageStep(viewport()->height());
    verticalScrollBar()->setSingleStep(fontMetrics().height() * 3);
    verticalScrollBar()->setRange(0, std::max(0, qCeil(height) - viewport()->height()));
    horizontalScrollBar()->setPageStep(viewport()->width());
    horizontalScrollBar()->setRange(0, std::max(0, qCeil(width) - viewport()->width()));
    viewport()->update();
}

void PdfPagesView::setZoom(double zoom)
{
    const Place middle = placeAt(viewport()->rect().center());
    zoom_ = std::clamp(zoom, leastZoom, mostZoom);
    updateScrollBars();
    const double now = toView(middle.page, QRectF(middle.point, QSizeF())).top();
    verticalScrollBar()->setValue(verticalScrollBar()->value() + static_cast<int>(now) -
                                  viewport()->height() / 2);
    viewport()->update();
}

void PdfPagesView::resizeEvent(QResizeEvent* event)
{
    QAbstractScrollArea::resizeEvent(event);
    const int page = currentPage();
    updateScrollBars();
    if (page > 0 && page != currentPage()) {
        showPage(page);
    }
}

void PdfPagesView::came(int page, const QImage& picture)
{
    if (picture.isNull()) {
        bad_.insert(page);
    } else {
        drawn_.insert(page, new QImage(picture), static_cast<int>(picture.sizeInBytes() / 1024));
    }
    viewport()->update(pageRect(page).toAlignedRect());
}

void PdfPagesView::paintPage(QPainter& painter, int page)
{
    const QRectF paper = pageRect(page);
    painter.fillRect(paper, Qt::white);
    const QImage* drawn = drawn_.object(page);
    QSize wanted = (paper.size() * devicePixelRatioF()).toSize();
    const double area = static_cast<double>(wanted.width()) * wanted.height();
    if (area > pdf::mostPixels) {
        wanted *= std::sqrt(pdf::mostPixels / area) * 0.99;
    }
    if (drawn) {
        painter.drawImage(paper, *drawn);
    } else {
        painter.setPen(Qt::darkGray);
        painter.drawText(paper & QRectF(viewport()->rect()), Qt::AlignCenter,
                         bad_.contains(page) ? tr("This page cannot be shown.")
                                             : tr("This page is being drawn..."));
    }
    if ((!drawn || drawn->size() != wanted) && !bad_.contains(page)) {
        reader_.want(page, wanted);
    }
}

void PdfPagesView::paintFrames(QPainter& painter)
{
    const QColor line = palette().color(QPalette::Highlight);
    const QColor letters = palette().color(QPalette::HighlightedText);
    int picture = 0;
    for (std::size_t i = 0; i < frames_.all().size(); ++i) {
        const PdfFrame& frame = frames_.all()[i];
        picture += frame.continues && picture > 0 ? 0 : 1;
        const bool selected = static_cast<int>(i) == frames_.selected();
        const QRectF area =
            toView(frame.page, selected && draft_ && drag_ != Drag::Draw ? *draft_ : frame.area);
        if (!area.adjusted(-space, -30, space, space).intersects(viewport()->rect())) {
            continue;
        }
        QColor glaze = line;
        glaze.setAlpha(selected ? 60 : 25);
        painter.setPen(QPen(line, selected ? 3 : 2));
        painter.setBrush(glaze);
        painter.drawRect(area);
        // What continues says so by the same number.
        const QString text =
            frame.continues ? tr("%1 (continued)").arg(picture) : QString::number(picture);
        QRectF tag(painter.fontMetrics().boundingRect(text));
        tag.adjust(-4, -2, 4, 2);
        tag.moveTopRight(area.topLeft());
        tag.moveLeft(std::max(tag.left(), 0.0));
        painter.fillRect(tag, line);
        painter.setPen(letters);
        painter.drawText(tag, Qt::AlignCenter, text);
    }
    painter.setPen(letters);
    painter.setBrush(line);
    for (const auto& [handle, edges] : handles()) {
        painter.drawRect(handle);
    }
    if (draft_ && drag_ == Drag::Draw) {
        painter.setPen(QPen(line, 2, Qt::DashLine));
        painter.setBrush(Qt::NoBrush);
        painter.drawRect(toView(from_.page, *draft_));
    }
}

void PdfPagesView::paintEvent(QPaintEvent*)
{
    QPainter painter(viewport());
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const int first = reader_.pages().empty() ? 0 : placeAt({0, 0}).page;
    const auto pages = static_cast<int>(reader_.pages().size());
    int last = first;
    while (last + 1 < pages && pageRect(last + 1).top() < viewport()->height()) {
        ++last;
    }
    // The first in view is asked for last, and so comes first.
    for (int page = last; page >= first && page < pages; --page) {
        paintPage(painter, page);
    }
    paintFrames(painter);
}

} // namespace varnholt
