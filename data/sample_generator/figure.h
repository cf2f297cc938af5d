#pragma once

#include "expression.h"
#include "math_layout.h"

#include <QBrush>
#include <QMap>
#include <QPen>
#include <QStringList>

#include <functional>
#include <vector>

class QPainter;

namespace varnholt {

/// A figure drawn from the commands below a `figure` line (list: data/sample/README.md).
/// Positions are in the figure's own units, y upwards; `scale` says how many pixels a unit has.
/// Labels and line widths are in pixels.
class Figure
{
public:
    Figure(const Typesetter& typesetter, double textSize);

    /// Carries out one command. Throws std::runtime_error when it cannot be understood.
    void run(const QString& command);

    /// What the commands so far cover, with the pens' widths.
    QRectF bounds() const { return m_bounds; }
    /// Draws with the upper left corner of bounds() at `corner`.
    void draw(QPainter& painter, QPointF corner) const;

private:
    struct Item
    {
        QPainterPath path;
        QPen pen;
        QBrush brush;
    };
    using Words = QStringList;

    void registerDrawing();
    void registerLabels();
    void registerGraphs();
    void registerCircuit();

    QPointF map(QPointF position) const
    {
        return {position.x() * m_scaleX, -position.y() * m_scaleY};
    }
    QPointF position(const QString& word) const;
    double number(const QString& word) const;
    QPointF pixel(const QString& word) const { return map(position(word)); }
    QString rest(const Words& words, int from) const { return words.mid(from).join(u' '); }

    void stroke(const QPainterPath& path, const QPen& pen, const QBrush& brush = Qt::NoBrush);
    void fill(const QPainterPath& path, const QColor& colour);
    void lineTo(QPointF from, QPointF to, const QPen& pen);
    void arrowHead(QPointF tip, QPointF from, const QColor& colour);
    /// Puts a text as near to `at` as `clear` allows, given the rectangle of its ink, on the way
    /// along `direction` (a unit vector, y downwards).
    void label(const QString& text, QPointF at, QPointF direction,
               const std::function<bool(const QRectF&)>& clear);
    /// Puts a text `distance` away from `at`; centred on it where `direction` is null.
    void label(const QString& text, QPointF at, QPointF direction, double distance);
    void axes(const Words& words);
    void numberLine(const Words& words);
    void plot(const Words& words);
    void angle(const Words& words);
    void dimension(const Words& words);
    /// Wires from P and Q to a symbol of length `gap` pixels between them, whose own drawing is
    /// done in coordinates that run along the wire, the origin in the middle.
    void component(const Words& words, double gap,
                   const std::function<void(QPainterPath& outline, QPainterPath& solid)>& symbol,
                   const QString& letter = {});

    const Typesetter& m_typesetter;
    double m_textSize;
    double m_scaleX = 1;
    double m_scaleY = 1;
    Expression m_expression;
    QMap<QString, QPointF> m_points;
    QMap<QString, std::function<void(const Words&)>> m_commands;
    std::vector<Item> m_items;
    std::vector<Item> m_topItems; ///< The numbers of axes, drawn over curves and grid.
    bool m_haloed = false;        ///< Labels go to m_topItems, with a white rim.
    QRectF m_bounds;
};

} // namespace varnholt
