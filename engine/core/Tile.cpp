#include "core/Tile.h"

#include "core/StoredForm.h"
#include "platform/Bytes.h"
#include "platform/CheckedMath.h"

#include <cstring>
#include <utility>

namespace qirn {

bool hasAlpha(const uint8_t* pixels, int64_t count) {
    for (int64_t i = 0; i < count; ++i) {
        if (pixels[i * 4 + 3] != 0) return true;
    }
    return false;
}

void fillPixels(uint8_t* tilePixels, const IRect& part, const PixelBytes& pixel) {
    if (part.isEmpty()) return;
    uint8_t* const first = tilePixels + placeInTile(part.x, part.y);
    for (int64_t x = 0; x < part.w; ++x) std::memcpy(first + x * 4, pixel.data(), 4);
    for (int64_t y = 1; y < part.h; ++y)
        std::memcpy(first + y * kTileRowBytes, first, checkedSize(part.w) * 4);
}

Tile::Tile() : pixels_(BlockPool::take()) {
    std::memset(pixels_.get(), 0, kTileBytes);
}

Tile::Tile(const Tile& other) : pixels_(BlockPool::take()) {
    std::memcpy(pixels_.get(), other.pixels(), kTileBytes);
}

Tile::Tile(BlockPool::Block filled) : pixels_(std::move(filled)) {
    require(pixels_ != nullptr);
}

Tile::~Tile() = default;

bool Tile::isEmpty() const {
    return !hasAlpha(pixels(), kTilePixels);
}

std::optional<PixelBytes> Tile::onlyPixel() const {
    if (!allAlike(pixels(), kTilePixels, 4)) return std::nullopt;
    return PixelBytes{pixels()[0], pixels()[1], pixels()[2], pixels()[3]};
}

void Tile::remember(std::shared_ptr<const StoredForm> form) const {
    require(frozen_);
    if (form->isCounted()) storedForm_ = std::move(form);
}

} // namespace qirn
