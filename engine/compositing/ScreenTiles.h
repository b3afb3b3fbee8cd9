#pragma once
#include "compositing/Compositor.h"
#include "core/DirtyTiles.h"
#include "core/IRect.h"

#include <cstdint>
#include <span>

namespace qirn {

/// The checkerboard that the screen shows behind transparent pixels: squares of `side` canvas pixels, counted from
/// the canvas corner.
struct Checkerboard {
    double side = 12;

    int64_t squareOf(int64_t pixel) const { return static_cast<int64_t>(static_cast<double>(pixel) / side); }
    bool operator==(const Checkerboard&) const = default;
};

/// Whether any input has something to show in a tile; where none has the screen shows the bare checkerboard.
bool showsAnything(int64_t tile, std::span<const CompositeInput> layers);

/// Draws the bare checkerboard of a part of the canvas, reduced: each word is the rounded mean of a block of
/// 2^level x 2^level pixels, the first at the part's corner; those that the part cuts are means of what is left.
void drawBoard(const Checkerboard& board, const IRect& part, int level, uint8_t* out, int64_t rowBytes);

/// Draws the part of a tile as the screen shows it: opaque words 0xFFRRGGBB over the checkerboard. `out` is the pixel at
/// the tile's left edge in the part's first row, with room for a whole tile across; rows lie `rowBytes` apart, and a few
/// pixels beside the part may be drawn too.
void drawForScreen(const DirtyTile& tile, std::span<const CompositeInput> layers, const TileGrid& grid,
                   const Checkerboard& board, uint8_t* out, int64_t rowBytes);

} // namespace qirn
