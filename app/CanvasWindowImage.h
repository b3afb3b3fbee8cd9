#pragma once
#include "compositing/ScreenTiles.h"
#include "core/DirtyTiles.h"
#include "core/TileGrid.h"

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include <QImage>

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
    void reset(const TileGrid& grid, const Checkerboard& board); ///< Holds nothing from here on.

    /// Makes room for a block of tiles, each side divided by 2^level; keeps what it already holds of it.
    void cover(const TileRange& range, int level);
    const TileRange& range() const { return range_; }
    int level() const { return level_; }

    bool holds(int64_t index) const; ///< Inside the block, and put since it came in.
    void drop(int64_t index);        ///< It must be put again before it is shown.
    /// Copies parts of tiles in, reduced; those outside the block are passed over. `imageOf` gives the image of the
    /// tile that a part, by its number, belongs to: opaque words 0xFFRRGGBB, a whole tile also at the canvas edge;
    /// null for the bare checkerboard. It is called in parallel, once for each part; those of one tile share no block
    /// of 2^level x 2^level pixels.
    void put(std::span<const DirtyTile> parts, const std::function<const uint8_t*(std::size_t)>& imageOf);

    /// Draws the block; the painter's transform is that from canvas to device.
    void draw(QPainter& painter) const;

private:
    bool inside(int64_t index) const;
    std::size_t slotOf(int64_t index) const;

    TileGrid grid_;
    Checkerboard board_;
    TileRange range_;
    int level_ = 0;
    QImage image_;           // Format_RGB32
    std::vector<bool> held_; // by slot in the block, row by row
};

} // namespace qirn
