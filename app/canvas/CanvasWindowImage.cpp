#include "app/canvas/CanvasWindowImage.h"

#include "app/canvas/ReducedTile.h"
#include "core/Tile.h"
#include "platform/CheckedMath.h"
#include "platform/Parallel.h"
#include "platform/Require.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <QPainter>

namespace qirn {

namespace {

// Fewer pixels are drawn sooner than other threads have woken up.
constexpr int64_t kLeastParallelPixels = 16'000;

} // namespace

void CanvasWindowImage::reset(const TileGrid& grid) {
    grid_ = grid;
    range_ = {};
    pixels_.reset();
    held_.clear();
}

void CanvasWindowImage::cover(const TileRange& range, int level) {
    if (range == range_ && level == level_ && pixels_) return;
    const int64_t side = kTileSize >> level, cols = range.endCol - range.firstCol,
                  rows = range.endRow - range.firstRow;
    CanvasWindowImage next;
    next.grid_ = grid_;
    next.range_ = range;
    next.level_ = level;
    next.rowBytes_ = cols * side * 4;
    const auto bytes = checkedSize(rows * side * next.rowBytes_);
    next.pixels_.reset(static_cast<uint8_t*>(operator new(bytes, kAlignment)));
    next.held_.assign(checkedSize(rows * cols), false);
    const CanvasWindowImage old = std::exchange(*this, std::move(next));
    if (!old.pixels_ || old.level_ != level) return;
    for (int64_t row = range.firstRow; row < range.endRow; ++row) {
        for (int64_t col = range.firstCol; col < range.endCol; ++col) {
            const int64_t index = row * grid_.cols + col;
            if (!old.holds(index)) continue;
            held_[slotOf(index)] = true;
            const IRect tile = grid_.rectOf(index);
            copyPixels(firstPixelOf(index), rowBytes_, old.firstPixelOf(index), old.rowBytes_,
                       reducedLength(tile.w, level), reducedLength(tile.h, level));
        }
    }
}

bool CanvasWindowImage::inside(int64_t index) const {
    const int64_t col = index % grid_.cols, row = index / grid_.cols;
    return col >= range_.firstCol && col < range_.endCol && row >= range_.firstRow && row < range_.endRow;
}

std::size_t CanvasWindowImage::slotOf(int64_t index) const {
    const int64_t col = index % grid_.cols - range_.firstCol, row = index / grid_.cols - range_.firstRow;
    return checkedSize(row * (range_.endCol - range_.firstCol) + col);
}

bool CanvasWindowImage::holds(int64_t index) const {
    return inside(index) && held_[slotOf(index)];
}

void CanvasWindowImage::drop(int64_t index) {
    if (inside(index)) held_[slotOf(index)] = false;
}

uint8_t* CanvasWindowImage::firstPixelOf(int64_t index) const {
    const int64_t side = kTileSize >> level_;
    return pixels_.get() + (index / grid_.cols - range_.firstRow) * side * rowBytes_ +
           (index % grid_.cols - range_.firstCol) * side * 4;
}

void CanvasWindowImage::put(std::span<const DirtyTile> parts, const PartDrawer& draw) {
    if (!pixels_) return;
    const auto putOne = [&](int64_t i) {
        const auto partIndex = checkedSize(i);
        const int64_t index = parts[partIndex].index;
        if (inside(index)) draw(partIndex, firstPixelOf(index), rowBytes_);
    };
    int64_t pixels = 0;
    for (const DirtyTile& tile : parts) pixels += tile.part.w * tile.part.h;
    const auto count = static_cast<int64_t>(parts.size());
    if (pixels >= kLeastParallelPixels) {
        concurrentPerform(count, putOne);
    } else {
        for (int64_t i = 0; i < count; ++i) putOne(i);
    }
    for (const DirtyTile& tile : parts) {
        if (inside(tile.index)) held_[slotOf(tile.index)] = true;
    }
}

void CanvasWindowImage::copy(std::span<const Copy> tiles) {
    concurrentPerform(std::ssize(tiles), [&](int64_t i) {
        const auto [index, like] = tiles[checkedSize(i)];
        const IRect tile = grid_.rectOf(index);
        copyPixels(firstPixelOf(index), rowBytes_, firstPixelOf(like), rowBytes_,
                   reducedLength(tile.w, level_), reducedLength(tile.h, level_));
    });
    for (const Copy& tile : tiles) held_[slotOf(tile.index)] = true;
}

void CanvasWindowImage::copyTo(int64_t index, uint8_t* tile) const {
    require(level_ == 0 && holds(index));
    const IRect place = grid_.rectOf(index);
    copyPixels(tile, kTileRowBytes, firstPixelOf(index), rowBytes_, place.w, place.h);
}

void CanvasWindowImage::draw(QPainter& painter) const {
    if (!pixels_) return;
    const double x = static_cast<double>(range_.firstCol * kTileSize),
                 y = static_cast<double>(range_.firstRow * kTileSize);
    const double right = static_cast<double>(std::min(range_.endCol * kTileSize, grid_.width));
    const double bottom = static_cast<double>(std::min(range_.endRow * kTileSize, grid_.height));
    const double scale = static_cast<double>(int64_t{1} << level_);
    // The last reduced pixel may cover fewer canvas pixels than the others: the source ends where the canvas does.
    const QRectF source(0, 0, (right - x) / scale, (bottom - y) / scale);
    // The image ends there too, or smoothing would blend what lies beyond into its last pixels.
    const QImage image(pixels_.get(), static_cast<int>(std::ceil(source.width())),
                       static_cast<int>(std::ceil(source.height())), rowBytes_, QImage::Format_RGB32);
    painter.drawImage(QRectF(x, y, right - x, bottom - y), image, source);
}

} // namespace qirn
