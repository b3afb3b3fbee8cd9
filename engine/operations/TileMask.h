#pragma once
#include "core/IRect.h"
#include "core/Tile.h"
#include "core/TileGrid.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace qirn {

/// An 8-bit coverage of a canvas that costs memory only where it is neither nothing nor everything: each tile of
/// the grid is covered nowhere, everywhere, or as its own bytes say. What lies beyond the canvas edge does not
/// count.
class TileMask {
public:
    enum class Cover : uint8_t { none, whole, bytes };
    using Bytes = std::unique_ptr<uint8_t[]>; ///< `kTilePixels` of them, top row first.

    explicit TileMask(const TileGrid& grid); ///< Covers nothing.

    const TileGrid& grid() const { return grid_; }
    Cover coverOf(int64_t index) const { return slot(index).cover; }
    const uint8_t* row(int64_t index, int64_t y) const; ///< The 256 bytes of a row of a tile.
    uint8_t value(int64_t x, int64_t y) const;          ///< 0 outside the canvas.
    IRect bounds() const; ///< Tight box of all bytes that are not 0; the zero rectangle when there are none.
    /// Each pixel becomes the largest of itself and its four neighbours.
    TileMask grown() const;

    // Different tiles may be set from different threads.
    void coverWhole(int64_t index) { slot(index) = {Cover::whole, nullptr}; }
    void setBytes(int64_t index, Bytes bytes) { slot(index) = {Cover::bytes, std::move(bytes)}; }

private:
    struct Slot {
        Cover cover = Cover::none;
        Bytes bytes; // with Cover::bytes only
    };
    const Slot& slot(int64_t index) const { return slots_[static_cast<std::size_t>(index)]; }
    Slot& slot(int64_t index) { return slots_[static_cast<std::size_t>(index)]; }
    void growTile(int64_t index, TileMask& to) const;

    TileGrid grid_;
    std::vector<Slot> slots_;
};

} // namespace qirn
