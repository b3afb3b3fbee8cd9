#include "shell/panels/layers/LayerThumbnails.h"

#include "app/desktop/BackgroundQueue.h"
#include "app/desktop/Failures.h"

#include <algorithm>
#include <array>

namespace qirn {

namespace {

constexpr int64_t kMostSamples = 16; // on each axis of one pixel
constexpr std::size_t kMostKept = 256;

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

std::optional<QImage> thumbnailOf(const TileGrid& grid, const TileArray& tiles, int side,
                                  const std::function<bool()>& goesOn) {
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
        if (goesOn && !goesOn()) return std::nullopt;
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
    forgetAll();
    BackgroundQueue::previews().finish();
}

QImage LayerThumbnails::of(const QUuid& layer, const TileGrid& grid, const TileArray& tiles, int side) {
    if (entries_.size() >= kMostKept && !entries_.contains(layer)) entries_.clear();
    Entry& entry = entries_[layer];
    if (entry.side == side) return entry.image;
    entry.abandon();
    entry.side = side;
    entry.wanted = std::make_shared<std::atomic<bool>>(true);
    BackgroundQueue& queue = BackgroundQueue::previews();
    queue.run([this, &queue, layer, grid, tiles, side, wanted = entry.wanted] {
        if (!*wanted) return;
        std::optional<QImage> image = QImage();
        contained(
            [&] { image = thumbnailOf(grid, tiles, side, [&] { return *wanted && !queue.isPaused(); }); });
        QMetaObject::invokeMethod(
            this, [this, layer, wanted, image] { take(layer, wanted, image); }, Qt::QueuedConnection);
    });
    return entry.image;
}

void LayerThumbnails::outdate(const QUuid& layer) {
    const auto found = entries_.find(layer);
    if (found == entries_.end()) return;
    found->second.abandon();
    found->second.side = 0;
}

void LayerThumbnails::take(const QUuid& layer, const Wanted& wanted, const std::optional<QImage>& image) {
    const auto found = entries_.find(layer);
    if (found == entries_.end() || found->second.wanted != wanted || !*wanted) return;
    if (image)
        found->second.image = *image;
    else
        found->second.side = 0; // asked for again when it is shown again
    Q_EMIT ready(layer);
}

} // namespace qirn
