#include "compositing/Compositor.h"

#include "compositing/BlendRows.h"
#include "compositing/TileStack.h"
#include "core/PaintEngine.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <vector>

namespace qirn {

bool Compositor::compositeTile(int64_t index, std::span<const CompositeInput> layers, uint8_t* out) {
    TileStack stack(index, layers);
    if (stack.isEmpty()) {
        std::memset(out, 0, kTileBytes);
        return false;
    }
    // Run by run, so that the accumulators stay in the nearest cache: pixels do not depend on each other.
    constexpr RunShape shape{kTileSize, kRunPixels / kTileSize};
    PixelRun acc;
    for (int y = 0; y < kTileSize; y += shape.rows) {
        stack.blend(acc, 0, y, shape);
        storeBytes(out + y * kTileRowBytes, kTileRowBytes, acc, shape);
    }
    return true;
}

std::map<int64_t, QImage> Compositor::compositeImages(std::span<const int64_t> tiles,
                                                      std::span<const CompositeInput> layers,
                                                      const TileGrid& grid) {
    std::vector<QImage> images(tiles.size());
    concurrentPerform(static_cast<int64_t>(tiles.size()), [&](int64_t i) {
        const int64_t index = tiles[checkedSize(i)];
        const IRect part = grid.rectOf(index);
        QImage image(kTileSize, kTileSize, PaintEngine::imageFormat);
        if (image.isNull()) throw std::bad_alloc();
        if (!compositeTile(index, layers, image.bits())) return;
        const bool whole = part.w == kTileSize && part.h == kTileSize;
        images[checkedSize(i)] =
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
                        checkedSize(part.w) * 4);
        }
    });
    return buffer;
}

} // namespace qirn
