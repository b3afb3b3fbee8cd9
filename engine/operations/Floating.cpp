#include "operations/Floating.h"

#include "compositing/CompositeInputs.h"
#include "compositing/Compositor.h"
#include "operations/Selection.h"
#include "platform/Parallel.h"
#include "platform/Resampler.h"

#include <algorithm>
#include <cstring>

namespace qirn {

namespace {

constexpr int64_t kBandRows = kTileSize; // of the canvas, drawn and laid down at a time

/// The part of a byte that a coverage takes, rounded to nearest. The parts for c and 255 - c add up to it.
uint8_t partOf(uint32_t value, uint32_t coverage) {
    return static_cast<uint8_t>((value * coverage + 127) / 255);
}

/// What a lift or a copy takes: the selection's box or all content.
std::optional<IRect> takenRect(const PaintDocument& doc) {
    return doc.selection ? doc.selection->bounds() : doc.activeLayer().contentBounds();
}

/// Copies a rectangle of a tile into a buffer that lies at `buffer.rect`, cut by the selection.
void copyOut(const uint8_t* tilePixels, int64_t index, const IRect& tile, const Selection* selection,
             const PlacedPixels& to) {
    const IRect part = tile.intersection(to.rect);
    for (int64_t y = part.y; y < part.maxY(); ++y) {
        const uint8_t* from = tilePixels + (y - tile.y) * kTileRowBytes + (part.x - tile.x) * 4;
        uint8_t* out = to.buffer->row(y - to.rect.y) + (part.x - to.rect.x) * 4;
        if (!selection) {
            std::memcpy(out, from, static_cast<std::size_t>(part.w) * 4);
            continue;
        }
        const uint8_t* selected = selection->row(index, y - tile.y) + (part.x - tile.x);
        for (int64_t i = 0; i < part.w * 4; ++i) out[i] = partOf(from[i], selected[i / 4]);
    }
}

/// Leaves in a layer what the selection does not take of it.
void removeSelected(Layer& layer, const TileGrid& grid, const Selection& selection) {
    for (int64_t index : grid.tilesIn(selection.bounds())) {
        if (!layer.tile(index) || selection.tiles().isAbsent(index)) continue;
        const IRect tile = grid.rectOf(index);
        const IRect part = tile.intersection(selection.bounds());
        uint8_t* pixels = nullptr;
        for (int64_t y = part.y; y < part.maxY(); ++y) {
            const uint8_t* selected = selection.row(index, y - tile.y) + (part.x - tile.x);
            const int64_t place = (y - tile.y) * kTileRowBytes + (part.x - tile.x) * 4;
            for (int64_t i = 0; i < part.w; ++i) {
                if (selected[i] == 0) continue;
                if (!pixels) pixels = layer.writableTile(index).writablePixels();
                uint8_t* pixel = pixels + place + i * 4;
                for (int c = 0; c < 4; ++c) pixel[c] = partOf(pixel[c], 255u - selected[i]);
            }
        }
    }
}

/// The whole pixels of the canvas within a rectangle that may be endless.
IRect canvasPart(const TileGrid& grid, const QRectF& rect) {
    const QRectF canvas = grid.bounds().rectF();
    if (!rect.intersects(canvas)) return {};
    return IRect::covering(rect.intersected(canvas));
}

} // namespace

std::shared_ptr<const Floating> liftFloating(PaintDocument& doc) {
    Layer& layer = doc.activeLayer();
    if (layer.isLocked) return nullptr;
    const std::optional<IRect> rect = takenRect(doc);
    if (!rect || rect->isEmpty()) return nullptr;
    const PlacedPixels lifted{std::make_shared<RGBABuffer>(rect->w, rect->h), *rect};
    const Selection* selection = doc.selection.get();
    for (int64_t index : doc.grid().tilesIn(*rect)) {
        const Tile* tile = layer.tile(index);
        if (tile) copyOut(tile->pixels(), index, doc.grid().rectOf(index), selection, lifted);
    }
    if (selection) {
        removeSelected(layer, doc.grid(), *selection);
    } else {
        layer.removeAllTiles();
    }
    doc.markDirty(*rect);
    return std::make_shared<const Floating>(Floating{lifted.buffer, *rect, layer.id});
}

IRect placeFloating(PaintDocument& doc, const Floating& floating, const QTransform& transform) {
    const auto index = doc.indexOf(floating.layerID);
    if (!index) return {};
    Layer& layer = doc.layer(*index);
    const RGBABuffer& source = *floating.buffer;
    const Resampler resampler({source.data(), source.width(), source.height(), source.width() * 4},
                              transform);
    const IRect rect = canvasPart(doc.grid(), resampler.reach());
    if (rect.isEmpty()) return {};
    if (resampler.copies() && resampler.copies()->isMove()) {
        return stamp(doc, source, -resampler.copies()->x0, -resampler.copies()->y0, layer, 1,
                     UseSelection::no);
    }
    // In bands as high as a tile: a picture that is drawn all over a large canvas is never held twice.
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
        const int64_t index = tiles[static_cast<std::size_t>(i)];
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
