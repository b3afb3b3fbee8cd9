#pragma once
#include "core/PaintDocument.h"
#include "core/RGBABuffer.h"

#include <cstdint>
#include <memory>

namespace qirn {

/// A buffer with its place on the canvas; both are of one size.
struct PlacedPixels {
    std::shared_ptr<RGBABuffer> buffer;
    IRect rect;
};

enum class UseSelection { no, yes };

/// Lays all of a layer on another one of the same grid (premultiplied, source-over), keeping the other's alpha lock.
/// Tiles of slots that were empty are shared. Marks nothing dirty.
void stampTiles(Layer& source, Layer& layer);

/// Lays a buffer (premultiplied, source-over) on a layer with its top left pixel at (x, y): the one way in which
/// shapes, text and pasted pixels reach a layer. Alpha lock is kept; no tile is created where nothing is painted.
/// Returns the part of the canvas under the buffer, marked dirty; the zero rectangle when there is none. Commits
/// nothing.
IRect stamp(PaintDocument& doc, const RGBABuffer& buffer, int64_t x, int64_t y, Layer& layer, double opacity,
            UseSelection useSelection);

} // namespace qirn
