#include "core/Tile.h"

#include <cstring>
#include <utility>

namespace qirn {

namespace {
std::atomic<int64_t> heldByForms = 0;
} // namespace

StoredForm::StoredForm(Coding how, std::vector<uint8_t> stream) : coding(how), bytes(std::move(stream)) {}

StoredForm::~StoredForm() {
    if (counted_) heldByForms -= static_cast<int64_t>(bytes.size());
}

// Other threads know a form only once it is counted.
bool StoredForm::isCounted() const {
    const auto size = static_cast<int64_t>(bytes.size());
    if (counted_.exchange(true) || (heldByForms += size) <= mostBytes) return true;
    heldByForms -= size;
    counted_ = false;
    return false;
}

int64_t StoredForm::heldBytes() {
    return heldByForms;
}

void Tile::remember(std::shared_ptr<const StoredForm> form) const {
    require(frozen_);
    if (form->isCounted()) storedForm_ = std::move(form);
}

Tile::Tile() : pixels_(TileMemory::take()) {
    std::memset(pixels_.get(), 0, kTileBytes);
}

Tile::Tile(const Tile& other) : pixels_(TileMemory::take()) {
    std::memcpy(pixels_.get(), other.pixels(), kTileBytes);
}

Tile::Tile(TileMemory::Block filled) : pixels_(std::move(filled)) {
    require(pixels_ != nullptr);
}

bool Tile::isEmpty() const {
    for (int i = 3; i < kTileBytes; i += 4) {
        if (pixels()[i] != 0) return false;
    }
    return true;
}

} // namespace qirn
