#include "operations/painting/TileMask.h"

#include "platform/CheckedMath.h"
#include "platform/Parallel.h"

#include <array>
#include <cstring>

namespace qirn {

namespace {

const BitRow kUncovered;
const BitRow kCovered = ~BitRow();
constexpr int kLast = kTileSize - 1;

/// For each byte of a row's bits: eight bytes that are 255 where the bit is set, in memory order.
using ByteMasks = std::array<std::array<uint8_t, 8>, 256>;
constexpr ByteMasks makeByteMasks() {
    ByteMasks masks{};
    for (std::size_t byte = 0; byte < masks.size(); ++byte) {
        for (std::size_t bit = 0; bit < 8; ++bit) masks[byte][bit] = byte >> bit & 1 ? 255 : 0;
    }
    return masks;
}
constexpr ByteMasks kByteMasks = makeByteMasks();

/// `before` and `after` are the neighboring pixels of the row in the tiles beside it.
BitRow grownAcross(const BitRow& row, bool before, bool after) {
    BitRow grown = row;
    for (int i = 0; i < BitRow::kWords; ++i) {
        const uint64_t fromBefore = i > 0 ? row[i - 1] >> 63 : before;
        const uint64_t fromAfter = i + 1 < BitRow::kWords ? row[i + 1] & 1 : after;
        grown[i] |= row[i] << 1 | fromBefore | row[i] >> 1 | fromAfter << 63;
    }
    return grown;
}

} // namespace

TileMask::TileMask(const TileGrid& grid) : grid_(grid), slots_(checkedSize(grid.count())) {}

const BitRow& TileMask::row(int64_t index, int y) const {
    const Slot& tile = slot(index);
    if (tile.cover == Cover::bits) return (*tile.bits)[y];
    return tile.cover == Cover::whole ? kCovered : kUncovered;
}

bool TileMask::covers(int64_t x, int64_t y) const {
    if (!grid_.bounds().contains(x, y)) return false;
    const int64_t index = grid_.indexAt(x, y);
    return row(index, static_cast<int>(y % kTileSize)).has(static_cast<int>(x % kTileSize));
}

IRect TileMask::bounds() const {
    IRect box;
    for (int64_t index = 0; index < grid_.count(); ++index) {
        const IRect part = grid_.rectOf(index);
        if (coverOf(index) == Cover::none || box.united(part) == box) continue;
        BitRow columns, rows;
        for (int y = 0; y < part.h; ++y) {
            const BitRow covered = row(index, y) & BitRow::first(static_cast<int>(part.w));
            if (covered.isEmpty()) continue;
            columns |= covered;
            rows.set(y);
        }
        if (rows.isEmpty()) continue;
        const int left = columns.lowestFrom(0), top = rows.lowestFrom(0);
        box = box.united({part.x + left, part.y + top, columns.highestUpTo(kLast) + 1 - left,
                          rows.highestUpTo(kLast) + 1 - top});
    }
    return box;
}

TileMask TileMask::grown() const {
    TileMask result(grid_);
    concurrentPerform(grid_.count(), [&](int64_t index) { growTile(index, result); });
    return result;
}

void TileMask::limit(CoverageRow& coverage, int64_t index, int y) const {
    const BitRow& covered = row(index, y);
    for (int word = 0; word < BitRow::kWords; ++word) {
        uint8_t* eight = coverage.data() + word * 64;
        uint64_t bits = covered[word];
        if (bits == ~uint64_t{0}) continue;
        for (int i = 0; i < 64; i += 8, bits >>= 8, eight += 8) {
            uint64_t bytes, mask;
            std::memcpy(&bytes, eight, 8);
            std::memcpy(&mask, kByteMasks[bits & 0xFF].data(), 8);
            bytes &= mask;
            std::memcpy(eight, &bytes, 8);
        }
    }
}

void TileMask::setBits(int64_t index, const TileBits& bits) {
    if (bits.anyRow().isEmpty())
        slot(index) = {};
    else if (bits.everyRow() == kCovered)
        coverWhole(index);
    else
        slot(index) = {Cover::bits, std::make_unique<const TileBits>(bits)};
}

void TileMask::growTile(int64_t index, TileMask& to) const {
    if (coverOf(index) == Cover::whole) {
        to.coverWhole(index);
        return;
    }
    constexpr int64_t none = -1;
    const int64_t col = index % grid_.cols, gridRow = index / grid_.cols;
    const int64_t left = col > 0 ? index - 1 : none;
    const int64_t right = col + 1 < grid_.cols ? index + 1 : none;
    const int64_t above = gridRow > 0 ? index - grid_.cols : none;
    const int64_t below = gridRow + 1 < grid_.rows ? index + grid_.cols : none;
    const auto isBlank = [&](int64_t tile) { return tile == none || coverOf(tile) == Cover::none; };
    if (isBlank(index) && isBlank(left) && isBlank(right) && isBlank(above) && isBlank(below)) return;

    const auto rowOfTile = [&](int64_t tile, int y) -> const BitRow& {
        return tile == none ? kUncovered : row(tile, y);
    };
    TileBits bits;
    for (int y = 0; y < kTileSize; ++y) {
        bits[y] = grownAcross(row(index, y), rowOfTile(left, y).has(kLast), rowOfTile(right, y).has(0)) |
                  (y > 0 ? row(index, y - 1) : rowOfTile(above, kLast)) |
                  (y < kLast ? row(index, y + 1) : rowOfTile(below, 0));
    }
    to.setBits(index, bits);
}

} // namespace qirn
