#pragma once
#include <cstdint>

#include <QImage>
#include <QList>
#include <QPainterPath>
#include <QPolygonF>
#include <QRect>

namespace qirn {

enum class Antialias { no, yes };

/// How far a path's fill (non-zero winding) covers the pixels of a canvas, drawn some rows at a time. Rows drawn apart
/// are, byte for byte, those of one drawing of the whole canvas. With antialiasing a byte is the pixel's covered area
/// from 0 to 255; without, it is 255 where the path covers the pixel's center and otherwise 0.
class PathCoverage {
public:
    /// `path` in canvas coordinates, y down; each side of the canvas from 1 to 32,767 pixels.
    PathCoverage(const QPainterPath& path, Antialias antialias, int64_t width, int64_t height);

    /// Nothing is covered outside; empty where nothing is covered at all.
    const QRect& reach() const { return reach_; }
    /// Rows of the reach's columns, a byte a pixel. Several threads may draw at once.
    QImage rows(int top, int count) const;

private:
    QList<QPolygonF> outlines_; // no curves; corners where QPainter rounds them to
    QRect reach_;
    bool antialias_;
};

/// The same for a whole mask of `width` x `height` bytes, top row first, that holds zeros before.
void fillPathCoverage(const QPainterPath& path, Antialias antialias, uint8_t* mask, int64_t width,
                      int64_t height);

} // namespace qirn
