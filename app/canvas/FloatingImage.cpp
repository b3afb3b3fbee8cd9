#include "app/canvas/FloatingImage.h"

#include "app/canvas/ReducedTile.h"
#include "app/model/PendingTransform.h"
#include "core/PaintEngine.h"
#include "operations/Floating.h"
#include "platform/BlockPool.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <vector>

#include <QPainter>

namespace qirn {

namespace {

constexpr int kMostLevel = 5;

/// The highest level at which a pixel of the image is not larger than a device pixel.
int levelFor(const QTransform& toDevice) {
    const double scale =
        std::max(std::hypot(toDevice.m11(), toDevice.m12()), std::hypot(toDevice.m21(), toDevice.m22()));
    int level = 0;
    while (level < kMostLevel && scale * (2 << level) <= 1) ++level;
    return level;
}

/// A rectangle, rounded outward to blocks of 2^level x 2^level pixels of the canvas.
IRect toBlocks(const IRect& rect, int level) {
    const int64_t side = int64_t{1} << level;
    const int64_t x = rect.x / side * side, y = rect.y / side * side;
    return {x, y, (rect.maxX() + side - 1) / side * side - x, (rect.maxY() + side - 1) / side * side - y};
}

/// The tile's pixels within `origin`, transparent beyond it.
BlockPool::Block cutOut(const Tile& tile, const IRect& place, const IRect& origin) {
    BlockPool::Block pixels = BlockPool::take();
    std::memset(pixels.get(), 0, kTileBytes);
    const IRect part = place.intersection(origin);
    const int64_t first = placeInTile(part.x, part.y);
    copyPixels(pixels.get() + first, kTileRowBytes, tile.pixels() + first, kTileRowBytes, part.w, part.h);
    return pixels;
}

} // namespace

void FloatingImage::render(const Floating& floating, const IRect& part, int level) {
    const TileGrid& grid = floating.pixels->grid();
    QImage image(static_cast<int>(part.w >> level), static_cast<int>(part.h >> level),
                 PaintEngine::imageFormat);
    if (image.isNull()) throw std::bad_alloc();
    image.fill(0);
    const std::vector<int64_t> tiles = grid.tilesIn(part);
    concurrentPerform(std::ssize(tiles), [&, bits = image.bits()](int64_t i) {
        const int64_t index = tiles[checkedSize(i)];
        const Tile* tile = floating.pixels->tile(index);
        if (!tile) return;
        const int64_t x = index % grid.cols * kTileSize, y = index / grid.cols * kTileSize;
        const IRect place{x, y, kTileSize, kTileSize}, seen = place.intersection(part);
        const bool isWhole = floating.origin.united(place) == floating.origin;
        const BlockPool::Block cut = isWhole ? nullptr : cutOut(*tile, place, floating.origin);
        const IRect blocks{seen.x - x, seen.y - y, seen.w, seen.h};
        uint8_t* const out =
            bits + ((seen.y - part.y) >> level) * image.bytesPerLine() + ((seen.x - part.x) >> level) * 4;
        reduceTile((cut ? cut.get() : tile->pixels()) + blocks.y * kTileRowBytes, blocks, level, out,
                   image.bytesPerLine());
    });
    image_ = std::move(image);
    part_ = part;
    level_ = level;
}

void FloatingImage::paint(QPainter& painter, const Floating& floating, const QTransform& toDevice) {
    const IRect& origin = floating.origin;
    const QRectF device = painter.transform().inverted().mapRect(QRectF(painter.viewport()));
    const QRectF seen = toDevice.inverted().mapRect(device);
    const auto partWithin = [&](const QRectF& box) {
        const QRectF part =
            box.intersected(QRectF(0, 0, static_cast<double>(origin.w), static_cast<double>(origin.h)));
        return IRect::covering(part.translated(static_cast<double>(origin.x), static_cast<double>(origin.y)));
    };
    const IRect needed = partWithin(seen.adjusted(-1, -1, 1, 1)); // neighbors that smoothing looks at
    if (needed.isEmpty()) return;
    const int level = levelFor(toDevice);
    if (image_.isNull() || level != level_ || !(part_.united(needed) == part_)) {
        // With a margin, so that not every step of a drag renders again.
        const double x = seen.width() / 4, y = seen.height() / 4;
        render(floating, toBlocks(partWithin(seen.adjusted(-x, -y, x, y)).united(needed), level), level);
    }
    const double side = 1 << level_;
    painter.setTransform(toDevice, true);
    painter.translate(static_cast<double>(part_.x - origin.x), static_cast<double>(part_.y - origin.y));
    painter.scale(side, side);
    painter.drawImage(0, 0, image_);
}

} // namespace qirn
