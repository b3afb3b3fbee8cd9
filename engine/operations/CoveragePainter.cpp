#include "operations/CoveragePainter.h"

#include "operations/RowPainter.h"
#include "operations/Selection.h"
#include "operations/TileParts.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace qirn {

namespace {

/// One colour, and what it is laid on through.
class CoveragePaint {
public:
    CoveragePaint(const PaintDocument& doc, const PaintColor& color, double opacity, const TileMask* mask)
        : selection_(doc.selection.get()),
          mask_(mask),
          strength_(static_cast<float>(opacity) * static_cast<float>(color.a)) {
        const float straight[] = {static_cast<float>(color.r), static_cast<float>(color.g),
                                  static_cast<float>(color.b), 1};
        for (std::size_t i = 0; i < colors_.size(); ++i) colors_[i] = straight[i % 4];
    }

    bool hidesWhatItCovers() const { return strength_ == 1; }

    Extent extentIn(int64_t index, const IRect& part) const {
        const TileMask::Cover cover = mask_ ? mask_->coverOf(index) : TileMask::Cover::whole;
        if (cover == TileMask::Cover::none) return Extent::nothing;
        const Extent selected = strength_ > 0 ? extentOf(selection_, part) : Extent::nothing;
        return cover == TileMask::Cover::bytes && selected == Extent::everything ? Extent::some : selected;
    }

    void paint(AlphaLock lock, const TilePart& at, int64_t y) const {
        std::array<float, kTileSize> coverage;
        const auto count = static_cast<std::size_t>(at.part.w);
        std::fill_n(coverage.begin(), count, 255.0f);
        if (mask_) {
            std::copy_n(mask_->row(at.index, y - at.tile.y) + (at.part.x - at.tile.x), count,
                        coverage.begin());
        }
        if (selection_) {
            const uint8_t* selected = selection_->row(y) + at.part.x;
            for (std::size_t i = 0; i < count; ++i) coverage[i] = coverage[i] * selected[i] / 255;
        }
        for (std::size_t i = 0; i < count; ++i) coverage[i] = coverage[i] * strength_ / 255;
        paintRow(lock, colors_.data(), coverage.data(), at.row(y), at.part.w);
    }

    /// A tile painted all over, frozen, for as many slots as come to it.
    TileRef solidTile() const {
        PixelBytes pixel{};
        const float full = 1;
        paintRow(AlphaLock::no, colors_.data(), &full, pixel.data(), 1);
        auto tile = std::make_shared<Tile>();
        uint8_t* pixels = tile->writablePixels();
        for (int i = 0; i < kTilePixels; ++i) std::memcpy(pixels + i * 4, pixel.data(), 4);
        tile->freeze();
        return tile;
    }

private:
    const Selection* selection_;
    const TileMask* mask_; // null: covered everywhere
    const float strength_; // of full coverage
    std::array<float, kTileSize * 4> colors_;
};

IRect paintThrough(PaintDocument& doc, const IRect& rect, Layer& layer, const CoveragePaint& paint) {
    const TileGrid& grid = doc.grid();
    const IRect area = rect.intersection(grid.bounds());
    if (area.isEmpty()) return {};
    const AlphaLock lock = layer.alphaLocked ? AlphaLock::yes : AlphaLock::no;
    const bool mayShare = lock == AlphaLock::no && paint.hidesWhatItCovers();
    TileRef solid;
    TileParts parts(layer);
    for (int64_t index : grid.tilesIn(area)) {
        const IRect part = grid.rectOf(index).intersection(area);
        const Extent extent = paint.extentIn(index, part);
        if (extent == Extent::nothing) continue;
        if (mayShare && extent == Extent::everything && part.w * part.h == kTilePixels) {
            if (!solid) solid = paint.solidTile();
            layer.setTile(index, solid);
        } else {
            parts.take(index, part);
        }
    }
    parts.run([&](const TilePart& part, int64_t y) { paint.paint(lock, part, y); });
    doc.markDirty(area);
    return area;
}

} // namespace

IRect paintCoverage(PaintDocument& doc, const IRect& rect, Layer& layer, const PaintColor& color,
                    double opacity) {
    return paintThrough(doc, rect, layer, CoveragePaint(doc, color, opacity, nullptr));
}

IRect paintCoverage(PaintDocument& doc, const IRect& rect, Layer& layer, const PaintColor& color,
                    double opacity, const TileMask& coverage) {
    require(coverage.grid() == doc.grid());
    return paintThrough(doc, rect, layer, CoveragePaint(doc, color, opacity, &coverage));
}

} // namespace qirn
