#include "app/canvas/ReducedTile.h"

#include "core/Tile.h"
#include "platform/CheckedMath.h"
#include "platform/Require.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace qirn {

namespace {

constexpr int64_t kBandRows = 32; // of a tile, and whole blocks: drawn at a time
constexpr int kMostLevel = 6;
static_assert((255 << kMostLevel) <= UINT16_MAX); // a column of a block

} // namespace

void copyPixels(uint8_t* to, int64_t toRowBytes, const uint8_t* from, int64_t fromRowBytes, int64_t width,
                int64_t height) {
    for (int64_t y = 0; y < height; ++y) {
        std::memcpy(to + y * toRowBytes, from + y * fromRowBytes, checkedSize(width) * 4);
    }
}

IRect blocksOf(const IRect& part, const IRect& tile, int level) {
    const int64_t side = int64_t{1} << level;
    const auto down = [side](int64_t v) { return v / side * side; };
    const auto up = [side](int64_t v) { return (v + side - 1) / side * side; };
    const int64_t x = down(part.x - tile.x), y = down(part.y - tile.y);
    return {x, y, std::min(up(part.maxX() - tile.x), tile.w) - x,
            std::min(up(part.maxY() - tile.y), tile.h) - y};
}

void reduceTile(const uint8_t* pixels, const IRect& blocks, int level, uint8_t* out, int64_t rowBytes) {
    const int64_t left = blocks.x, right = blocks.maxX(), side = int64_t{1} << level;
    if (level == 0) {
        return copyPixels(out, rowBytes, pixels + left * 4, kTileRowBytes, blocks.w, blocks.h);
    }
    require(level <= kMostLevel);
    for (int64_t top = 0; top < blocks.h; top += side, out += rowBytes) {
        const int64_t rows = std::min(side, blocks.h - top);
        uint16_t sums[kTileRowBytes]; // of each column's channels
        std::fill(sums + left * 4, sums + right * 4, uint16_t{0});
        for (int64_t y = top; y < top + rows; ++y) {
            const uint8_t* row = pixels + y * kTileRowBytes;
            for (int64_t i = left * 4; i < right * 4; ++i) sums[i] = static_cast<uint16_t>(sums[i] + row[i]);
        }
        for (int64_t x = left; x < right; x += side) {
            const int64_t columns = std::min(side, right - x);
            std::array<uint32_t, 4> sum{};
            for (int64_t i = 0; i < columns * 4; i += 4) {
                for (std::size_t c = 0; c < 4; ++c) sum[c] += sums[x * 4 + i + static_cast<int64_t>(c)];
            }
            const auto count = static_cast<uint32_t>(rows * columns);
            uint8_t* const mean = out + ((x - left) >> level) * 4;
            for (std::size_t c = 0; c < 4; ++c) mean[c] = static_cast<uint8_t>((sum[c] + count / 2) / count);
        }
    }
}

void drawReduced(const IRect& blocks, int level,
                 const std::function<void(const IRect& rows, uint8_t* pixels)>& draw, uint8_t* tile,
                 uint8_t* out, int64_t rowBytes) {
    const int64_t most = std::max(kBandRows, int64_t{1} << level);
    alignas(64) uint8_t band[(1 << kMostLevel) * kTileRowBytes];
    for (int64_t y = blocks.y; y < blocks.maxY(); y += most) {
        const IRect rows{blocks.x, y, blocks.w, std::min(most, blocks.maxY() - y)};
        uint8_t* const pixels = tile ? tile + y * kTileRowBytes : band;
        draw(rows, pixels);
        reduceTile(pixels, rows, level, out, rowBytes);
        out += (most >> level) * rowBytes;
    }
}

} // namespace qirn
