#pragma once
#include "brush/TipEdge.h"
#include "core/Tile.h"

#include <cstdint>

namespace qirn {

// What one dab does to one row of a tile. Rows are handled in whole blocks, in the tile's own columns, so that the
// widest vectors come out even and never reach beyond the tile. Every instruction set gives the same bytes.

inline constexpr int kDabBlock = 16; ///< Columns of a block; divides the tile's side.

/// Tile columns from `first` to before `last`.
struct Columns {
    int first;
    int last;

    int count() const { return last - first; }
    /// The whole blocks that hold these columns.
    Columns blocks() const {
        return {first / kDabBlock * kDabBlock, (last + kDabBlock - 1) / kDabBlock * kDabBlock};
    }
};

/// A dab's tip: round, or an ellipse turned about its centre, which is given in canvas pixels.
struct TipShape {
    TipEdge edge;
    double cx = 0;
    double cy = 0;
    bool isRound = true;
    double sine = 0; ///< Of the turn.
    double cosine = 1;
    double inverse = 1; ///< Of the roundness.
};

/// One number a column; only the blocks in hand hold anything.
template <class T> struct RowOf { alignas(64) T at[kTileSize]; };

/// The tip's coverage in blocks of columns of a row, by the distance of each pixel's centre. `tileX` is the canvas
/// column of the tile's first; `dy` is how far the row's centre lies below the tip's.
void coverTip(const TipShape& tip, int64_t tileX, double dy, Columns blocks, RowOf<double>& coverage);
/// Multiplies by the paper's grain, which is 0 to 1, as strongly as `texture` says.
void applyGrain(const RowOf<float>& grain, float texture, Columns blocks, RowOf<double>& coverage);
/// Multiplies by a share of selection bytes out of 255.
void applySelection(const RowOf<uint8_t>& selected, Columns blocks, RowOf<double>& coverage);
/// What each pixel's coverage is raised towards: coverage x ceiling, in 32 bits.
void makeTargets(const RowOf<double>& coverage, double ceiling, Columns blocks, RowOf<float>& targets);

enum class DabKind { paint, paintUnderAlphaLock, erase };

/// A row of a tile that a dab changes; all pointers are to the row's first column.
struct DabRow {
    float* mask;           ///< The stroke's coverage so far.
    const uint8_t* before; ///< Pixels as before the stroke.
    uint8_t* pixels;
};
struct DabInk {
    DabKind kind;
    float r, g, b; ///< Straight, 0 to 1; not for erasing.
    float flow;    ///< Part of the way to the target that the coverage goes.
};
/// Raises the coverage of each pixel towards its target and makes those that moved anew from the pixels before the
/// stroke. A target of 0 leaves a pixel alone.
void paintRow(const DabRow& row, const DabInk& ink, Columns blocks, const RowOf<float>& targets);

} // namespace qirn
