#pragma once
#include "core/IRect.h"
#include "core/PaintColor.h"
#include "core/Tile.h"

#include <cstdint>
#include <map>
#include <tuple>

namespace qirn {

/// Gives each pixel of a part of a tile of zeros this premultiplied value.
void fillPart(Tile& tile, const IRect& part, const PixelBytes& pixel);

/// Tiles of one colour: each is made once, frozen, for all slots that look like it.
class FlatTiles {
public:
    /// Transparent round the part; null where nothing of it shows.
    TileRef tile(const IRect& part, const PixelBytes& pixel);

private:
    using Look = std::tuple<int64_t, int64_t, int64_t, int64_t, PixelBytes>;
    std::map<Look, TileRef> made_;
};

} // namespace qirn
