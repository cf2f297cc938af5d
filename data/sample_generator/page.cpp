#include "page.h"

#include "figure.h"

#include <QPainter>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>

namespace varnholt {

namespace {

using namespace Qt::StringLiterals;

// In units; 27 are 36 points on a slide.
constexpr double TextSize = 27;
constexpr double FormulaSize = 32;
constexpr double LabelSize = 22;
constexpr double FigureGap = 26;
constexpr double BlockGap = 20;
constexpr int DotsPerMetre = 5669; // 144 an inch

/// A block of the page: its size, and how to draw it with its upper left corner at a point.
struct Block
{
    double width = 0;
    double height = 0;
    bool centred = false;
    std::function<void(QPainter&, QPointF)> draw;
};

Block blockOf(const Box& box, bool centred)
{
    return {box.width, box.height(), centred, [box](QPainter& painter, QPointF corner) {
                painter.fillPath(box.ink.translated(corner + QPointF(0, box.ascent)), Qt::black);
            }};
}

Block optionsBlock(const Typesetter& typesetter, const QStringList& options, double width)
{
    std::vector<Box> boxes;
    double widest = 0;
    double ascent = 0;
    double descent = 0;
    for (qsizetype index = 0; index < options.size(); ++index) {
        Box box =
            typesetter.line(u"*%1*"_qs.arg(QChar(u'A' + static_cast<char16_t>(index))), TextSize);
        box.add(typesetter.line(options.at(index), TextSize), 34);
        widest = std::max(widest, box.width);
        ascent = std::max(ascent, box.ascent);
        descent = std::max(descent, box.descent);
        boxes.push_back(std::move(box));
    }
    const int columns = 4 * widest + 3 * 24 <= width ? 4 : 2 * widest + 24 <= width ? 2 : 1;
    const double columnWidth = width / columns;
    const double rowHeight = std::max(1.55 * TextSize, ascent + descent + 0.5 * TextSize);
    Box all;
    for (int index = 0; index < 4; ++index)
        all.add(boxes[static_cast<std::size_t>(index)], index % columns * columnWidth,
                index / columns * rowHeight);
    return blockOf(all, false);
}

Block tableBlock(const Typesetter& typesetter, const QStringList& rows)
{
    std::vector<std::vector<Box>> cells;
    std::vector<double> widths;
    double ascent = 0;
    double descent = 0;
    for (const QString& row : rows) {
        auto& line = cells.emplace_back();
        for (const QString& cell : row.split(u" | "_qs)) {
            line.push_back(typesetter.line(cell, LabelSize));
            ascent = std::max(ascent, line.back().ascent);
            descent = std::max(descent, line.back().descent);
            widths.resize(std::max(widths.size(), line.size()));
            auto& width = widths[line.size() - 1];
            width = std::max(width, line.back().width + 30);
        }
    }
    // The columns of values are equally wide.
    const double common = *std::max_element(widths.begin() + 1, widths.end());
    std::fill(widths.begin() + 1, widths.end(), common);
    const double rowHeight = ascent + descent + 16;
    Block block;
    block.width = widths.front() + common * static_cast<double>(widths.size() - 1);
    block.height = rowHeight * static_cast<double>(cells.size());
    block.centred = true;
    block.draw = [=](QPainter& painter, QPointF corner) {
        painter.fillRect(QRectF(corner, QSizeF(widths.front(), block.height)),
                         QColor(232, 239, 248));
        painter.setPen(QPen(Qt::black, 1.2));
        double y = corner.y();
        for (const auto& row : cells) {
            double x = corner.x();
            for (std::size_t column = 0; column < row.size(); ++column) {
                painter.drawRect(QRectF(x, y, widths[column], rowHeight));
                painter.fillPath(row[column].ink.translated(
                                     x + (widths[column] - row[column].width) / 2, y + 8 + ascent),
                                 Qt::black);
                x += widths[column];
            }
            y += rowHeight;
        }
    };
    return block;
}

Block figureBlock(const Typesetter& typesetter, const QStringList& commands)
{
    const auto figure = std::make_shared<Figure>(typesetter, LabelSize);
    for (const QString& command : commands)
        figure->run(command);
    return {figure->bounds().width(), figure->bounds().height(), true,
            [figure](QPainter& painter, QPointF corner) { figure->draw(painter, corner); }};
}

Block blockFor(const Typesetter& typesetter, const ContentLine& line, const QStringList& options,
               double width)
{
    if (line.keyword == u"math") {
        Box box = typesetter.formula(line.text, FormulaSize, true);
        box.ascent = std::max(box.ascent, 0.8 * FormulaSize);
        box.descent = std::max(box.descent, 0.28 * FormulaSize);
        return blockOf(box, true);
    }
    if (line.keyword == u"options")
        return optionsBlock(typesetter, options, width);
    if (line.keyword == u"table")
        return tableBlock(typesetter, line.body);
    if (line.keyword == u"figure")
        return figureBlock(typesetter, line.body);
    return blockOf(typesetter.paragraph(line.text, TextSize, width), false);
}

/// Nothing may reach into the border, and a page without ink asks nothing.
void checkInk(const QImage& page)
{
    constexpr int clear = static_cast<int>(PageMargin * UnitPixels * 3 / 4);
    const QRect inside = page.rect().adjusted(clear, clear, -clear, -clear);
    int dark = 0;
    for (int y = 0; y < page.height(); ++y)
        for (int x = 0; x < page.width(); ++x) {
            const int grey = qGray(page.pixel(x, y));
            dark += grey < 100;
            if (grey < 235 && !inside.contains(x, y))
                throw std::runtime_error("the drawing reaches into the border");
        }
    if (dark < page.width())
        throw std::runtime_error("the page is all but empty");
}

} // namespace

QImage drawQuestion(const Typesetter& typesetter, const SampleQuestion& question)
try {
    constexpr double Inner = PageWidth - 2 * PageMargin;
    std::optional<Block> beside;
    for (const ContentLine& line : question.lines)
        if (line.keyword == u"figure" && line.text == u"right")
            beside = figureBlock(typesetter, line.body);
    const double width = beside ? Inner - beside->width - FigureGap : Inner;
    std::vector<Block> blocks;
    double height = 0;
    for (const ContentLine& line : question.lines) {
        if (line.keyword == u"figure" && line.text == u"right")
            continue;
        blocks.push_back(blockFor(typesetter, line, question.options, width));
        height += blocks.back().height;
        if (blocks.back().width > width + 0.5)
            throw std::runtime_error(
                u"\"%1\" is wider than its column"_qs.arg(line.text).toStdString());
    }
    const double gaps = static_cast<double>(blocks.size() - 1);
    constexpr double Room = PageHeight - 2 * PageMargin;
    const double gap = gaps > 0 ? std::min(BlockGap, (Room - height) / gaps) : 0;
    if (gap < (gaps > 0 ? 9 : 0) || height > Room || (beside && beside->height > Room))
        throw std::runtime_error("the question is too high");

    QImage image(PictureWidth, PictureHeight, QImage::Format_RGB32);
    image.fill(Qt::white);
    image.setDotsPerMeterX(DotsPerMetre);
    image.setDotsPerMeterY(DotsPerMetre);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(UnitPixels, UnitPixels);
    // A little above the middle looks like the middle.
    double y = PageMargin + (Room - height - gap * gaps) * 0.45;
    for (const Block& block : blocks) {
        block.draw(painter, {PageMargin + (block.centred ? (width - block.width) / 2 : 0), y});
        y += block.height + gap;
    }
    if (beside)
        beside->draw(painter,
                     {PageMargin + Inner - beside->width, (PageHeight - beside->height) / 2});
    painter.end();
    checkInk(image);
    return image;
} catch (const std::runtime_error& error) {
    throw std::runtime_error(
        u"%1: %2"_qs.arg(question.where, QString::fromUtf8(error.what())).toStdString());
}

} // namespace varnholt
