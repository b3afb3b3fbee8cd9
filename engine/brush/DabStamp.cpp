#include "brush/DabStamp.h"

#include "core/selection/Selection.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"
#include "platform/Trigonometry.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

namespace qirn {

namespace {

// Below this number of pixels, waking other threads takes longer than painting.
constexpr int64_t kLeastParallelPixels = 30'000;
// Rows in one task: their old pixels, new pixels and mask fit the L2 cache.
constexpr int64_t kBandRows = 32;

/// The part of a dab that does not depend on the pixel.
TipShape shapeOf(const Dab& dab) {
    TipShape tip{.edge = TipEdge(std::max(dab.radius, 0.5), dab.hardness), .cx = dab.cx, .cy = dab.cy};
    if (dab.roundness >= 0.999) return tip;
    const SineCosine turn = sineCosine(dab.angle * std::numbers::pi / 180);
    tip.isRound = false;
    tip.sine = turn.sine;
    tip.cosine = turn.cosine;
    tip.inverse = 1 / std::max(dab.roundness, 0.05);
    return tip;
}

IRect boxOf(const TipShape& tip) {
    const auto side = checkedWhole(std::ceil(2 * tip.edge.r + 3));
    return {checkedWhole(std::floor(tip.cx - tip.edge.r - 1)),
            checkedWhole(std::floor(tip.cy - tip.edge.r - 1)), side, side};
}

} // namespace

DabStamp::DabStamp(PaintDocument& document, Layer& layer, const BrushSettings& brush, const PaintColor& color)
    : document_(document),
      layer_(layer),
      ink_{.kind = brush.kind == BrushKind::erase ? DabKind::erase
                   : layer.alphaLocked            ? DabKind::paintUnderAlphaLock
                                                  : DabKind::paint,
           .r = static_cast<float>(color.r),
           .g = static_cast<float>(color.g),
           .b = static_cast<float>(color.b),
           .texture = static_cast<float>(brush.texture),
           .textureScale = brush.textureScale} {}

IRect DabStamp::stamp(std::span<const Dab> dabs) {
    placed_.clear();
    tiles_.clear();
    for (const Dab& dab : dabs) place(dab);
    IRect touched;
    int64_t pixels = 0;
    for (const PlacedDab& dab : placed_) {
        touched = touched.united(dab.box);
        pixels += dab.box.w * dab.box.h;
    }
    if (pixels < kLeastParallelPixels) {
        for (const TileDab& tile : tiles_) stampPart(tile, tile.part);
    } else {
        stampBands();
    }
    for (const TileDab& tile : tiles_) document_.markDirty(tile.part);
    return touched;
}

void DabStamp::stampBands() const {
    struct Band {
        const TileDab* tile;
        IRect part;
    };
    std::vector<Band> bands;
    for (const TileDab& tile : tiles_) {
        for (int64_t top = tile.tileY; top < tile.part.maxY(); top += kBandRows) {
            const IRect part = tile.part.intersection({tile.tileX, top, kTileSize, kBandRows});
            if (!part.isEmpty()) bands.push_back({&tile, part});
        }
    }
    // The next pen point touches many of the same rows: they stay with the thread that has them in its caches.
    const auto bandAt = [&bands](int64_t i) { return bands[checkedSize(i)]; };
    concurrentPerformAtHome(
        static_cast<int64_t>(bands.size()), [&](int64_t i) { return bandAt(i).part.y / kBandRows; },
        [&](int64_t i) { stampPart(*bandAt(i).tile, bandAt(i).part); });
}

void DabStamp::releaseBuffers() {
    work_.clear();
}

void DabStamp::place(const Dab& dab) {
    const TipShape tip = shapeOf(dab);
    const IRect box = boxOf(tip).intersection(document_.grid().bounds());
    if (box.isEmpty() || !(dab.ceiling > 0)) return;
    PlacedDab& placed = placed_.emplace_back(PlacedDab{tip, ink_, box});
    placed.ink.ceiling = dab.ceiling;
    placed.ink.flow = static_cast<float>(dab.flow);
    placed.ink.textured = dab.textured;
    const Selection* selection = document_.selection.get();
    for (int64_t index : document_.grid().tilesIn(box)) {
        if (!selection || !selection->tiles().isAbsent(index)) listTile(index, box);
    }
}

/// Adds a tile, or the part of it that another dab touches.
void DabStamp::listTile(int64_t index, const IRect& box) {
    const IRect place = document_.grid().rectOf(index);
    const auto listed = std::find_if(tiles_.rbegin(), tiles_.rend(), [&place](const TileDab& tile) {
        return tile.tileX == place.x && tile.tileY == place.y;
    });
    if (listed != tiles_.rend()) {
        listed->part = listed->part.united(place.intersection(box));
        return;
    }
    const TileWork& work = workOn(index);
    TileDab& tile = tiles_.emplace_back();
    tile = {.part = place.intersection(box),
            .tileX = place.x,
            .tileY = place.y,
            .mask = reinterpret_cast<float*>(work.mask.get()),
            .before = work.before ? std::as_const(*work.before).pixels() : nullptr,
            .pixels = layer_.writableTile(index).writablePixels()};
    if (const Selection* selection = document_.selection.get()) tile.selection = selection->row(index, 0);
}

DabStamp::TileWork& DabStamp::workOn(int64_t index) {
    TileWork& work = work_[index];
    if (!work.mask) {
        static_assert(kTilePixels * sizeof(float) == kTileBytes);
        work.mask = BlockPool::take();
        std::memset(work.mask.get(), 0, kTileBytes);
        work.before = layer_.tiles().share(index);
        if (work.before) work.before->freeze();
        BlockPool::prepare(); // for the tiles that the pen comes to next
    }
    return work;
}

void DabStamp::stampPart(TileDab tile, const IRect& part) const {
    for (const PlacedDab& dab : placed_) {
        tile.part = dab.box.intersection(part);
        if (!tile.part.isEmpty()) stampTile(dab.tip, dab.ink, tile);
    }
}

} // namespace qirn
