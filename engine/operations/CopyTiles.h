#pragma once
#include "core/Layer.h"
#include "platform/Progress.h"
#include "platform/resample/PixelMap.h"

namespace qirn {

/// Fills the tiles of a new layer from those of an old one of another grid: every pixel goes to where the map has it.
/// Costs what the old layer holds. Tiles that fall on tiles are not even copied; others that come out alike because
/// their sources are one shared tile are made once and shared too, so that a filled layer stays as small as it was.
/// Tiles without alpha stay absent, and pixels beyond the canvas edge zero.
void copyTiles(Layer& from, Layer& to, const PixelMap& map, const Progress& progress = {});

} // namespace qirn
