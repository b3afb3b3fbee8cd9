#include "compositing/AlikeTiles.h"

#include "platform/CheckedMath.h"

#include <algorithm>
#include <map>

namespace qirn {

namespace {

/// For each column of tiles, counted across `length` pixels, the number of its kind.
std::vector<std::size_t> kindsOf(int64_t length, const Checkerboard& board) {
    std::map<std::vector<bool>, std::size_t> numbers; // by whether each pixel is in an odd square
    std::vector<std::size_t> kinds;
    for (int64_t first = 0; first < length; first += kTileSize) {
        std::vector<bool> odd;
        for (int64_t x = first; x < std::min(first + kTileSize, length); ++x)
            odd.push_back(board.squareOf(x) % 2 != 0);
        kinds.push_back(numbers.try_emplace(std::move(odd), numbers.size()).first->second);
    }
    return kinds;
}

} // namespace

AlikeTiles::AlikeTiles(const TileGrid& grid, std::span<const CompositeInput> layers,
                       const Checkerboard& board)
    : grid_(grid),
      columnKinds_(kindsOf(grid.width, board)),
      rowKinds_(kindsOf(grid.height, board)),
      firsts_(0, Hash{this}, Equal{this}) {
    for (const CompositeInput& layer : layers) {
        if (layer.visible && layer.opacity > 0 && !layer.tiles.holdsNothing())
            inputs_.push_back(&layer.tiles);
    }
}

bool AlikeTiles::areAlike(int64_t a, int64_t b) const {
    return columnKinds_[checkedSize(a % grid_.cols)] == columnKinds_[checkedSize(b % grid_.cols)] &&
           rowKinds_[checkedSize(a / grid_.cols)] == rowKinds_[checkedSize(b / grid_.cols)] &&
           std::all_of(inputs_.begin(), inputs_.end(),
                       [&](const TileArray* tiles) { return tiles->at(a) == tiles->at(b); });
}

std::size_t AlikeTiles::hashOf(int64_t index) const {
    constexpr std::size_t prime = 0x100000001b3;
    std::size_t hash =
        columnKinds_[checkedSize(index % grid_.cols)] * prime + rowKinds_[checkedSize(index / grid_.cols)];
    for (const TileArray* tiles : inputs_) hash = (hash ^ std::hash<const Tile*>()(tiles->at(index))) * prime;
    return hash ^ hash >> 32;
}

} // namespace qirn
