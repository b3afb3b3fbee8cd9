#pragma once
#include "core/IRect.h"
#include "core/Layer.h"
#include "operations/painting/RowPainter.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace qirn {

class Selection;

/// How much of a rectangle is covered.
enum class Extent { nothing, some, everything };

/// What a selection covers of a tile's part; without one that is everything.
Extent extentOf(const Selection* selection, int64_t index, const IRect& part);

/// Where one tile of a layer and a rectangle of the canvas meet, while it is painted.
struct TilePart {
    int64_t index;
    IRect tile; ///< On the canvas, as `part`.
    IRect part;
    uint8_t* pixels; ///< Of the whole tile.

    uint8_t* row(int64_t y) const { return pixels + placeInTile(0, y); } ///< Of the tile, whole.
};

/// What the selection, or without one everything, covers of row `y` of the part; nothing beside the part.
CoverageRow coverageOf(const Selection* selection, const TilePart& at, int64_t y);

/// Whether anything of what a part held before is seen under what is painted.
enum class Old { seen, hidden };

/// The parts of a rectangle on one layer, to be painted by `run`.
class TileParts {
public:
    explicit TileParts(Layer& layer) : layer_(layer) {}

    /// Takes part in the painting, except where an alpha lock lets nothing through to the tile anyway.
    void take(int64_t index, const IRect& part, Old old);
    /// `paint(part, y)` for every row of every part, the parts in parallel. Makes their tiles, or copies them where needed.
    void run(const std::function<void(const TilePart& part, int64_t y)>& paint);

private:
    struct Taken {
        int64_t index;
        IRect part;
        Old old;
    };

    Layer& layer_;
    std::vector<Taken> taken_;
};

} // namespace qirn
