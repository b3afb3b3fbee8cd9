#include "operations/Gradient.h"

#include "core/selection/Selection.h"
#include "operations/GradientRow.h"
#include "operations/painting/TileParts.h"

#include <algorithm>
#include <cmath>

namespace qirn {

namespace {

GradientDrag dragOf(GradientKind kind, const QPointF& from, const QPointF& to) {
    const double dx = to.x() - from.x(), dy = to.y() - from.y();
    const double len2 = std::max(dx * dx + dy * dy, 1e-9);
    return {kind, from.x(), from.y(), dx, dy, len2, std::sqrt(len2)};
}

GradientRamp rampOf(const PaintColor& start, const PaintColor& end, double opacity, AlphaLock lock) {
    const double first[] = {start.r * start.a, start.g * start.a, start.b * start.a, start.a};
    const double last[] = {end.r * end.a, end.g * end.a, end.b * end.a, end.a};
    GradientRamp ramp{{}, {}, opacity, lock};
    for (int i = 0; i < 4; ++i) {
        ramp.first[i] = first[i];
        ramp.step[i] = last[i] - first[i];
    }
    return ramp;
}

} // namespace

IRect gradientFill(PaintDocument& doc, const QPointF& from, const QPointF& to, GradientKind kind,
                   const PaintColor& start, const PaintColor& end, double opacity) {
    Layer& layer = doc.activeLayer();
    if (layer.isLocked) return {};
    const Selection* selection = doc.selection.get();
    const IRect area = selection ? selection->bounds() : doc.grid().bounds();
    const GradientDrag drag = dragOf(kind, from, to);
    const GradientRamp ramp = rampOf(start, end, opacity, layer.alphaLocked ? AlphaLock::yes : AlphaLock::no);
    TileParts parts(layer);
    for (int64_t index : doc.grid().tilesIn(area)) {
        const IRect part = doc.grid().rectOf(index).intersection(area);
        const Extent extent = extentOf(selection, index, part);
        if (extent == Extent::nothing) continue;
        parts.add(index, part, ramp.hides() && extent == Extent::everything ? Old::hidden : Old::seen);
    }
    parts.run([&](const TilePart& part, int64_t y) {
        paintRow(drag, ramp, part.tile.x, y, coverageOf(selection, part, y), part.row(y));
    });
    doc.markDirty(area);
    return area;
}

} // namespace qirn
