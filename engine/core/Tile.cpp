#include "core/Tile.h"

#include "core/StoredForm.h"

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

} // namespace qirn
