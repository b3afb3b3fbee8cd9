#pragma once
#include "compositing/ScreenTiles.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <unordered_set>
#include <vector>

namespace qirn {

/// Finds tiles that look the same on the screen, so that each look is composited once: they are equally large, every input
/// has the same tile in them, and the squares of the checkerboard lie alike. Borrows the inputs.
class AlikeTiles {
public:
    AlikeTiles(const TileGrid& grid, std::span<const CompositeInput> layers, const Checkerboard& board);

    /// The first of the tiles asked for so far that looks like this one: itself, where none does.
    int64_t firstLike(int64_t index) { return *firsts_.insert(index).first; }

private:
    bool areAlike(int64_t a, int64_t b) const;
    std::size_t hashOf(int64_t index) const;

    struct Hash {
        const AlikeTiles* tiles;
        std::size_t operator()(int64_t index) const { return tiles->hashOf(index); }
    };
    struct Equal {
        const AlikeTiles* tiles;
        bool operator()(int64_t a, int64_t b) const { return tiles->areAlike(a, b); }
    };

    const TileGrid grid_;
    std::vector<const TileArray*> inputs_; // those that can show
    // Equal for columns, or rows, of tiles that are equally long and cut the squares alike.
    std::vector<std::size_t> columnKinds_, rowKinds_;
    std::unordered_set<int64_t, Hash, Equal> firsts_;
};

} // namespace qirn
