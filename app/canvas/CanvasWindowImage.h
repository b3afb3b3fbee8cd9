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

/// The one image that the view draws: the visible block of tiles side by side, opaque, kept between paints. One
/// image under the view transform has no seams, as tiles drawn one by one would. Below 50% it holds the tiles
/// reduced by powers of two, since a painter that shrinks further would alias.
class CanvasWindowImage {
public:
    void reset(const TileGrid& grid); ///< Holds nothing from here on.

    /// Makes room for a block of tiles, each side divided by 2^level; keeps what it already holds of it.
    void cover(const TileRange& range, int level);
    const TileRange& range() const { return range_; }
    int level() const { return level_; }

    bool inside(int64_t index) const; ///< The block has a place for the tile.
    bool holds(int64_t index) const;  ///< Inside the block, and put since it came in.
    void drop(int64_t index);         ///< It must be put again before it is shown.
    /// Has parts of tiles drawn, which are held from then on; those outside the block are passed over. `draw` gets a
    /// part's number and the place of its tile's first pixel in the block, whose rows lie `rowBytes` apart; a row has
    /// room for whole tiles, also at the canvas edge. It is called in parallel, once for each part: parts of one tile
    /// share no block of 2^level x 2^level pixels.
    using PartDrawer = std::function<void(std::size_t number, uint8_t* out, int64_t rowBytes)>;
    void put(std::span<const DirtyTile> parts, const PartDrawer& draw);
    /// Copies the pixels of a tile that it holds, not reduced, to a whole tile.
    void copyTo(int64_t index, uint8_t* tile) const;

    /// Draws the block; the painter's transform is that from canvas to device.
    void draw(QPainter& painter) const;

private:
    static constexpr std::align_val_t kAlignment{64}; // so that whole tiles can be stored past the caches
    struct FreePixels {
        void operator()(uint8_t* pixels) const { operator delete(pixels, kAlignment); }
    };

    std::size_t slotOf(int64_t index) const;
    uint8_t* placeOf(int64_t index) const; ///< Of a tile's first pixel.

    TileGrid grid_;
    TileRange range_;
    int level_ = 0;
    int64_t rowBytes_ = 0;
    std::unique_ptr<uint8_t[], FreePixels> pixels_; // opaque words 0xFFRRGGBB
    std::vector<bool> held_;                        // by slot in the block, row by row
};

} // namespace qirn
