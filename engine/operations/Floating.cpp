#include "operations/Floating.h"

#include "compositing/CompositeInputs.h"
#include "compositing/Compositor.h"
#include "core/MappedRect.h"
#include "core/selection/SelectedPixels.h"
#include "core/selection/Selection.h"
#include "operations/CopyTiles.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"
#include "platform/resample/Resampler.h"

#include <algorithm>
#include <cstring>

namespace qirn {

namespace {

constexpr int64_t kBandRows = kTileSize; // of the canvas, drawn and laid down at a time

/// The rectangle that a lift or a copy takes: the bounds of the selection, or of all content.
std::optional<IRect> takenRect(const PaintDocument& doc) {
    return doc.selection ? doc.selection->bounds() : doc.activeLayer().contentBounds();
}

/// Copies a rectangle of a tile into a buffer that lies at `buffer.rect`, cut by the selection.
void copyOut(const uint8_t* tilePixels, int64_t index, const IRect& tile, const Selection* selection,
             const PlacedPixels& to) {
    if (selection && selection->tiles().isAbsent(index)) return;
    const IRect part = tile.intersection(to.rect);
    for (int64_t y = part.y; y < part.maxY(); ++y) {
        const uint8_t* from = tilePixels + placeInTile(part.x, y);
        uint8_t* out = to.buffer->pixels(part.x - to.rect.x, y - to.rect.y);
        if (!selection || selection->tiles().isWhole(index)) {
            std::memcpy(out, from, checkedSize(part.w) * 4);
            continue;
        }
        const uint8_t* selected = selection->row(index, y - tile.y) + (part.x - tile.x);
        takeSelected(from, selected, part.w, out);
    }
}

/// A tile divided by the selection: the part that is lifted and the part that stays.
struct Halves {
    int64_t index;
    TileRef lifted, left;

    void cut(const Tile& tile, const IRect& part, const Selection& selection) {
        lifted = std::make_shared<Tile>();
        left = std::make_shared<Tile>(tile);
        for (int64_t y = 0; y < part.h; ++y) {
            const uint8_t* selected = selection.row(index, y);
            takeSelected(tile.row(y), selected, part.w, lifted->writableRow(y));
            removeSelected(left->writableRow(y), selected, part.w);
        }
    }
};

/// The pixels of the canvas that a rectangle touches; it may be infinite.
IRect canvasPart(const TileGrid& grid, const QRectF& rect) {
    const QRectF canvas = grid.bounds().rectF();
    if (!rect.intersects(canvas)) return {};
    return IRect::covering(rect.intersected(canvas));
}

} // namespace

bool Floating::hasAlpha() const {
    const TileGrid& grid = pixels->grid();
    for (int64_t index : grid.tilesIn(origin)) {
        const Tile* tile = pixels->tile(index);
        if (!tile) continue;
        const IRect part = grid.rectOf(index).intersection(origin);
        for (int64_t y = part.y; y < part.maxY(); ++y) {
            if (qirn::hasAlpha(tile->pixels() + placeInTile(part.x, y), part.w)) return true;
        }
    }
    return false;
}

std::shared_ptr<RGBABuffer> Floating::picture(const IRect& part) const {
    auto buffer = std::make_shared<RGBABuffer>(part.w, part.h);
    const TileGrid& grid = pixels->grid();
    const std::vector<int64_t> tiles = grid.tilesIn(part);
    concurrentPerform(std::ssize(tiles), [&](int64_t i) {
        const int64_t index = tiles[checkedSize(i)];
        if (const Tile* tile = pixels->tile(index))
            copyOut(tile->pixels(), index, grid.rectOf(index), nullptr, {buffer, part});
    });
    return buffer;
}

std::shared_ptr<const Floating> liftFloating(PaintDocument& doc) {
    Layer& layer = doc.activeLayer();
    if (layer.isLocked) return nullptr;
    const std::optional<IRect> rect = takenRect(doc);
    if (!rect || rect->isEmpty()) return nullptr;
    const Selection* selection = doc.selection.get();
    const auto lifted = std::make_shared<Layer>(layer.name, doc.grid());
    auto floating = std::make_shared<const Floating>(Floating{lifted, *rect, layer.id});
    if (!selection) {
        lifted->shareTilesOf(layer);
        layer.removeAllTiles();
    } else {
        std::vector<Halves> halves;
        for (int64_t index : doc.grid().tilesIn(*rect)) {
            if (layer.tile(index) && !selection->tiles().isAbsent(index)) halves.push_back({index, {}, {}});
        }
        concurrentPerform(std::ssize(halves), [&](int64_t i) {
            Halves& half = halves[checkedSize(i)];
            if (selection->tiles().isWhole(half.index))
                half.lifted = layer.tiles().share(half.index);
            else
                half.cut(*layer.tile(half.index), doc.grid().rectOf(half.index), *selection);
        });
        for (Halves& half : halves) {
            lifted->setTile(half.index, std::move(half.lifted));
            layer.setTile(half.index, std::move(half.left));
        }
        lifted->freezeTiles();
    }
    doc.markDirty(*rect);
    return floating;
}

IRect placeFloating(PaintDocument& doc, const Floating& floating, const QTransform& transform) {
    const auto index = doc.indexOf(floating.layerID);
    if (!index) return {};
    Layer& layer = doc.layer(*index);
    const IRect& origin = floating.origin;
    if (std::optional<PixelMap> toBox = PixelMap::fromTransform(transform)) {
        PixelMap map = *toBox;
        map.x0 += origin.x;
        map.y0 += origin.y;
        const IRect rect = mapped(map.inverse(), origin).intersection(doc.grid().bounds());
        if (rect.isEmpty()) return {};
        Layer placed(layer.name, doc.grid());
        copyTiles(*floating.pixels, placed, map);
        stampTiles(placed, layer);
        doc.markDirty(rect);
        return rect;
    }
    const auto source = floating.picture(origin);
    const Resampler resampler({source->data(), source->width(), source->height(), source->width() * 4},
                              transform);
    const IRect rect = canvasPart(doc.grid(), resampler.reach());
    if (rect.isEmpty()) return {};
    // In bands as high as a tile, so that a picture that fills a large canvas is not held twice.
    for (int64_t y = rect.y; y < rect.maxY();) {
        const int64_t rows = std::min(kBandRows - y % kBandRows, rect.maxY() - y);
        RGBABuffer band(rect.w, rows);
        resampler.draw(rect.x, y, rect.w, rows, band.data());
        stamp(doc, band, rect.x, y, layer, 1, UseSelection::no);
        y += rows;
    }
    return rect;
}

std::optional<PlacedPixels> copyPixels(const PaintDocument& doc, Merged merged) {
    const TileGrid& grid = doc.grid();
    const Selection* selection = doc.selection.get();
    const bool wholeCanvas = merged == Merged::yes && !selection;
    const std::optional<IRect> rect = wholeCanvas ? grid.bounds() : takenRect(doc);
    if (!rect || rect->isEmpty()) return std::nullopt;
    PlacedPixels copy{std::make_shared<RGBABuffer>(rect->w, rect->h), *rect};
    const std::vector<int64_t> tiles = grid.tilesIn(*rect);
    const std::vector<CompositeInput> layers =
        merged == Merged::yes ? compositeInputs(doc, ForDisplay::no) : std::vector<CompositeInput>{};
    concurrentPerform(static_cast<int64_t>(tiles.size()), [&](int64_t i) {
        const int64_t index = tiles[checkedSize(i)];
        if (merged == Merged::no) {
            const Tile* tile = doc.activeLayer().tile(index);
            if (tile) copyOut(tile->pixels(), index, grid.rectOf(index), selection, copy);
        } else {
            const auto pixels = std::make_unique_for_overwrite<uint8_t[]>(kTileBytes);
            if (Compositor::compositeTile(index, layers, pixels.get()))
                copyOut(pixels.get(), index, grid.rectOf(index), selection, copy);
        }
    });
    return copy;
}

} // namespace qirn
