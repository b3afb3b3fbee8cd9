#pragma once
#include "brush/TipEdge.h"
#include "core/IRect.h"
#include "core/Tile.h"

#include <cstdint>

namespace qirn {

/// A dab's tip: round, or an ellipse turned about its center, which is given in canvas pixels.
struct TipShape {
    TipEdge edge;
    double cx = 0;
    double cy = 0;
    bool isRound = true;
    double sine = 0; ///< Of the turn.
    double cosine = 1;
    double inverse = 1; ///< Of the roundness.
};

enum class DabKind { paint, paintUnderAlphaLock, erase };

/// What a dab lays down, wherever it falls.
struct DabInk {
    DabKind kind = DabKind::paint;
    float r = 0, g = 0, b = 0; ///< Straight, 0 to 1; not for erasing.
    double ceiling = 1;        ///< Most coverage that it may reach.
    float flow = 1;            ///< Part of the way to the ceiling that it goes.
    bool textured = false;
    float texture = 0; ///< How strongly the paper's grain shows.
    double textureScale = 1;
};

/// The part of a dab in one tile. All pointers are to the first pixel of the tile; nothing is owned.
struct TileDab {
    IRect part;                         ///< The dab's box in this tile, in canvas pixels; not empty.
    int64_t tileX, tileY;               ///< Canvas pixels.
    float* mask;                        ///< The stroke's coverage so far, a float a pixel; raised.
    const uint8_t* before;              ///< Pixels as before the stroke; null where they were transparent.
    uint8_t* pixels;                    ///< Recomputed from `before` where the coverage rises.
    const uint8_t* selection = nullptr; ///< Bytes of the selection, if there is one, kTileSize a row.
};

/// Raises the coverage of each pixel in the tile towards that of the dab, and recomputes the pixels whose coverage
/// rose. The same bytes on every instruction set.
void stampTile(const TipShape& tip, const DabInk& ink, const TileDab& tile);

} // namespace qirn
