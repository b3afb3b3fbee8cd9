#include "operations/Stamp.h"

#include "core/selection/Selection.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace qirn {

namespace {

uint8_t byteOf(float v) {
    return static_cast<uint8_t>(static_cast<int>(std::clamp(v * 255 + 0.5f, 0.0f, 255.0f)));
}

/// `strength` is what opacity and selection leave of the source, which has some alpha.
void layOver(const uint8_t* source, float strength, uint8_t* pixel) {
    if (strength == 1 && source[3] == 255) {
        std::memcpy(pixel, source, 4); // the result of the arithmetic below
        return;
    }
    const float kept = 1 - strength * source[3] / 255;
    for (int c = 0; c < 4; ++c) {
        pixel[c] = byteOf(strength * source[c] / 255 + kept * (static_cast<float>(pixel[c]) / 255));
    }
}

/// The source's straight color goes where there is alpha already.
void layWithinAlpha(const uint8_t* source, float strength, uint8_t* pixel) {
    if (pixel[3] == 0) return;
    const float coverage = strength * source[3] / 255;
    const float alpha = static_cast<float>(pixel[3]) / 255;
    for (int c = 0; c < 3; ++c) {
        const float old = static_cast<float>(pixel[c]) / 255;
        pixel[c] = byteOf(old + coverage * (alpha * source[c] / source[3] - old));
    }
}

/// Lays a whole tile on another; returns whether any pixel was covered.
template <auto kLay> bool stampWhole(const uint8_t* source, uint8_t* pixels) {
    bool landed = false;
    for (int i = 0; i < kTileBytes; i += 4) {
        if (source[i + 3] == 0) continue;
        kLay(source + i, 1, pixels + i);
        landed = true;
    }
    return landed;
}

/// The part of a tile under the buffer, whose top left pixel is at (x, y).
template <auto kLay>
void stampTile(const RGBABuffer& buffer, int64_t x, int64_t y, Layer& layer, int64_t index, const IRect& part,
               const Selection* selection, float strength) {
    const IRect tile = layer.grid().rectOf(index);
    uint8_t* pixels = nullptr; // fetched when the first pixel is painted
    for (int64_t row = part.y; row < part.maxY(); ++row) {
        const uint8_t* source = buffer.pixels(part.x - x, row - y);
        const uint8_t* selected =
            selection ? selection->row(index, row - tile.y) + (part.x - tile.x) : nullptr;
        const int64_t place = placeInTile(part.x, row);
        for (int64_t i = 0; i < part.w; ++i, source += 4) {
            if (source[3] == 0) continue;
            const float m = selected ? static_cast<float>(selected[i]) / 255 * strength : strength;
            if (!(m > 0)) continue;
            if (!pixels) pixels = layer.writableTile(index).writablePixels();
            kLay(source, m, pixels + place + i * 4);
        }
    }
}

} // namespace

void stampTiles(Layer& source, Layer& layer) {
    require(source.grid() == layer.grid());
    struct Overlap {
        int64_t index;
        TileRef result;
    };
    std::vector<Overlap> overlaps;
    source.tiles().forEachTile([&](int64_t index, const Tile&) {
        if (layer.tile(index)) overlaps.push_back({index, nullptr});
    });
    const auto lay = layer.alphaLocked ? stampWhole<layWithinAlpha> : stampWhole<layOver>;
    concurrentPerform(std::ssize(overlaps), [&](int64_t i) {
        Overlap& overlap = overlaps[checkedSize(i)];
        auto result = std::make_shared<Tile>(*layer.tile(overlap.index));
        if (lay(source.tile(overlap.index)->pixels(), result->writablePixels()))
            overlap.result = std::move(result);
    });
    source.freezeTiles();
    if (!layer.alphaLocked) {
        source.tiles().forEachTile([&](int64_t index, const Tile&) {
            if (!layer.tile(index)) layer.setTile(index, source.tiles().share(index));
        });
    }
    for (Overlap& overlap : overlaps) {
        if (overlap.result) layer.setTile(overlap.index, std::move(overlap.result));
    }
}

IRect stamp(PaintDocument& doc, const RGBABuffer& buffer, int64_t x, int64_t y, Layer& layer, double opacity,
            UseSelection useSelection) {
    const TileGrid& grid = doc.grid();
    const IRect rect = IRect{x, y, buffer.width(), buffer.height()}.intersection(grid.bounds());
    if (rect.isEmpty()) return {};
    const Selection* selection = useSelection == UseSelection::yes ? doc.selection.get() : nullptr;
    const auto stampOn = layer.alphaLocked ? stampTile<layWithinAlpha> : stampTile<layOver>;
    for (int64_t index : grid.tilesIn(rect)) {
        if (selection && selection->tiles().isAbsent(index)) continue;
        const IRect part = grid.rectOf(index).intersection(rect);
        stampOn(buffer, x, y, layer, index, part, selection, static_cast<float>(opacity));
    }
    doc.markDirty(rect);
    return rect;
}

} // namespace qirn
