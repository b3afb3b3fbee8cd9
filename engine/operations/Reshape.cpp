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
void reshape(PaintDocument& doc, const TileGrid& grid,
             const std::function<void(Layer& from, Layer& to)>& redraw) {
    std::vector<LayerRef> layers;
    for (const LayerRef& old : doc.layers()) {
        auto layer = std::make_shared<Layer>(old->settings(), grid, old->id);
        if (!old->tiles().holdsNothing()) redraw(*old, *layer);
        layers.push_back(std::move(layer));
    }
    doc.selection = nullptr;
    doc.replaceCanvas(grid, std::move(layers), doc.activeIndex());
}

void reshapeByMap(PaintDocument& doc, const TileGrid& grid, const PixelMap& map) {
    reshape(doc, grid, [&map](Layer& from, Layer& to) { copyTiles(from, to, map); });
}

TileGrid gridOf(int64_t width, int64_t height) {
    return {std::max<int64_t>(width, 1), std::max<int64_t>(height, 1)};
}

int64_t shift(int64_t growth, double anchor) {
    return std::llround(static_cast<double>(growth) * (anchor > 0 ? std::min(anchor, 1.0) : 0.0));
}

} // namespace

void resizeImage(PaintDocument& doc, int64_t width, int64_t height) {
    const TileGrid grid = gridOf(width, height);
    if (grid == doc.grid()) return reshapeByMap(doc, grid, PixelMap{});
    reshape(doc, grid, scaleTiles);
}

void resizeCanvas(PaintDocument& doc, int64_t width, int64_t height, double anchorX, double anchorY) {
    const TileGrid grid = gridOf(width, height);
    const int64_t dx = shift(grid.width - doc.grid().width, anchorX);
    const int64_t dy = shift(grid.height - doc.grid().height, anchorY);
    reshapeByMap(doc, grid, PixelMap::moved(dx, dy));
}

void cropTo(PaintDocument& doc, const IRect& rect) {
    const IRect kept = rect.intersection(doc.grid().bounds());
    if (kept.isEmpty()) return;
    reshapeByMap(doc, gridOf(kept.w, kept.h), PixelMap::moved(-kept.x, -kept.y));
}

void rotate(PaintDocument& doc, int64_t quarterTurns) {
    const int64_t w = doc.grid().width, h = doc.grid().height;
    switch (quarterTurns & 3) {
    case 1:
        return reshapeByMap(doc, gridOf(h, w), {0, 1, -1, 0, 0, h - 1});
    case 2:
        return reshapeByMap(doc, gridOf(w, h), {-1, 0, 0, -1, w - 1, h - 1});
    case 3:
        return reshapeByMap(doc, gridOf(h, w), {0, -1, 1, 0, w - 1, 0});
    default:
        return;
    }
}

void flipCanvas(PaintDocument& doc, FlipAxis axis) {
    const TileGrid& grid = doc.grid();
    if (axis == FlipAxis::horizontal) return reshapeByMap(doc, grid, {-1, 0, 0, 1, grid.width - 1, 0});
    reshapeByMap(doc, grid, {1, 0, 0, -1, 0, grid.height - 1});
}

} // namespace qirn
