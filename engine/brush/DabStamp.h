#pragma once
#include "brush/BrushSettings.h"
#include "brush/DabRows.h"
#include "core/IRect.h"
#include "core/PaintColor.h"
#include "core/PaintDocument.h"

#include <array>
#include <cstdint>
#include <memory>
#include <unordered_map>

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
    struct alignas(64) Mask {
        std::array<float, kTilePixels> coverage;
    };
    struct TileWork {
        std::unique_ptr<Mask> mask;
        TileRef before; // null: transparent before the stroke
    };
    /// One tile's share of a dab.
    struct TileJob {
        TileWork* work;
        uint8_t* pixels;
        IRect tile; // its part of the canvas
        IRect box;  // of the dab, inside the canvas
    };

    TileWork& workOn(int64_t index);
    void stampTile(const TipShape& tip, const Dab& dab, const TileJob& job) const;
    RowOf<float> grainOf(int64_t tileX, int64_t y, Columns blocks) const;

    PaintDocument& document_;
    Layer& layer_;
    const bool erases_;
    const float texture_;
    const double textureScale_;
    const std::array<float, 3> color_; // straight, 0 to 1
    std::unordered_map<int64_t, TileWork> work_;
};

} // namespace qirn
