#include "formats/common/FlatTiles.h"

#include "platform/CheckedMath.h"

#include <cstring>

namespace qirn {

void fillPart(Tile& tile, const IRect& part, const PixelBytes& pixel) {
    if (part.isEmpty() || pixel == PixelBytes{}) return; // a new tile is all zeros
    uint8_t* const start = tile.writableRow(part.y) + part.x * 4;
    for (int64_t x = 0; x < part.w; ++x) std::memcpy(start + x * 4, pixel.data(), 4);
    for (int64_t y = 1; y < part.h; ++y)
        std::memcpy(start + y * kTileRowBytes, start, checkedSize(part.w) * 4);
}

TileRef FlatTiles::tile(const IRect& part, const PixelBytes& pixel) {
    if (part.isEmpty() || pixel == PixelBytes{}) return nullptr;
    TileRef& tile = tiles_[{part.x, part.y, part.w, part.h, pixel}];
    if (!tile) {
        tile = std::make_shared<Tile>();
        fillPart(*tile, part, pixel);
        tile->freeze();
    }
    return tile;
}

} // namespace qirn
