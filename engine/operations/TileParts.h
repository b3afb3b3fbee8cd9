#pragma once
#include "core/IRect.h"
#include "core/Layer.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace qirn {

class Selection;

/// How much of a rectangle is covered.
enum class Extent { nothing, some, everything };

/// What a selection covers of a rectangle of the canvas; without one that is everything.
Extent extentOf(const Selection* selection, const IRect& part);

/// Where one tile of a layer and a rectangle of the canvas meet, taken for writing.
struct TilePart {
    int64_t index;
    IRect tile; ///< On the canvas, as `part`.
    IRect part;
    uint8_t* pixels; ///< Of the whole tile.

    uint8_t* row(int64_t y) const { ///< The part's pixels in row `y` of the canvas.
        return pixels + (y - tile.y) * kTileRowBytes + (part.x - tile.x) * 4;
    }
};

/// The parts of a rectangle on one layer, to be painted by `run`.
class TileParts {
public:
    explicit TileParts(Layer& layer) : layer_(layer) {}

    /// Makes or copies the tile, except where an alpha lock lets nothing through to it anyway.
    void take(int64_t index, const IRect& part);
    /// `paint(part, y)` for every row of every part, the parts in parallel.
    void run(const std::function<void(const TilePart& part, int64_t y)>& paint) const;

private:
    Layer& layer_;
    std::vector<TilePart> parts_;
};

} // namespace qirn
