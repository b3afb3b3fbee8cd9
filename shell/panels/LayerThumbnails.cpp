#include "shell/panels/LayerThumbnails.h"

#include "app/desktop/BackgroundQueue.h"
#include "app/desktop/Failures.h"

#include <algorithm>
#include <array>

namespace qirn {

namespace {

constexpr int64_t kMostSamples = 16; // on each axis of one pixel

/// The places on one axis that pixel `i` of `count` is the mean of, spread evenly over its part of `length`.
struct Samples {
    int64_t first, last, count;

    Samples(int64_t i, int64_t pixels, int64_t length)
        : first(i * length / pixels),
          last(std::max((i + 1) * length / pixels, first + 1)),
          count(std::min(last - first, kMostSamples)) {}
    int64_t operator[](int64_t k) const { return first + (2 * k + 1) * (last - first) / (2 * count); }
};

std::array<uint8_t, 4> mean(const TileGrid& grid, const TileArray& tiles, const Samples& xs,
                            const Samples& ys) {
    std::array<int64_t, 4> sums{};
    for (int64_t j = 0; j < ys.count; ++j) {
        for (int64_t i = 0; i < xs.count; ++i) {
            const Tile* tile = tiles.at(grid.indexAt(xs[i], ys[j]));
            if (!tile) continue;
            const uint8_t* pixel = tile->row(ys[j] % kTileSize) + xs[i] % kTileSize * 4;
            for (std::size_t c = 0; c < 4; ++c) sums[c] += pixel[c];
        }
    }
    const int64_t count = xs.count * ys.count;
    std::array<uint8_t, 4> result{};
    for (std::size_t c = 0; c < 4; ++c) result[c] = static_cast<uint8_t>((sums[c] + count / 2) / count);
    return result;
}

} // namespace

QImage thumbnailOf(const TileGrid& grid, const TileArray& tiles, int side) {
    const int64_t larger = std::max(grid.width, grid.height);
    const auto reduced = [&](int64_t length) {
        return std::max<int64_t>((length * side + larger / 2) / larger, 1);
    };
    const int64_t width = reduced(grid.width), height = reduced(grid.height);
    QImage image(static_cast<int>(width), static_cast<int>(height), QImage::Format_RGBA8888_Premultiplied);
    if (image.isNull()) return image;
    image.fill(0);
    if (tiles.holdsNothing()) return image;
    for (int64_t y = 0; y < height; ++y) {
        uint8_t* row = image.scanLine(static_cast<int>(y));
        for (int64_t x = 0; x < width; ++x) {
            const auto pixel =
                mean(grid, tiles, Samples(x, width, grid.width), Samples(y, height, grid.height));
            std::copy(pixel.begin(), pixel.end(), row + 4 * x);
        }
    }
    return image;
}

LayerThumbnails::~LayerThumbnails() {
    BackgroundQueue::previews().finish();
}

QImage LayerThumbnails::of(const QUuid& layer, const TileGrid& grid, const TileArray& tiles, int side) {
    Entry& entry = entries_[layer];
    const bool isCurrent =
        *entry.asked > 0 && entry.side == side && entry.tiles.identity() == tiles.identity();
    if (!isCurrent) {
        entry.tiles = tiles;
        entry.side = side;
        const int number = ++*entry.asked;
        BackgroundQueue::previews().run([this, layer, grid, tiles, side, number, asked = entry.asked] {
            if (*asked != number) return;
            QImage image;
            contained([&] { image = thumbnailOf(grid, tiles, side); });
            QMetaObject::invokeMethod(
                this, [this, layer, number, image] { take(layer, number, image); }, Qt::QueuedConnection);
        });
    }
    return entry.image;
}

void LayerThumbnails::take(const QUuid& layer, int number, const QImage& image) {
    const auto found = entries_.find(layer);
    if (found == entries_.end() || *found->second.asked != number) return;
    found->second.image = image;
    Q_EMIT ready(layer);
}

void LayerThumbnails::keepOnly(const std::set<QUuid>& layers) {
    std::erase_if(entries_, [&](const auto& entry) { return !layers.contains(entry.first); });
}

} // namespace qirn
