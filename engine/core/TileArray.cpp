#include "core/TileArray.h"

#include "platform/CheckedMath.h"

namespace qirn {

const Tile* TileArray::at(int64_t index) const {
    return mutableAt(index);
}

TileRef TileArray::share(int64_t index) const {
    require(index >= 0 && index < count_);
    return block_ ? block_->slots[checkedSize(index)] : nullptr;
}

Tile* TileArray::mutableAt(int64_t index) const {
    require(index >= 0 && index < count_);
    return block_ ? block_->slots[checkedSize(index)].get() : nullptr;
}

void TileArray::set(int64_t index, TileRef tile) {
    require(index >= 0 && index < count_);
    if (!tile && !block_) return;
    Block& block = detached();
    block.slots[checkedSize(index)] = std::move(tile);
    block.allFrozen = false;
}

void TileArray::freezeAll() {
    if (!block_ || block_->allFrozen) return;
    for (const TileRef& tile : block_->slots) {
        if (tile) tile->freeze();
    }
    block_->allFrozen = true;
}

TileArray::Block& TileArray::detached() {
    if (!block_) {
        block_ = std::make_shared<Block>();
        block_->slots.resize(checkedSize(count_));
    } else if (block_->allFrozen || block_.use_count() > 1) {
        block_ = std::make_shared<Block>(Block{block_->slots});
    }
    return *block_;
}

} // namespace qirn
