#pragma once
#include "core/Layer.h"
#include "platform/Progress.h"

namespace qirn {

/// Fills the tiles of a new layer with the old one's picture, scaled from canvas to canvas and continued beyond its
/// edges by its outermost pixels. Tiles are shared and left absent as by `copyTiles`.
void scaleTiles(Layer& from, Layer& to, const Progress& progress);

} // namespace qirn
