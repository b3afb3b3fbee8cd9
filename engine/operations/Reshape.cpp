#include "operations/Reshape.h"

#include "operations/CopyTiles.h"
#include "operations/ScaleTiles.h"
#include "platform/resample/PixelMap.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace qirn {

namespace {

/// Replaces the canvas by one of another grid; `redraw` fills the tiles of a new layer from those of the old one.
void reshape(PaintDocument& doc, const TileGrid& grid, const Progress& progress,
             const std::function<void(Layer& from, Layer& to, const Progress& progress)>& redraw) {
    std::vector<LayerRef> layers;
    const auto part = [&] {
        return static_cast<double>(layers.size()) / static_cast<double>(doc.layerCount());
    };
    for (const LayerRef& old : doc.layers()) {
        auto layer = std::make_shared<Layer>(old->settings(), grid, old->id);
        const double begun = part();
        layers.push_back(layer);
        if (!old->tiles().holdsNothing()) redraw(*old, *layer, progress.part(begun, part()));
    }
    doc.selection = nullptr;
    doc.replaceCanvas(grid, std::move(layers), doc.activeIndex());
}

void reshapeByMap(PaintDocument& doc, const TileGrid& grid, const PixelMap& map, const Progress& progress) {
    reshape(doc, grid, progress,
            [&map](Layer& from, Layer& to, const Progress& ofLayer) { copyTiles(from, to, map, ofLayer); });
}

TileGrid gridOf(int64_t width, int64_t height) {
    return {std::max<int64_t>(width, 1), std::max<int64_t>(height, 1)};
}

int64_t shift(int64_t growth, double anchor) {
    return std::llround(static_cast<double>(growth) * (anchor > 0 ? std::min(anchor, 1.0) : 0.0));
}

} // namespace

void resizeImage(PaintDocument& doc, int64_t width, int64_t height, const Progress& progress) {
    const TileGrid grid = gridOf(width, height);
    if (grid == doc.grid()) return reshapeByMap(doc, grid, PixelMap{}, progress);
    reshape(doc, grid, progress, scaleTiles);
}

void resizeCanvas(PaintDocument& doc, int64_t width, int64_t height, double anchorX, double anchorY,
                  const Progress& progress) {
    const TileGrid grid = gridOf(width, height);
    const int64_t dx = shift(grid.width - doc.grid().width, anchorX);
    const int64_t dy = shift(grid.height - doc.grid().height, anchorY);
    reshapeByMap(doc, grid, PixelMap::moved(dx, dy), progress);
}

void cropTo(PaintDocument& doc, const IRect& rect, const Progress& progress) {
    const IRect kept = rect.intersection(doc.grid().bounds());
    if (kept.isEmpty()) return;
    reshapeByMap(doc, gridOf(kept.w, kept.h), PixelMap::moved(-kept.x, -kept.y), progress);
}

void rotate(PaintDocument& doc, int64_t quarterTurns, const Progress& progress) {
    const int64_t w = doc.grid().width, h = doc.grid().height;
    switch (quarterTurns & 3) {
    case 1:
        return reshapeByMap(doc, gridOf(h, w), {0, 1, -1, 0, 0, h - 1}, progress);
    case 2:
        return reshapeByMap(doc, gridOf(w, h), {-1, 0, 0, -1, w - 1, h - 1}, progress);
    case 3:
        return reshapeByMap(doc, gridOf(h, w), {0, -1, 1, 0, w - 1, 0}, progress);
    default:
        return;
    }
}

void flipCanvas(PaintDocument& doc, FlipAxis axis, const Progress& progress) {
    const TileGrid& grid = doc.grid();
    if (axis == FlipAxis::horizontal)
        return reshapeByMap(doc, grid, {-1, 0, 0, 1, grid.width - 1, 0}, progress);
    reshapeByMap(doc, grid, {1, 0, 0, -1, 0, grid.height - 1}, progress);
}

} // namespace qirn
