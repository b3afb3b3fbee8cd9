#include "formats/common/FlatTiles.h"

namespace qirn {

void fillPart(Tile& tile, const IRect& part, const PixelBytes& pixel) {
    if (!part.isEmpty() && pixel != PixelBytes{}) // a new tile is all zeros
        fillPixels(tile.writablePixels(), part, pixel);
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
