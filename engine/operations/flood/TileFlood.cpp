#include "operations/flood/TileFlood.h"

namespace qirn {

namespace {

constexpr int kLast = kTileSize - 1;

/// Runs to the right of their seeds: adding a seed to its run carries to the end of the run and clears the bits that
/// it passes.
BitRow onwards(const BitRow& open, const BitRow& seeds) {
    BitRow reached;
    uint64_t carry = 0;
    for (int i = 0; i < BitRow::kWords; ++i) {
        const uint64_t withSeeds = open[i] + seeds[i];
        const uint64_t sum = withSeeds + carry;
        carry = static_cast<uint64_t>(withSeeds < open[i]) | static_cast<uint64_t>(sum < withSeeds);
        reached[i] = ((sum ^ open[i]) | seeds[i]) & open[i];
    }
    return reached;
}

/// There is no carry to the left, so the reach is doubled in each step.
BitRow backwards(BitRow open, BitRow reached) {
    const BitRow run = open;
    for (int reach = 1; reach < 64; reach *= 2) {
        for (int i = 0; i < BitRow::kWords; ++i) {
            reached[i] |= open[i] & reached[i] >> reach;
            open[i] &= open[i] >> reach;
        }
    }
    for (int i = BitRow::kWords - 2; i >= 0; --i) {
        const int top = std::countl_one(run[i]);
        if ((reached[i + 1] & 1) && top > 0) reached[i] |= ~uint64_t{0} << (64 - top);
    }
    return reached;
}

} // namespace

BitRow runsThrough(const BitRow& open, const BitRow& seeds) {
    return backwards(open, onwards(open, seeds));
}

void TileFlood::enter(int x, int y) {
    BitRow entry;
    entry.set(x);
    seed(y, entry);
}

void TileFlood::enter(const TileEdges& from) {
    seed(0, from.top);
    seed(kLast, from.bottom);
    for (int y = from.left.lowestFrom(0); y < kTileSize; y = from.left.lowestFrom(y + 1)) enter(0, y);
    for (int y = from.right.lowestFrom(0); y < kTileSize; y = from.right.lowestFrom(y + 1)) enter(kLast, y);
}

TileEdges TileFlood::spread() {
    const TileEdges before = filledEdges();
    while (!waiting_.isEmpty()) {
        for (int y = waiting_.lowestFrom(0); y <= kLast; y = waiting_.lowestFrom(y + 1)) fillRow(y);
        for (int y = waiting_.highestUpTo(kLast); y >= 0; y = waiting_.highestUpTo(y - 1)) fillRow(y);
    }
    const TileEdges after = filledEdges();
    return {after.top & ~before.top, after.bottom & ~before.bottom, after.left & ~before.left,
            after.right & ~before.right};
}

void TileFlood::fillAll() {
    for (int y = 0; y < kTileSize; ++y) filled_[y] |= open_[y];
    open_ = {};
}

void TileFlood::seed(int y, const BitRow& pixels) {
    const BitRow fresh = pixels & open_[y];
    if (fresh.isEmpty()) return;
    seeds_[y] |= fresh;
    waiting_.set(y);
}

void TileFlood::fillRow(int y) {
    const BitRow seeds = seeds_[y] & open_[y];
    seeds_[y] = {};
    waiting_.clear(y);
    if (seeds.isEmpty()) return;
    const BitRow runs = runsThrough(open_[y], seeds);
    filled_[y] |= runs;
    open_[y] &= ~runs;
    if (y > 0) seed(y - 1, runs);
    if (y < kLast) seed(y + 1, runs);
}

TileEdges TileFlood::filledEdges() const {
    TileEdges edges{filled_[0], filled_[kLast], {}, {}};
    for (int y = 0; y < kTileSize; ++y) {
        edges.left[y / 64] |= (filled_[y][0] & 1) << y % 64;
        edges.right[y / 64] |= filled_[y][BitRow::kWords - 1] >> 63 << y % 64;
    }
    return edges;
}

} // namespace qirn
