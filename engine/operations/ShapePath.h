#pragma once
#include "core/PaintColor.h"
#include "operations/Stamp.h"
#include "platform/PathCoverage.h"
#include "platform/RowOrder.h"

#include <array>
#include <cstdint>
#include <optional>

#include <QPainterPath>
#include <QPointF>

namespace qirn {

enum class ShapeKind : uint8_t { rectangle, roundedRect, ellipse, line, arrow, star, polygon };

struct ShapeRow {
    ShapeKind kind;
    const char* id;    ///< As settings store it.
    const char* title; ///< English source text of the menu and of the undo step.
};

inline constexpr std::array kShapes{
    ShapeRow{ShapeKind::rectangle, "rectangle", "Rectangle"},
    ShapeRow{ShapeKind::roundedRect, "roundedRect", "Rounded Rectangle"},
    ShapeRow{ShapeKind::ellipse, "ellipse", "Ellipse"},
    ShapeRow{ShapeKind::line, "line", "Line"},
    ShapeRow{ShapeKind::arrow, "arrow", "Arrow"},
    ShapeRow{ShapeKind::star, "star", "Star"},
    ShapeRow{ShapeKind::polygon, "polygon", "Hexagon"},
};
static_assert(isInOrder(kShapes, &ShapeRow::kind));

constexpr const ShapeRow& rowOf(ShapeKind kind) {
    return kShapes[static_cast<std::size_t>(kind)];
}
/// Lines and arrows have no inside that could be filled.
constexpr bool isOpen(ShapeKind kind) {
    return kind == ShapeKind::line || kind == ShapeKind::arrow;
}

enum class Constrain { no, yes };

/// Where the drag from `a` to `b` ends when its box is kept square: as far as the longer side, both ways.
QPointF squareCorner(QPointF a, QPointF b);

/// The path of a shape dragged from `a` to `b` in canvas coordinates; nothing for a drag of less than a pixel both
/// ways. Constrained, lines keep to multiples of 45 degrees and all others to a square box. The line width decides
/// the size of an arrow's head alone.
std::optional<QPainterPath> shapePath(ShapeKind kind, QPointF a, QPointF b, Constrain constrain,
                                      double lineWidth);

/// Pixels of a path (canvas coordinates, non-zero winding): filled, then outlined with round joins and caps, each
/// where it has a color; transparent with neither. Not cut to the canvas. Nothing when more than 39,999 pixels
/// wide or high.
std::optional<PlacedPixels> renderShape(const QPainterPath& path, const std::optional<PaintColor>& fill,
                                        const std::optional<PaintColor>& stroke, double lineWidth,
                                        Antialias antialias);

} // namespace qirn
