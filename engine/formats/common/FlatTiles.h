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

/// Tiles of one color: each is created once, frozen, and shared by all slots that look the same.
class FlatTiles {
public:
    /// Transparent outside of the part; null if all of it is transparent.
    TileRef tile(const IRect& part, const PixelBytes& pixel);

private:
    using Look = std::tuple<int64_t, int64_t, int64_t, int64_t, PixelBytes>;
    std::map<Look, TileRef> tiles_;
};

} // namespace qirn
