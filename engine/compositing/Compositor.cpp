#include "compositing/Compositor.h"

#include "compositing/BlendPixel.h"
#include "compositing/BlendRows.h"
#include "compositing/TileStack.h"
#include "core/PaintEngine.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"

#include <array>
#include <cstring>
#include <new>
#include <utility>
#include <vector>

namespace qirn {

namespace {

using PlainPixel = HWY_NAMESPACE::Pixel<float>;
using PixelBlender = PlainPixel (*)(const PlainPixel& backdrop, const PlainPixel& source, Compositor::Atop);

template <BlendMode kMode>
PlainPixel blendOne(const PlainPixel& backdrop, const PlainPixel& source, Compositor::Atop atop) {
    return atop == Compositor::Atop::yes
               ? HWY_NAMESPACE::blended<kMode, Compositor::Atop::yes>(backdrop, source)
               : HWY_NAMESPACE::blended<kMode, Compositor::Atop::no>(backdrop, source);
}

template <std::size_t... kModes>
constexpr std::array<PixelBlender, sizeof...(kModes)> blendersOfModes(std::index_sequence<kModes...>) {
    return {blendOne<BlendMode(kModes)>...};
}
constexpr auto kBlenders = blendersOfModes(std::make_index_sequence<kBlendModes.size()>());

/// 0 to 255; also 0 for NaN, which malformed pixels can lead to.
uint8_t roundedByte(float f) {
    const float v = f * 255 + 0.5f;
    return static_cast<uint8_t>(v > 0 ? (v < 255 ? v : 255) : 0);
}

} // namespace

bool Compositor::compositeTile(int64_t index, std::span<const CompositeInput> layers, uint8_t* out) {
    TileStack stack(index, layers);
    if (stack.isEmpty()) {
        std::memset(out, 0, kTileBytes);
        return false;
    }
    // Run by run, so that the accumulators stay in the L1 cache.
    constexpr RunShape shape{kTileSize, kRunPixels / kTileSize};
    PixelRun acc;
    for (int y = 0; y < kTileSize; y += shape.rows) {
        stack.blend(acc, 0, y, shape);
        storeBytes(out + placeInTile(0, y), kTileRowBytes, acc, shape);
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

std::shared_ptr<RGBABuffer> Compositor::flatten(std::span<const CompositeInput> layers, const TileGrid& grid,
                                                const Progress& progress) {
    auto buffer = std::make_shared<RGBABuffer>(grid.width, grid.height);
    const auto putTile = [&](int64_t index) {
        const auto tile = std::make_unique_for_overwrite<uint8_t[]>(kTileBytes);
        if (!compositeTile(index, layers, tile.get())) return;
        const IRect part = grid.rectOf(index);
        for (int64_t y = 0; y < part.h; ++y) {
            std::memcpy(buffer->pixels(part.x, part.y + y), tile.get() + placeInTile(0, y),
                        checkedSize(part.w) * 4);
        }
    };
    concurrentPerform(grid.count(), putTile, progress);
    return buffer;
}

void Compositor::blendPixel(float* pixel, const float source[4], BlendMode mode, Atop atop) {
    const PlainPixel result = kBlenders[static_cast<std::size_t>(mode)](
        {pixel[0], pixel[1], pixel[2], pixel[3]}, {source[0], source[1], source[2], source[3]}, atop);
    std::memcpy(pixel, &result, sizeof result);
}

PixelBytes Compositor::blendBytes(const PixelBytes& backdrop, const PixelBytes& source, BlendMode mode,
                                  float opacity) {
    float pixel[4], s[4];
    const float k = opacity / 255;
    for (std::size_t c = 0; c < 4; ++c) {
        pixel[c] = static_cast<float>(backdrop[c]) / 255;
        s[c] = static_cast<float>(source[c]) * k;
    }
    blendPixel(pixel, s, mode, Atop::no);
    PixelBytes out;
    for (std::size_t c = 0; c < 4; ++c) out[c] = roundedByte(pixel[c]);
    return out;
}

} // namespace qirn
