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

/// The part of a tile of a layer that is being painted.
struct TilePart {
    int64_t index;
    IRect tile; ///< On the canvas, as `part`.
    IRect part;
    uint8_t* pixels; ///< Of the whole tile.

    uint8_t* row(int64_t y) const { return pixels + placeInTile(0, y); } ///< Of the tile, whole.
};

/// The coverage of row `y` of the part by the selection, full without one; 0 beside the part.
CoverageRow coverageOf(const Selection* selection, const TilePart& painted, int64_t y);

/// Whether the old pixels of a part can show through the paint.
enum class Old { seen, hidden };

/// The parts of a rectangle on one layer, to be painted by `run`.
class TileParts {
public:
    explicit TileParts(Layer& layer) : layer_(layer) {}

    /// Adds a part, unless alpha lock keeps its tile from changing.
    void add(int64_t index, const IRect& part, Old old);
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
