#include "compositing/Compositor.h"

#include "compositing/BlendRows.h"
#include "core/PaintEngine.h"
#include "platform/Parallel.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace qirn {

namespace {

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

/// A run of pixels within a tile.
struct TileRun {
    int64_t index;
    int firstByte;

    const uint8_t* of(const CompositeInput& input) const {
        return input.tiles.at(index)->pixels() + firstByte;
    }
};

/// Lays one input's run on an accumulator. Over nothing any mode is a plain copy.
void blendInput(PixelRun& acc, const TileRun& run, const CompositeInput& input, float opacity, BlendMode mode,
                Compositor::Atop atop, bool accEmpty) {
    if (accEmpty && atop == Compositor::Atop::no && !input.tint)
        return loadBytes(acc, run.of(input), opacity);
    if (accEmpty) clear(acc);
    PixelRun source;
    loadBytes(source, run.of(input), opacity);
    if (input.tint) tint(source, *input.tint);
    layOn(acc, source, mode, atop);
}

void blendGroup(PixelRun& acc, const TileRun& run, const Group& group, bool accEmpty) {
    const CompositeInput& base = *group.base;
    if (group.clipped.empty()) {
        return blendInput(acc, run, base, base.opacity, base.mode, Compositor::Atop::no, accEmpty);
    }
    // The group is built alone, its base at full strength, and then laid down as one layer.
    PixelRun alone;
    blendInput(alone, run, base, 1, BlendMode::normal, Compositor::Atop::no, true);
    for (const CompositeInput* clipped : group.clipped) {
        blendInput(alone, run, *clipped, clipped->opacity, clipped->mode, Compositor::Atop::yes, false);
    }
    if (accEmpty) return scale(acc, alone, base.opacity);
    PixelRun scaled;
    scale(scaled, alone, base.opacity);
    layOn(acc, scaled, base.mode, Compositor::Atop::no);
}

} // namespace

bool Compositor::compositeTile(int64_t index, std::span<const CompositeInput> layers, uint8_t* out) {
    const std::vector<Group> groups = groupsIn(index, layers);
    if (groups.empty()) {
        std::memset(out, 0, kTileBytes);
        return false;
    }
    // Run by run, so that the accumulators stay in the nearest cache: pixels do not depend on each other.
    PixelRun acc;
    for (int first = 0; first < kTilePixels; first += kRunPixels) {
        const TileRun run{index, first * 4};
        bool empty = true;
        for (const Group& group : groups) {
            blendGroup(acc, run, group, empty);
            empty = false;
        }
        storeBytes(out + run.firstByte, acc);
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
