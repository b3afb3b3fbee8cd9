#pragma once
#include "compositing/Compositor.h"
#include "core/IRect.h"
#include "core/TileGrid.h"

#include <map>
#include <vector>

#include <QImage>

namespace qirn {

class PaintDocument;

/// The finished picture as it is now, for views of a part of it at a smaller size, on a checkerboard where it is clear.
/// It shares the document's tiles, which must not be written meanwhile, and keeps what it has composited at one level.
class ReducedPicture {
public:
    static constexpr int kLastLevel = 8; ///< A pixel for each tile.

    explicit ReducedPicture(const PaintDocument& doc);

    const TileGrid& grid() const { return grid_; }

    struct Part {
        QImage image;   ///< Opaque; null where the region lies off the canvas.
        IRect onCanvas; ///< What it shows: the region, grown to whole tiles.
    };
    /// A pixel for each block of 2^level x 2^level of the canvas; the squares of the checkerboard are `square` pixels of the
    /// canvas wide.
    Part part(const IRect& region, int level, double square);

private:
    void composite(const std::vector<int64_t>& tiles, double square);

    TileGrid grid_;
    std::vector<CompositeInput> layers_;
    int level_ = 0;
    std::map<int64_t, QImage> tiles_; // at level_
};

} // namespace qirn
