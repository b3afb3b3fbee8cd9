#include "brush/DabStamp.h"

#include "operations/Selection.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"
#include "platform/Trigonometry.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

namespace qirn {

namespace {

// Fewer pixels than this are painted before other threads have woken up.
constexpr int64_t kLeastParallelPixels = 120'000;

/// A dab made ready: what does not change from pixel to pixel.
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

IRect DabStamp::stamp(const Dab& dab) {
    const TipShape tip = shapeOf(dab);
    const TileGrid& grid = document_.grid();
    const IRect box = boxOf(tip).intersection(grid.bounds());
    if (box.isEmpty() || !(dab.ceiling > 0)) return {};
    tiles_.clear();
    for (int64_t index : grid.tilesIn(box)) tiles_.push_back(tileDab(index, box));
    DabInk ink = ink_;
    ink.ceiling = dab.ceiling;
    ink.flow = static_cast<float>(dab.flow);
    ink.textured = dab.textured;
    if (box.w * box.h < kLeastParallelPixels) {
        for (const TileDab& tile : tiles_) stampTile(tip, ink, tile);
    } else {
        concurrentPerform(static_cast<int64_t>(tiles_.size()),
                          [&](int64_t i) { stampTile(tip, ink, tiles_[static_cast<std::size_t>(i)]); });
    }
    document_.markDirty(box);
    return box;
}

void DabStamp::releaseBuffers() {
    work_.clear();
}

DabStamp::TileWork& DabStamp::workOn(int64_t index) {
    TileWork& work = work_[index];
    if (!work.mask) {
        static_assert(kTilePixels * sizeof(float) == kTileBytes);
        work.mask = TileMemory::take();
        std::memset(work.mask.get(), 0, kTileBytes);
        work.before = layer_.tiles().share(index);
        if (work.before) work.before->freeze();
    }
    return work;
}

TileDab DabStamp::tileDab(int64_t index, const IRect& box) {
    TileWork& work = workOn(index);
    const IRect tile = document_.grid().rectOf(index);
    TileDab dab{.part = tile.intersection(box),
                .tileX = tile.x,
                .tileY = tile.y,
                .mask = reinterpret_cast<float*>(work.mask.get()),
                .before = work.before ? std::as_const(*work.before).pixels() : nullptr,
                .pixels = layer_.writableTile(index).writablePixels()};
    if (const Selection* selection = document_.selection.get()) {
        dab.selection = selection->row(tile.y) + tile.x;
        dab.selectionStride = document_.grid().width;
    }
    return dab;
}

} // namespace qirn
