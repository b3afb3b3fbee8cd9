#include "operations/Fill.h"

#include "core/selection/Selection.h"
#include "operations/flood/FloodMask.h"
#include "operations/painting/CoveragePainter.h"

namespace qirn {

IRect bucketFill(PaintDocument& doc, int64_t x, int64_t y, const PaintColor& color,
                 const FillOptions& options, double opacity) {
    Layer& layer = doc.activeLayer();
    if (layer.isLocked) return {};
    const std::optional<FloodMask> flood = fillMask(doc, x, y, options);
    if (!flood) return {};
    return paintCoverage(doc, flood->bounds, layer, color, opacity, flood->mask);
}

IRect fillSelection(PaintDocument& doc, const PaintColor& color, double opacity) {
    Layer& layer = doc.activeLayer();
    if (layer.isLocked) return {};
    const IRect area = doc.selection ? doc.selection->bounds() : doc.grid().bounds();
    return paintCoverage(doc, area, layer, color, opacity);
}

} // namespace qirn
