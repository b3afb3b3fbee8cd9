#include "core/TileGrid.h"

#include "platform/CheckedMath.h"

#include <algorithm>

namespace qirn {

TileGrid::TileGrid(int64_t canvasWidth, int64_t canvasHeight)
    : width(canvasWidth),
      height(canvasHeight),
      cols((canvasWidth + kTileSize - 1) / kTileSize),
      rows((canvasHeight + kTileSize - 1) / kTileSize) {}

std::vector<int64_t> TileGrid::tilesIn(const IRect& rect) const {
    const IRect part = rect.intersection(bounds());
    std::vector<int64_t> tiles;
    if (part.isEmpty()) return tiles;
    const int64_t firstCol = part.x / kTileSize, lastCol = (part.maxX() - 1) / kTileSize;
    const int64_t firstRow = part.y / kTileSize, lastRow = (part.maxY() - 1) / kTileSize;
    tiles.reserve(checkedSize((lastCol - firstCol + 1) * (lastRow - firstRow + 1)));
    for (int64_t row = firstRow; row <= lastRow; ++row) {
        for (int64_t col = firstCol; col <= lastCol; ++col) tiles.push_back(row * cols + col);
    }
    return tiles;
}

IRect TileGrid::rectOf(int64_t index) const {
    const int64_t x = (index % cols) * kTileSize;
    const int64_t y = (index / cols) * kTileSize;
    return {x, y, std::min<int64_t>(width - x, kTileSize), std::min<int64_t>(height - y, kTileSize)};
}

} // namespace qirn
