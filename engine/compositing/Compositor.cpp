#include "compositing/Compositor.h"

#include "compositing/BlendRows.h"
#include "core/PaintEngine.h"
#include "platform/Parallel.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace qirn {

namespace {

// A tile is composited in strips, so that the accumulators stay in the nearest cache: pixels do not depend on
// each other.
constexpr int kStripRows = 8;
constexpr int kStripPixels = kStripRows * kTileSize;
constexpr int kStripFloats = kStripPixels * 4;

/// One input or clipping group that shows in the tile.
struct Group {
    const CompositeInput* base;
    std::vector<const CompositeInput*> clipped; // those that show, in order
};

/// A clipped layer is never seen without its base: a base that is hidden, or has no tile here, takes the layers
/// clipped to it along. The flag of the lowest input is not looked at.
std::vector<Group> groupsIn(int64_t index, std::span<const CompositeInput> layers) {
    const auto shows = [index](const CompositeInput& input) {
        return input.visible && input.opacity > 0 && input.tiles.at(index);
    };
    std::vector<Group> groups;
    for (std::size_t i = 0; i < layers.size();) {
        const CompositeInput& base = layers[i++];
        const bool seen = shows(base);
        Group group{&base, {}};
        for (; i < layers.size() && layers[i].clipping; ++i) {
            if (seen && shows(layers[i])) group.clipped.push_back(&layers[i]);
        }
        if (seen) groups.push_back(std::move(group));
    }
    return groups;
}

struct TileStrip {
    int64_t index;
    int firstByte; // of the strip within a tile

    const uint8_t* of(const CompositeInput& input) const {
        return input.tiles.at(index)->pixels() + firstByte;
    }
};

/// Lays one tile's strip on an accumulator. Over nothing any mode is a plain copy.
void blendStrip(float* acc, const TileStrip& strip, const CompositeInput& input, float opacity,
                BlendMode mode, Compositor::Atop atop, bool accEmpty) {
    if (accEmpty && atop == Compositor::Atop::no && !input.tint) {
        copyByteRow(acc, strip.of(input), kStripPixels, opacity);
    } else {
        blendByteRow(acc, strip.of(input), kStripPixels, opacity, mode, atop, input.tint);
    }
}

void compositeGroup(float* acc, const TileStrip& strip, const Group& group, bool accEmpty) {
    const CompositeInput& base = *group.base;
    if (group.clipped.empty()) {
        blendStrip(acc, strip, base, base.opacity, base.mode, Compositor::Atop::no, accEmpty);
        return;
    }
    // The group is built alone, its base at full strength, and then laid down as one layer.
    alignas(64) float alone[kStripFloats] = {};
    blendStrip(alone, strip, base, 1, BlendMode::normal, Compositor::Atop::no, true);
    for (const CompositeInput* clipped : group.clipped) {
        blendStrip(alone, strip, *clipped, clipped->opacity, clipped->mode, Compositor::Atop::yes, false);
    }
    if (accEmpty) {
        for (int i = 0; i < kStripFloats; ++i) acc[i] = alone[i] * base.opacity;
    } else {
        blendFloatRow(acc, alone, kStripPixels, base.opacity, base.mode);
    }
}

} // namespace

bool Compositor::compositeTile(int64_t index, std::span<const CompositeInput> layers, uint8_t* out) {
    const std::vector<Group> groups = groupsIn(index, layers);
    if (groups.empty()) {
        std::memset(out, 0, kTileBytes);
        return false;
    }
    alignas(64) float acc[kStripFloats];
    for (int row = 0; row < kTileSize; row += kStripRows) {
        const TileStrip strip{index, row * kTileRowBytes};
        std::memset(acc, 0, sizeof acc);
        bool empty = true;
        for (const Group& group : groups) {
            compositeGroup(acc, strip, group, empty);
            empty = false;
        }
        storeByteRow(out + strip.firstByte, acc, kStripPixels);
    }
    return true;
}

std::map<int64_t, QImage> Compositor::compositeImages(std::span<const int64_t> tiles,
                                                      std::span<const CompositeInput> layers,
                                                      const TileGrid& grid) {
    std::vector<QImage> images(tiles.size());
    concurrentPerform(static_cast<int64_t>(tiles.size()), [&](int64_t i) {
        const int64_t index = tiles[static_cast<std::size_t>(i)];
        const IRect part = grid.rectOf(index);
        QImage image(kTileSize, kTileSize, PaintEngine::imageFormat);
        if (!compositeTile(index, layers, image.bits())) return;
        const bool whole = part.w == kTileSize && part.h == kTileSize;
        images[static_cast<std::size_t>(i)] =
            whole ? image : image.copy(0, 0, static_cast<int>(part.w), static_cast<int>(part.h));
    });
    std::map<int64_t, QImage> result;
    for (std::size_t i = 0; i < tiles.size(); ++i) {
        if (!images[i].isNull()) result.emplace(tiles[i], std::move(images[i]));
    }
    return result;
}

std::shared_ptr<RGBABuffer> Compositor::flatten(std::span<const CompositeInput> layers,
                                                const TileGrid& grid) {
    auto buffer = std::make_shared<RGBABuffer>(grid.width, grid.height);
    concurrentPerform(grid.count(), [&](int64_t index) {
        const auto tile = std::make_unique_for_overwrite<uint8_t[]>(kTileBytes);
        if (!compositeTile(index, layers, tile.get())) return;
        const IRect part = grid.rectOf(index);
        for (int64_t y = 0; y < part.h; ++y) {
            std::memcpy(buffer->row(part.y + y) + part.x * 4, tile.get() + y * kTileRowBytes,
                        static_cast<std::size_t>(part.w) * 4);
        }
    });
    return buffer;
}

} // namespace qirn
