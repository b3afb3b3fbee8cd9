#pragma once
#include "core/Tile.h"
#include "platform/CheckedMath.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace qirn {

/// The tile slots of one layer, a value that copies in constant time: copies share one block of slots until one
/// of them is written. A slot without a tile means fully transparent. An array to which no tile was ever given
/// holds no memory, so a thousand empty layers of a huge canvas cost nothing.
class TileArray {
public:
    TileArray() = default;
    explicit TileArray(int64_t count) : count_(count) {}

    int64_t count() const { return count_; }
    bool holdsNothing() const { return block_ == nullptr; } ///< No slot was ever set.
    const Tile* at(int64_t index) const;                    ///< Null for an absent tile.
    TileRef share(int64_t index) const;                     ///< A second reference; freeze the tile first.
    Tile* mutableAt(int64_t index) const;                   ///< Only for the layer that owns the array.

    void set(int64_t index, TileRef tile);
    void clear() { block_.reset(); } ///< Every slot becomes absent.
    void freezeAll(); ///< Every tile becomes immutable; costs nothing when nothing changed since.

    /// Identity of the shared block of slots: equal for two arrays that share it, null without one.
    const void* identity() const { return block_.get(); }

    template <class Visit>
    void forEachTile(Visit visit) const { ///< visit(index, tile), present tiles only, in order.
        if (!block_) return;
        for (int64_t i = 0; i < count_; ++i) {
            if (const TileRef& tile = block_->slots[checkedSize(i)]) visit(i, *tile);
        }
    }

private:
    struct Block {
        std::vector<TileRef> slots;
        bool allFrozen = false; // immutable from then on: other threads may hold it
    };
    Block& detached();

    int64_t count_ = 0;
    std::shared_ptr<Block> block_;
};

} // namespace qirn
