#pragma once
#include "core/IRect.h"

#include <cstdint>
#include <functional>

namespace qirn {

/// A length divided by 2^level, rounded up.
constexpr int64_t reducedLength(int64_t length, int level) {
    return (length + (int64_t{1} << level) - 1) >> level;
}

/// Copies `width` x `height` pixels of four bytes; rows lie `toRowBytes` and `fromRowBytes` apart.
void copyPixels(uint8_t* to, int64_t toRowBytes, const uint8_t* from, int64_t fromRowBytes, int64_t width,
                int64_t height);

/// A part of a tile, rounded outward to the tile's blocks of 2^level x 2^level pixels and cut at its edge. Part and tile are
/// rectangles on the canvas, the result counts from the tile's corner.
IRect blocksOf(const IRect& part, const IRect& tile, int level);

/// Writes the mean of each block of 2^level x 2^level pixels in `blocks`, a result of blocksOf; at level 0 a copy. Levels go
/// up to 6. `pixels` is the tile's left edge in the first row of `blocks`; four bytes are a pixel, and rows lie kTileRowBytes
/// apart. The first block goes to `out`, whose rows lie `rowBytes` apart.
void reduceTile(const uint8_t* pixels, const IRect& blocks, int level, uint8_t* out, int64_t rowBytes);

/// Has blocks of a tile drawn as reduceTile wants them, a few rows at a time, which it reduces while they are in the nearest
/// cache. They go into `tile`, the image of the whole tile, or where it is null into nothing that lasts. `draw` gets its
/// rows, counted from the tile's corner, and the tile's left edge in the first of them.
void drawReduced(const IRect& blocks, int level,
                 const std::function<void(const IRect& rows, uint8_t* pixels)>& draw, uint8_t* tile,
                 uint8_t* out, int64_t rowBytes);

} // namespace qirn
