#pragma once
#include "brush/BrushSettings.h"
#include "brush/TileDab.h"
#include "core/IRect.h"
#include "core/PaintColor.h"
#include "core/PaintDocument.h"

#include <cstdint>
#include <memory>
#include <span>
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

    /// Lays dabs in their order. Returns the part of the canvas that was looked at, marked dirty; the zero rectangle
    /// when there was none. All dabs of one pen point are painted in one pass over each tile, its rows on all cores:
    /// pixels do not depend on each other.
    IRect stamp(std::span<const Dab> dabs);
    IRect stamp(const Dab& dab) { return stamp({&dab, 1}); }
    void releaseBuffers(); ///< The stroke is over: frees every mask and lets the old tiles go.

private:
    struct TileWork {
        BlockPool::Block mask; // a float a pixel: the stroke's coverage, 0 to 1
        TileRef before;        // null: transparent before the stroke
    };
    /// A dab prepared for painting on any tile.
    struct PlacedDab {
        TipShape tip;
        DabInk ink;
        IRect box; // inside the canvas
    };
    void place(const Dab& dab);
    void listTile(int64_t index, const IRect& box);
    TileWork& workOn(int64_t index);
    void stampBands() const;
    void stampPart(TileDab tile, const IRect& part) const;

    PaintDocument& document_;
    Layer& layer_;
    const DabInk ink_; // what holds for every dab of the stroke
    std::unordered_map<int64_t, TileWork> work_;
    // For the dabs of the current call:
    std::vector<PlacedDab> placed_;
    std::vector<TileDab> tiles_; // each tile once, with the part of it that dabs touch
};

} // namespace qirn
