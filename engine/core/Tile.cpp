#include "core/Tile.h"

#include <cstring>
#include <new>

namespace qirn {

namespace {
constexpr std::align_val_t kAlignment{64};
uint8_t* allocatePixels() {
    return static_cast<uint8_t*>(::operator new(kTileBytes, kAlignment));
}
} // namespace

Tile::Tile() : pixels_(allocatePixels()) {
    std::memset(pixels_, 0, kTileBytes);
}

Tile::Tile(const Tile& other) : pixels_(allocatePixels()) {
    std::memcpy(pixels_, other.pixels_, kTileBytes);
}

Tile::~Tile() {
    ::operator delete(pixels_, kAlignment);
}

bool Tile::isEmpty() const {
    for (int i = 3; i < kTileBytes; i += 4) {
        if (pixels_[i] != 0) return false;
    }
    return true;
}

} // namespace qirn
