#pragma once
#include "core/DirtyTiles.h"
#include "core/TileGrid.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <span>
#include <vector>

class QPainter;

namespace qirn {

/// A block of tiles by columns and rows; the ends are outside.
struct TileRange {
    int64_t firstCol = 0, firstRow = 0, endCol = 0, endRow = 0;

    bool isEmpty() const { return firstCol >= endCol || firstRow >= endRow; }
    bool contains(const TileRange& other) const {
        return other.firstCol >= firstCol && other.firstRow >= firstRow && other.endCol <= endCol &&
               other.endRow <= endRow;
    }
    bool operator==(const TileRange&) const = default;
};

/// The one image that the view draws: the visible block of tiles side by side, opaque, kept between paints. Tiles drawn one
/// by one under the view transform would show seams. Below 50% it holds the tiles reduced by powers of two, since a painter
/// that shrinks by more than a half aliases.
class CanvasWindowImage {
public:
    void reset(const TileGrid& grid); ///< Forgets all tiles.

    /// Allocates a block of tiles, each side divided by 2^level, and copies the tiles that both blocks hold.
    void cover(const TileRange& range, int level);
    const TileRange& range() const { return range_; }
    int level() const { return level_; }

    bool inside(int64_t index) const; ///< The tile is one of the block.
    bool holds(int64_t index) const;  ///< Inside the block, and drawn.
    void drop(int64_t index);         ///< It counts as not drawn.
    /// Has parts of tiles drawn, whose tiles are held from then on; parts outside the block are skipped. `draw` gets the
    /// index of a part and its tile's first pixel in the block, whose rows lie `rowBytes` apart; a row has room for whole
    /// tiles, also at the canvas edge. It is called in parallel, once a part: parts of one tile share no block of
    /// 2^level x 2^level pixels.
    using PartDrawer = std::function<void(std::size_t partIndex, uint8_t* tilePixels, int64_t rowBytes)>;
    void put(std::span<const DirtyTile> parts, const PartDrawer& draw);
    /// Draws a tile of the block as another of the same size, which it holds.
    struct Copy {
        int64_t index, like;
    };
    void copy(std::span<const Copy> tiles);
    /// Copies a tile that it holds, at level 0, to a buffer of a whole tile.
    void copyTo(int64_t index, uint8_t* tile) const;

    /// Draws the block; the painter's transform is that from canvas to device.
    void draw(QPainter& painter) const;

private:
    static constexpr std::align_val_t kAlignment{64}; // bytes: what non-temporal stores of vectors need
    struct FreePixels {
        void operator()(uint8_t* pixels) const { operator delete(pixels, kAlignment); }
    };

    std::size_t slotOf(int64_t index) const;
    uint8_t* firstPixelOf(int64_t index) const;

    TileGrid grid_;
    TileRange range_;
    int level_ = 0;
    int64_t rowBytes_ = 0;
    std::unique_ptr<uint8_t[], FreePixels> pixels_; // opaque words 0xFFRRGGBB
    std::vector<bool> held_;                        // by slot in the block, row by row
};

} // namespace qirn
