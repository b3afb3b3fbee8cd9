#include "operations/painting/TileParts.h"

#include "core/selection/Selection.h"
#include "platform/Bytes.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"

#include <algorithm>
#include <memory>

namespace qirn {

Extent extentOf(const Selection* selection, int64_t index, const IRect& part) {
    if (!selection || selection->tiles().isWhole(index)) return Extent::everything;
    if (selection->tiles().isAbsent(index)) return Extent::nothing;
    const uint8_t* top = selection->row(index, part.y % kTileSize) + part.x % kTileSize;
    const uint8_t first = top[0];
    if (first != 0 && first != 255) return Extent::some;
    for (int64_t y = 0; y < part.h; ++y) {
        const uint8_t* row = top + y * kTileSize;
        if (row[0] != first || !allAlike(row, part.w)) return Extent::some;
    }
    return first == 0 ? Extent::nothing : Extent::everything;
}

CoverageRow coverageOf(const Selection* selection, const TilePart& painted, int64_t y) {
    CoverageRow coverage{};
    uint8_t* first = coverage.data() + (painted.part.x - painted.tile.x);
    if (selection)
        std::copy_n(selection->row(painted.index, y - painted.tile.y) + (painted.part.x - painted.tile.x),
                    painted.part.w, first);
    else
        std::fill_n(first, painted.part.w, uint8_t{255});
    return coverage;
}

void TileParts::add(int64_t index, const IRect& part, Old old) {
    if (layer_.alphaLocked && !layer_.tile(index)) return;
    // A tile keeps its pixels beyond the canvas edge.
    const bool isWhole = part.w * part.h == kTilePixels;
    taken_.push_back({index, part, isWhole ? old : Old::seen});
}

void TileParts::run(const std::function<void(const TilePart& part, int64_t y)>& paint) {
    // Tiles that need no copy are fetched first, since a layer may be changed by one thread only. Copies are made by
    // the thread that paints them, which then has them in its cache.
    std::vector<uint8_t*> pixels(taken_.size());
    std::vector<TileRef> fresh(taken_.size());
    for (std::size_t i = 0; i < taken_.size(); ++i) {
        const Tile* tile = layer_.tile(taken_[i].index);
        if (tile && !tile->isFrozen()) pixels[i] = layer_.writableTile(taken_[i].index).writablePixels();
    }
    concurrentPerform(static_cast<int64_t>(taken_.size()), [&](int64_t number) {
        const auto i = checkedSize(number);
        const auto& [index, part, old] = taken_[i];
        if (!pixels[i]) {
            const Tile* tile = layer_.tile(index);
            fresh[i] = tile && old == Old::seen ? std::make_shared<Tile>(*tile) : std::make_shared<Tile>();
            pixels[i] = fresh[i]->writablePixels();
        }
        const TilePart painted{index, layer_.grid().rectOf(index), part, pixels[i]};
        for (int64_t y = part.y; y < part.maxY(); ++y) paint(painted, y);
    });
    for (std::size_t i = 0; i < taken_.size(); ++i) {
        if (fresh[i]) layer_.setTile(taken_[i].index, std::move(fresh[i]));
    }
}

} // namespace qirn
