#pragma once
#include "core/IRect.h"

#include <cstdint>
#include <vector>

namespace qirn {

/// A tile whose image on screen is out of date, and the part of it that changed.
struct DirtyTile {
    int64_t index = 0;
    IRect part; ///< In canvas pixels, inside the tile's own part of the canvas.

    bool operator==(const DirtyTile&) const = default;
};

/// The set of tiles whose image on screen is out of date. Adding one again and again costs nothing.
class DirtyTiles {
public:
    void add(int64_t index, const IRect& part);
    void clear();
    std::vector<DirtyTile> take(); ///< Sorted by index; leaves none.

private:
    std::vector<DirtyTile> listed_; // each tile once, in order of arrival
    std::vector<int32_t> places_;   // by tile index: its index in `listed_`, or -1
};

} // namespace qirn
