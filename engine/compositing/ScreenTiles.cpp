#include "compositing/ScreenTiles.h"

#include "compositing/BlendRows.h"
#include "compositing/TileStack.h"

#include <algorithm>

namespace qirn {

namespace {

constexpr uint32_t kLight = 219, kDark = 179; // white at 0.86 and 0.7

/// The greys behind a row of a tile, one a 32-bit word: there are two kinds of rows.
struct BoardRows {
    alignas(64) uint32_t greys[2][kTileSize];

    BoardRows(const Checkerboard& board, int64_t tileX) {
        for (int64_t x = 0; x < kTileSize; ++x) {
            const bool odd = board.squareOf(tileX + x) % 2 != 0;
            greys[0][x] = odd ? kLight : kDark;
            greys[1][x] = odd ? kDark : kLight;
        }
    }
};

} // namespace

bool drawForScreen(const DirtyTile& tile, std::span<const CompositeInput> layers, const TileGrid& grid,
                   const Checkerboard& board, uint8_t* out, int64_t rowBytes) {
    TileStack stack(tile.index, layers);
    const IRect place = grid.rectOf(tile.index);
    const int left = static_cast<int>(tile.part.x - place.x) / kRunStep * kRunStep;
    const int right = static_cast<int>(tile.part.maxX() - place.x);
    const int bottom = static_cast<int>(tile.part.maxY() - place.y);
    const int width = (right - left + kRunStep - 1) / kRunStep * kRunStep;
    const BoardRows rows(board, place.x);
    const uint32_t* greys[kRunPixels / kRunStep];
    PixelRun acc;
    for (int y = static_cast<int>(tile.part.y - place.y); y < bottom;) {
        const RunShape shape{width, std::min(kRunPixels / width, bottom - y)};
        for (int row = 0; row < shape.rows; ++row)
            greys[row] = rows.greys[board.squareOf(place.y + y + row) % 2] + left;
        stack.blend(acc, left, y, shape);
        storeOnBoard(out + y * rowBytes + left * 4, rowBytes, acc, shape, greys);
        y += shape.rows;
    }
    return !stack.isEmpty();
}

} // namespace qirn
