#include "compositing/ScreenTiles.h"

#include "compositing/BlendRows.h"
#include "compositing/TileStack.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace qirn {

namespace {

constexpr int64_t kStreamAlignment = 64;      // bytes, of the widest vector
constexpr uint32_t kLight = 219, kDark = 179; // white at 0.86 and 0.7

/// The grays behind a row of a tile, one a 32-bit word: there are two kinds of rows.
struct BoardRows {
    alignas(64) uint32_t grays[2][kTileSize];

    /// Of the columns from `left` to before `end`.
    BoardRows(const Checkerboard& board, int64_t tileX, int left, int end) {
        for (int x = left; x < end; ++x) {
            const bool odd = board.squareOf(tileX + x) % 2 != 0;
            grays[0][x] = odd ? kLight : kDark;
            grays[1][x] = odd ? kDark : kLight;
        }
    }
};

} // namespace

bool showsAnything(int64_t tile, std::span<const CompositeInput> layers) {
    return !TileStack(tile, layers).isEmpty();
}

void drawBoard(const Checkerboard& board, const IRect& part, int level, uint8_t* out, int64_t rowBytes) {
    const int64_t side = int64_t{1} << level;
    // How many rows (or columns) of a block lie in odd rows (columns) of squares.
    const auto oddLines = [&board](int64_t first, int64_t end) {
        int64_t odd = 0;
        for (int64_t line = first; line < end; ++line) odd += board.squareOf(line) % 2;
        return odd;
    };
    std::vector<std::pair<int64_t, int64_t>> columns; // of each block: odd ones, all
    for (int64_t x = part.x; x < part.maxX(); x += side) {
        const int64_t end = std::min(x + side, part.maxX());
        columns.emplace_back(oddLines(x, end), end - x);
    }
    for (int64_t y = part.y; y < part.maxY(); y += side, out += rowBytes) {
        const int64_t rows = std::min(side, part.maxY() - y), oddRows = oddLines(y, y + rows);
        auto* words = reinterpret_cast<uint32_t*>(out);
        for (const auto& [odd, all] : columns) {
            const int64_t light = odd * (rows - oddRows) + (all - odd) * oddRows, count = all * rows;
            const int64_t gray = (light * kLight + (count - light) * kDark + count / 2) / count;
            *words++ = 0xFF000000u | static_cast<uint32_t>(gray) * 0x010101u;
        }
    }
}

void drawForScreen(const DirtyTile& tile, std::span<const CompositeInput> layers, const TileGrid& grid,
                   const Checkerboard& board, uint8_t* out, int64_t rowBytes) {
    TileStack stack(tile.index, layers);
    const IRect place = grid.rectOf(tile.index);
    const int left = static_cast<int>(tile.part.x - place.x) / kRunStep * kRunStep;
    const int right = static_cast<int>(tile.part.maxX() - place.x);
    const int top = static_cast<int>(tile.part.y - place.y),
              bottom = static_cast<int>(tile.part.maxY() - place.y);
    const int width = (right - left + kRunStep - 1) / kRunStep * kRunStep;
    const BoardRows rows(board, place.x, left, left + width);
    // Whole tiles come in numbers that exceed the caches, so they are stored past them.
    const bool aligned =
        reinterpret_cast<uintptr_t>(out) % kStreamAlignment == 0 && rowBytes % kStreamAlignment == 0;
    const Through through =
        width == kTileSize && tile.part.h == kTileSize && aligned ? Through::memory : Through::caches;
    const uint32_t* grays[kRunPixels / kRunStep];
    PixelRun acc;
    for (int y = top; y < bottom;) {
        const RunShape shape{width, std::min(kRunPixels / width, bottom - y)};
        for (int row = 0; row < shape.rows; ++row)
            grays[row] = rows.grays[board.squareOf(place.y + y + row) % 2] + left;
        stack.blend(acc, left, y, shape);
        storeOnBoard(out + (y - top) * rowBytes + left * 4, rowBytes, acc, shape, grays, through);
        y += shape.rows;
    }
    if (through == Through::memory) endStreaming();
}

} // namespace qirn
