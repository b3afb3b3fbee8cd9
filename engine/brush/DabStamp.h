#pragma once
#include "brush/BrushSettings.h"
#include "brush/TileDab.h"
#include "core/IRect.h"
#include "core/PaintColor.h"
#include "core/PaintDocument.h"

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

namespace qirn {

/// One imprint of a tip; lengths in canvas pixels.
struct Dab {
    double cx = 0;
    double cy = 0;
    double radius = 1;
    double hardness = 1;
    double ceiling = 1; ///< Most coverage that this imprint may reach.
    double flow = 1;    ///< Part of the way to the ceiling that it goes.
    double angle = 0;   ///< Degrees.
    double roundness = 1;
    bool textured = false;
};

/// Lays the imprints of one painting or erasing stroke.
///
/// A stroke never accumulates on the layer itself: each pixel has one float of coverage, kept here for the
/// stroke's life, and is recomputed from the tile as it stood before the stroke. So opacity is a true ceiling,
/// however often a stroke crosses itself or a tile border.
class DabStamp {
public:
    /// The layer's tiles are frozen by now: the first write copies a tile, and the old one is kept here.
    DabStamp(PaintDocument& document, Layer& layer, const BrushSettings& brush, const PaintColor& color);

    /// Returns the part of the canvas that was looked at, marked dirty; the zero rectangle when there was none.
    IRect stamp(const Dab& dab);
    void releaseBuffers(); ///< The stroke is over: frees every mask and lets the old tiles go.

private:
    struct TileWork {
        TileMemory::Block mask; // a float a pixel: the stroke's coverage, 0 to 1
        TileRef before;         // null: transparent before the stroke
    };
    TileWork& workOn(int64_t index);
    TileDab tileDab(int64_t index, const IRect& box);

    PaintDocument& document_;
    Layer& layer_;
    const DabInk ink_; // what holds for every dab of the stroke
    std::unordered_map<int64_t, TileWork> work_;
    std::vector<TileDab> tiles_; // of the dab at hand
};

} // namespace qirn
