#pragma once
#include "core/IRect.h"
#include "core/Tile.h"
#include "core/TileGrid.h"
#include "platform/CheckedMath.h"

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

namespace qirn {

/// A byte for each pixel of a tile, top row first, 256 bytes a row; what lies beyond the canvas edge does not count.
using MaskTile = std::array<uint8_t, kTilePixels>;

/// An 8-bit mask of a canvas by tiles: absent where all bytes are 0, one tile for all that are 255 all over, bytes only
/// where neither is so. A value; copies share their tiles, which are never written again.
class MaskTiles {
public:
    using Ref = std::shared_ptr<const MaskTile>;

    explicit MaskTiles(const TileGrid& grid); ///< All 0.

    /// The tile of 255 all over, one for all masks.
    static const Ref& whole();

    const TileGrid& grid() const { return grid_; }
    bool isAbsent(int64_t index) const { return !share(index); }
    bool isWhole(int64_t index) const { return share(index) == whole(); }
    const Ref& share(int64_t index) const { return slots_[checkedSize(index)]; }
    /// Row `y` of any tile: absent, whole or with bytes.
    const uint8_t* row(int64_t index, int64_t y) const;
    IRect bounds() const; ///< Tight box of all bytes that are not 0; the zero rectangle when there are none.

    template <class Visit>
    void forEachOwnTile(Visit visit) const { ///< visit(tile) for tiles that hold memory.
        for (const Ref& tile : slots_) {
            if (tile && tile != whole()) visit(*tile);
        }
    }

    // Different tiles may be set from different threads.
    void set(int64_t index, Ref tile) { slots_[checkedSize(index)] = std::move(tile); }
    /// A new tile; stored as absent or as `whole` if all its bytes on the canvas are 0 or 255.
    void setBytes(int64_t index, std::unique_ptr<MaskTile> tile);

private:
    TileGrid grid_;
    std::vector<Ref> slots_;
};

} // namespace qirn
