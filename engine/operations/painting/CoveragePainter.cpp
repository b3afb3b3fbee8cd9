#include "operations/painting/CoveragePainter.h"

#include "core/selection/Selection.h"
#include "operations/painting/RowPainter.h"
#include "operations/painting/TileParts.h"

#include <algorithm>

namespace qirn {

namespace {

/// One color with the selection and mask through which it is painted.
class CoveragePaint {
public:
    CoveragePaint(const PaintDocument& doc, const Layer& layer, const PaintColor& color, double opacity,
                  const TileMask* mask)
        : selection_(doc.selection.get()),
          mask_(mask),
          flat_{static_cast<float>(color.r), static_cast<float>(color.g), static_cast<float>(color.b),
                static_cast<float>(opacity) * static_cast<float>(color.a),
                layer.alphaLocked ? AlphaLock::yes : AlphaLock::no} {}

    bool hidesWhatItCovers() const { return flat_.hides(); }

    Extent extentIn(int64_t index, const IRect& part) const {
        const TileMask::Cover cover = mask_ ? mask_->coverOf(index) : TileMask::Cover::whole;
        if (cover == TileMask::Cover::none) return Extent::nothing;
        const Extent selected = flat_.strength > 0 ? extentOf(selection_, index, part) : Extent::nothing;
        return cover == TileMask::Cover::bits && selected == Extent::everything ? Extent::some : selected;
    }

    void paint(const TilePart& painted, int64_t y) const {
        CoverageRow coverage = coverageOf(selection_, painted, y);
        if (mask_) mask_->limit(coverage, painted.index, static_cast<int>(y - painted.tile.y));
        paintRow(flat_, coverage, painted.row(y));
    }

    /// A fully painted tile, frozen, to be shared by all slots that are covered everywhere.
    TileRef solidTile() const {
        CoverageRow everywhere;
        everywhere.fill(255);
        auto tile = std::make_shared<Tile>();
        for (int y = 0; y < kTileSize; ++y) paintRow(flat_, everywhere, tile->writableRow(y));
        tile->freeze();
        return tile;
    }

private:
    const Selection* selection_;
    const TileMask* mask_; // null: covered everywhere
    const FlatPaint flat_; // `strength` is the opacity at full coverage
};

IRect paintThrough(PaintDocument& doc, const IRect& rect, Layer& layer, const CoveragePaint& paint) {
    const TileGrid& grid = doc.grid();
    const IRect area = rect.intersection(grid.bounds());
    if (area.isEmpty()) return {};
    TileRef solid;
    TileParts parts(layer);
    for (int64_t index : grid.tilesIn(area)) {
        const IRect part = grid.rectOf(index).intersection(area);
        const Extent extent = paint.extentIn(index, part);
        if (extent == Extent::nothing) continue;
        if (paint.hidesWhatItCovers() && extent == Extent::everything && part.w * part.h == kTilePixels) {
            if (!solid) solid = paint.solidTile();
            layer.setTile(index, solid);
        } else {
            parts.add(index, part, Old::seen);
        }
    }
    parts.run([&](const TilePart& part, int64_t y) { paint.paint(part, y); });
    doc.markDirty(area);
    return area;
}

} // namespace

IRect paintCoverage(PaintDocument& doc, const IRect& rect, Layer& layer, const PaintColor& color,
                    double opacity) {
    return paintThrough(doc, rect, layer, CoveragePaint(doc, layer, color, opacity, nullptr));
}

IRect paintCoverage(PaintDocument& doc, const IRect& rect, Layer& layer, const PaintColor& color,
                    double opacity, const TileMask& coverage) {
    require(coverage.grid() == doc.grid());
    return paintThrough(doc, rect, layer, CoveragePaint(doc, layer, color, opacity, &coverage));
}

} // namespace qirn
