#pragma once
#include "operations/painting/TileBits.h"

namespace qirn {

/// Pixels along the four edges of a tile.
struct TileEdges {
    BitRow top, bottom, left, right;
};

/// All runs of neighbors in `open` in which a seed lies; seeds are open.
BitRow runsThrough(const BitRow& open, const BitRow& seeds);

/// A flood within one tile: from where it came in to all open pixels that are connected with it by their sides.
///
/// Whole rows are processed at once, as bits, in sweeps down and up until no row has seeds left. Winding areas take
/// more sweeps, but only of the rows that they pass through.
class TileFlood {
public:
    explicit TileFlood(const TileBits& open) : open_(open) {}

    void enter(int x, int y);          ///< Nothing comes in where a pixel is not open.
    void enter(const TileEdges& from); ///< From the tiles beside this one.
    TileEdges spread();                ///< Fills; returns what it reached of the edges, each pixel once.
    void fillAll();                    ///< All open pixels, connected or not.
    const TileBits& filled() const { return filled_; }

private:
    void seed(int y, const BitRow& pixels);
    void fillRow(int y);
    TileEdges filledEdges() const;

    TileBits open_; // matching pixels that are not filled yet
    TileBits filled_{};
    TileBits seeds_{};
    BitRow waiting_; // rows with seeds
};

} // namespace qirn
