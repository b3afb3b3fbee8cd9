#pragma once
#include "core/IRect.h"
#include "core/TileGrid.h"
#include "operations/painting/RowPainter.h"
#include "operations/painting/TileBits.h"
#include "platform/CheckedMath.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace qirn {

/// A bit for each pixel of a canvas. Each tile of the grid is covered nowhere, everywhere, or as its bits say; only
/// the latter takes memory. What lies beyond the canvas edge does not count.
class TileMask {
public:
    enum class Cover : uint8_t { none, whole, bits };

    explicit TileMask(const TileGrid& grid); ///< Covers nothing.

    const TileGrid& grid() const { return grid_; }
    Cover coverOf(int64_t index) const { return slot(index).cover; }
    const BitRow& row(int64_t index, int y) const; ///< Of a tile.
    bool covers(int64_t x, int64_t y) const;       ///< Not outside the canvas.
    IRect bounds() const; ///< Tight box of all covered pixels; the zero rectangle when there are none.
    /// Grows by the four neighbors of each covered pixel.
    TileMask grown() const;
    /// Clears the coverage of those pixels of a tile's row that the mask does not cover.
    void limit(CoverageRow& coverage, int64_t index, int y) const;

    // Different tiles may be set from different threads.
    void coverWhole(int64_t index) { slot(index) = {Cover::whole, nullptr}; }
    void setBits(int64_t index, const TileBits& bits);

private:
    struct Slot {
        Cover cover = Cover::none;
        std::unique_ptr<const TileBits> bits; // with Cover::bits only
    };
    const Slot& slot(int64_t index) const { return slots_[checkedSize(index)]; }
    Slot& slot(int64_t index) { return slots_[checkedSize(index)]; }
    void growTile(int64_t index, TileMask& to) const;

    TileGrid grid_;
    std::vector<Slot> slots_;
};

} // namespace qirn
