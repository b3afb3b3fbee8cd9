#pragma once
#include "core/IRect.h"

#include <cstdint>

namespace qirn {

/// A side of 2^level pixels to one, rounded up.
constexpr int64_t reducedLength(int64_t length, int level) {
    return (length + (int64_t{1} << level) - 1) >> level;
}

/// A block of pixels of four bytes from one place to another; rows lie `toRowBytes` and `fromRowBytes` apart.
void copyPixels(uint8_t* to, int64_t toRowBytes, const uint8_t* from, int64_t fromRowBytes, int64_t width,
                int64_t height);

/// A part of a tile, both on the canvas, grown to whole blocks of 2^level x 2^level of the tile's pixels as far as
/// the tile goes. The result counts from the tile's corner.
IRect blocksOf(const IRect& part, const IRect& tile, int level);

/// The plain mean of each block of 2^level x 2^level pixels in `blocks`, which blocksOf gave: at level 0 a copy. `tile` holds opaque
/// words 0xFFRRGGBB in rows of kTileRowBytes; `out` is where its first block goes, its rows `rowBytes` apart.
void reduceTile(const uint8_t* tile, const IRect& blocks, int level, uint8_t* out, int64_t rowBytes);

} // namespace qirn
