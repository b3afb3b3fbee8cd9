#pragma once
#include "core/Layer.h"
#include "platform/PixelMap.h"

namespace qirn {

// Both fill the tiles of a new layer from those of an old one of another grid, at the cost of what the old one
// holds. Tiles that come out alike because their sources are one shared tile are made once and shared too, so that
// a filled layer stays as small as it was. Tiles without alpha stay absent, and pixels beyond the canvas edge zero.

/// Every pixel goes to where the map has it. Tiles that fall on tiles are not even copied.
void copyTiles(Layer& from, Layer& to, const PixelMap& map);
/// The picture is scaled from canvas to canvas, continued beyond its edges by its outermost pixels.
void scaleTiles(Layer& from, Layer& to);

} // namespace qirn
