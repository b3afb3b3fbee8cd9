#include "operations/TileMask.h"

#include "platform/Parallel.h"

#include <algorithm>
#include <array>

namespace qirn {

namespace {

using MaskRow = std::array<uint8_t, kTileSize>;

constexpr MaskRow rowOf(uint8_t value) {
    MaskRow row{};
    for (uint8_t& byte : row) byte = value;
    return row;
}
constexpr MaskRow kUncovered = rowOf(0);
constexpr MaskRow kCovered = rowOf(255);

constexpr bool isSet(uint8_t byte) {
    return byte != 0;
}

constexpr uint8_t larger(uint8_t a, uint8_t b) {
    return a > b ? a : b;
}

/// `left` and `right` are the bytes beside the row.
void growRow(const uint8_t* row, const uint8_t* above, const uint8_t* below, uint8_t left, uint8_t right,
             uint8_t* out) {
    std::array<uint8_t, kTileSize + 2> wide;
    wide.front() = left;
    std::copy_n(row, kTileSize, wide.begin() + 1);
    wide.back() = right;
    for (std::size_t x = 0; x < kTileSize; ++x) {
        const uint8_t across = larger(larger(wide[x], wide[x + 1]), wide[x + 2]);
        out[x] = larger(across, larger(above[x], below[x]));
    }
}

} // namespace

TileMask::TileMask(const TileGrid& grid) : grid_(grid), slots_(static_cast<std::size_t>(grid.count())) {}

const uint8_t* TileMask::row(int64_t index, int64_t y) const {
    const Slot& tile = slot(index);
    if (tile.cover == Cover::bytes) return tile.bytes.get() + y * kTileSize;
    return tile.cover == Cover::whole ? kCovered.data() : kUncovered.data();
}

uint8_t TileMask::value(int64_t x, int64_t y) const {
    if (!grid_.bounds().contains(x, y)) return 0;
    return row((y / kTileSize) * grid_.cols + x / kTileSize, y % kTileSize)[x % kTileSize];
}

IRect TileMask::bounds() const {
    IRect box;
    for (int64_t index = 0; index < grid_.count(); ++index) {
        const IRect part = grid_.rectOf(index);
        if (coverOf(index) == Cover::none || box.united(part) == box) continue;
        if (coverOf(index) == Cover::whole) {
            box = box.united(part);
            continue;
        }
        for (int64_t y = 0; y < part.h; ++y) {
            const uint8_t* bytes = row(index, y);
            const uint8_t* first = std::find_if(bytes, bytes + part.w, isSet);
            if (first == bytes + part.w) continue;
            const uint8_t* last = bytes + part.w - 1;
            while (!isSet(*last)) --last;
            box = box.united({part.x + (first - bytes), part.y + y, last - first + 1, 1});
        }
    }
    return box;
}

TileMask TileMask::grown() const {
    TileMask result(grid_);
    concurrentPerform(grid_.count(), [&](int64_t index) { growTile(index, result); });
    return result;
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

    const auto rowOfTile = [&](int64_t tile, int64_t y) {
        return tile == none ? kUncovered.data() : row(tile, y);
    };
    auto bytes = std::make_unique_for_overwrite<uint8_t[]>(kTilePixels);
    for (int64_t y = 0; y < kTileSize; ++y) {
        growRow(row(index, y), y > 0 ? row(index, y - 1) : rowOfTile(above, kTileSize - 1),
                y + 1 < kTileSize ? row(index, y + 1) : rowOfTile(below, 0),
                rowOfTile(left, y)[kTileSize - 1], rowOfTile(right, y)[0], bytes.get() + y * kTileSize);
    }
    if (std::any_of(bytes.get(), bytes.get() + kTilePixels, isSet)) to.setBytes(index, std::move(bytes));
}

} // namespace qirn
