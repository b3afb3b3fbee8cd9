#include "core/Tile.h"

#include <cstring>

namespace qirn {

Tile::Tile() : pixels_(TileMemory::take()) {
    std::memset(pixels_.get(), 0, kTileBytes);
}

Tile::Tile(const Tile& other) : pixels_(TileMemory::take()) {
    std::memcpy(pixels_.get(), other.pixels(), kTileBytes);
}

bool Tile::isEmpty() const {
    for (int i = 3; i < kTileBytes; i += 4) {
        if (pixels()[i] != 0) return false;
    }
    return true;
}

} // namespace qirn
