#include "app/canvas/ReducedTile.h"

#include "core/Tile.h"
#include "platform/CheckedMath.h"

#include <algorithm>
#include <cstring>

namespace qirn {

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

void reduceTile(const uint8_t* tile, const IRect& blocks, int level, uint8_t* out, int64_t rowBytes) {
    if (level == 0) {
        return copyPixels(out + blocks.y * rowBytes + blocks.x * 4, rowBytes,
                          tile + blocks.y * kTileRowBytes + blocks.x * 4, kTileRowBytes, blocks.w, blocks.h);
    }
    const int side = 1 << level;
    const int right = static_cast<int>(blocks.maxX()), bottom = static_cast<int>(blocks.maxY());
    for (int top = static_cast<int>(blocks.y); top < bottom; top += side) {
        auto* target = reinterpret_cast<uint32_t*>(out + (top >> level) * rowBytes);
        for (int left = static_cast<int>(blocks.x); left < right; left += side) {
            uint64_t redBlue = 0, green = 0; // two channels of up to 2^24 in one word
            const int endX = std::min(left + side, right), endY = std::min(top + side, bottom);
            for (int y = top; y < endY; ++y) {
                const auto* row = reinterpret_cast<const uint32_t*>(tile + y * kTileRowBytes);
                for (int x = left; x < endX; ++x) {
                    redBlue += (static_cast<uint64_t>(row[x] & 0xFF0000) << 16) | (row[x] & 0xFF);
                    green += (row[x] >> 8) & 0xFF;
                }
            }
            const auto count = static_cast<uint64_t>((endY - top) * (endX - left));
            const auto mean = [count](uint64_t sum) {
                return static_cast<uint32_t>((sum + count / 2) / count);
            };
            target[left >> level] =
                0xFF000000u | mean(redBlue >> 32) << 16 | mean(green) << 8 | mean(redBlue & 0xFFFFFFFFu);
        }
    }
}

} // namespace qirn
