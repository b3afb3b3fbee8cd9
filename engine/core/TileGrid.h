#pragma once
#include "core/IRect.h"
#include "core/Tile.h"

#include <cstdint>
#include <vector>

namespace qirn {

/// The geometry of a canvas cut into tiles, numbered across each row from the top left.
struct TileGrid {
    int64_t width = 0;  ///< Canvas width in pixels.
    int64_t height = 0; ///< Canvas height in pixels.
    int64_t cols = 0;
    int64_t rows = 0;

    TileGrid() = default;
    TileGrid(int64_t width, int64_t height);

    int64_t count() const { return cols * rows; }
    IRect bounds() const { return {0, 0, width, height}; }
    /// The tile of a pixel of the canvas.
    int64_t indexAt(int64_t x, int64_t y) const { return y / kTileSize * cols + x / kTileSize; }
    /// The tiles that a rectangle touches, row by row; empty for a rectangle off the canvas.
    std::vector<int64_t> tilesIn(const IRect& rect) const;
    /// The tile's part of the canvas: narrower or lower than a tile at the right and bottom edges.
    IRect rectOf(int64_t index) const;

    bool operator==(const TileGrid&) const = default;
};

} // namespace qirn
