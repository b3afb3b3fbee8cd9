#pragma once
#include "brush/TipEdge.h"
#include "core/Tile.h"

#include <array>
#include <cstdint>

namespace qirn {

/// Coverage of a row of pixels in one tile, each from 0 to 1.
struct TipCoverage {
    alignas(64) std::array<float, kTileSize> share;
};

// Both give the same bits on every instruction set.

/// At distances between pixel corners: the first pixel lies (dx, dy) from the center.
void coverAround(const TipEdge& edge, int64_t dx, int64_t dy, int64_t count, TipCoverage& out);
/// At distances from any point (cx, cy) to pixel centers, as `std::hypot` measures them: the first pixel is (x, y).
void coverAround(const TipEdge& edge, double cx, double cy, int64_t x, int64_t y, int64_t count,
                 TipCoverage& out);

} // namespace qirn
