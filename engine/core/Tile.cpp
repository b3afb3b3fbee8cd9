#include "core/Tile.h"

#include "core/StoredForm.h"
#include "platform/Bytes.h"

#include <cstring>
#include <utility>

namespace qirn {

void Tile::remember(std::shared_ptr<const StoredForm> form) const {
    require(frozen_);
    if (form->isCounted()) storedForm_ = std::move(form);
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
    for (int i = 3; i < kTileBytes; i += 4) {
        if (pixels()[i] != 0) return false;
    }
    return true;
}

std::optional<PixelBytes> Tile::onlyPixel() const {
    if (!allAlike(pixels(), kTilePixels, 4)) return std::nullopt;
    return PixelBytes{pixels()[0], pixels()[1], pixels()[2], pixels()[3]};
}

} // namespace qirn
