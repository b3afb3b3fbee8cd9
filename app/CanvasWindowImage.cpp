#include "CanvasWindowImage.h"

#include "core/Tile.h"
#include "platform/Parallel.h"

#include <algorithm>
#include <cstring>

#include <QPainter>

namespace qirn {

namespace {

// Fewer pixels than this are on screen before other threads have woken up.
constexpr int64_t kLeastParallelPixels = 16'000;

int64_t reducedLength(int64_t length, int level) {
    return (length + (int64_t{1} << level) - 1) >> level;
}

/// The plain mean of each block of 2^level x 2^level pixels in the part, which is in the tile's pixels and made of whole
/// blocks, but for those that the canvas edge cuts. `out` is where the tile's first block goes.
void reduceInto(const uint8_t* tile, const IRect& part, int level, uchar* out, qsizetype outStride) {
    const int side = 1 << level;
    const int right = static_cast<int>(part.maxX()), bottom = static_cast<int>(part.maxY());
    for (int top = static_cast<int>(part.y); top < bottom; top += side) {
        auto* target = reinterpret_cast<quint32*>(out + (top >> level) * outStride);
        for (int left = static_cast<int>(part.x); left < right; left += side) {
            uint64_t redBlue = 0, green = 0; // two channels of up to 2^24 in one word
            const int endX = std::min(left + side, right), endY = std::min(top + side, bottom);
            for (int y = top; y < endY; ++y) {
                const auto* row = reinterpret_cast<const quint32*>(tile + y * kTileRowBytes);
                for (int x = left; x < endX; ++x) {
                    redBlue += (static_cast<uint64_t>(row[x] & 0xFF0000) << 16) | (row[x] & 0xFF);
                    green += (row[x] >> 8) & 0xFF;
                }
            }
            const auto count = static_cast<uint64_t>((endY - top) * (endX - left));
            const auto mean = [count](uint64_t sum) {
                return static_cast<quint32>((sum + count / 2) / count);
            };
            target[left >> level] =
                0xFF000000u | mean(redBlue >> 32) << 16 | mean(green) << 8 | mean(redBlue & 0xFFFFFFFFu);
        }
    }
}

/// A part in the tile's own pixels, grown to whole blocks of 2^level as far as the canvas goes.
IRect blocksOf(const IRect& part, const IRect& tile, int level) {
    const int64_t side = int64_t{1} << level;
    const auto down = [side](int64_t v) { return v / side * side; };
    const auto up = [side](int64_t v) { return (v + side - 1) / side * side; };
    const int64_t x = down(part.x - tile.x), y = down(part.y - tile.y);
    return {x, y, std::min(up(part.maxX() - tile.x), tile.w) - x,
            std::min(up(part.maxY() - tile.y), tile.h) - y};
}

} // namespace

void CanvasWindowImage::reset(const TileGrid& grid, const Checkerboard& board) {
    grid_ = grid;
    board_ = board;
    range_ = {};
    image_ = {};
    held_.clear();
}

void CanvasWindowImage::cover(const TileRange& range, int level) {
    if (range == range_ && level == level_ && !image_.isNull()) return;
    const TileRange oldRange = range_;
    const QImage oldImage = image_;
    const std::vector<bool> oldHeld = std::move(held_);
    const bool sameLevel = level == level_ && !oldImage.isNull();
    range_ = range;
    level_ = level;
    const int64_t side = kTileSize >> level;
    const int64_t width = std::min(range.endCol * kTileSize, grid_.width) - range.firstCol * kTileSize;
    const int64_t height = std::min(range.endRow * kTileSize, grid_.height) - range.firstRow * kTileSize;
    image_ = QImage(static_cast<int>(reducedLength(width, level)),
                    static_cast<int>(reducedLength(height, level)), QImage::Format_RGB32);
    held_.assign(static_cast<std::size_t>((range.endCol - range.firstCol) * (range.endRow - range.firstRow)),
                 false);
    if (!sameLevel) return;
    for (int64_t row = std::max(range.firstRow, oldRange.firstRow);
         row < std::min(range.endRow, oldRange.endRow); ++row) {
        for (int64_t col = std::max(range.firstCol, oldRange.firstCol);
             col < std::min(range.endCol, oldRange.endCol); ++col) {
            const int64_t oldSlot =
                (row - oldRange.firstRow) * (oldRange.endCol - oldRange.firstCol) + col - oldRange.firstCol;
            if (!oldHeld[static_cast<std::size_t>(oldSlot)]) continue;
            const int64_t index = row * grid_.cols + col;
            held_[slotOf(index)] = true;
            const IRect tile = grid_.rectOf(index);
            const auto bytes = static_cast<std::size_t>(reducedLength(tile.w, level) * 4);
            const int64_t rows = reducedLength(tile.h, level);
            for (int64_t y = 0; y < rows; ++y) {
                std::memcpy(image_.scanLine(static_cast<int>((row - range.firstRow) * side + y)) +
                                (col - range.firstCol) * side * 4,
                            oldImage.constScanLine(static_cast<int>((row - oldRange.firstRow) * side + y)) +
                                (col - oldRange.firstCol) * side * 4,
                            bytes);
            }
        }
    }
}

bool CanvasWindowImage::inside(int64_t index) const {
    const int64_t col = index % grid_.cols, row = index / grid_.cols;
    return col >= range_.firstCol && col < range_.endCol && row >= range_.firstRow && row < range_.endRow;
}

std::size_t CanvasWindowImage::slotOf(int64_t index) const {
    const int64_t col = index % grid_.cols - range_.firstCol, row = index / grid_.cols - range_.firstRow;
    return static_cast<std::size_t>(row * (range_.endCol - range_.firstCol) + col);
}

bool CanvasWindowImage::holds(int64_t index) const {
    return inside(index) && held_[slotOf(index)];
}

void CanvasWindowImage::drop(int64_t index) {
    if (inside(index)) held_[slotOf(index)] = false;
}

void CanvasWindowImage::put(std::span<const DirtyTile> parts,
                            const std::function<const uint8_t*(std::size_t)>& imageOf) {
    if (image_.isNull()) return;
    uchar* bits = image_.bits(); // once, before the loop: it may copy an image that a painter still holds
    const qsizetype stride = image_.bytesPerLine();
    const auto putOne = [&](int64_t i) {
        const auto number = static_cast<std::size_t>(i);
        const DirtyTile& tile = parts[number];
        const uint8_t* const image = imageOf(number);
        if (!inside(tile.index)) return;
        const int64_t side = kTileSize >> level_;
        const int64_t x = (tile.index % grid_.cols - range_.firstCol) * side;
        const int64_t y = (tile.index / grid_.cols - range_.firstRow) * side;
        uchar* out = bits + y * stride + x * 4;
        const IRect place = grid_.rectOf(tile.index);
        const IRect part = blocksOf(tile.part, place, level_);
        if (!image) {
            uchar* const corner = out + (part.y >> level_) * stride + (part.x >> level_) * 4;
            return drawBoard(board_, {place.x + part.x, place.y + part.y, part.w, part.h}, level_, corner,
                             stride);
        }
        if (level_ > 0) return reduceInto(image, part, level_, out, stride);
        for (int64_t row = part.y; row < part.maxY(); ++row) {
            std::memcpy(out + row * stride + part.x * 4, image + row * kTileRowBytes + part.x * 4,
                        static_cast<std::size_t>(part.w) * 4);
        }
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

void CanvasWindowImage::draw(QPainter& painter) const {
    if (image_.isNull()) return;
    const double x = static_cast<double>(range_.firstCol * kTileSize),
                 y = static_cast<double>(range_.firstRow * kTileSize);
    const double right = static_cast<double>(std::min(range_.endCol * kTileSize, grid_.width));
    const double bottom = static_cast<double>(std::min(range_.endRow * kTileSize, grid_.height));
    const double scale = static_cast<double>(int64_t{1} << level_);
    // The last reduced pixel may stand for fewer canvas pixels than the others; the source ends where the canvas does.
    painter.drawImage(QRectF(x, y, right - x, bottom - y), image_,
                      QRectF(0, 0, (right - x) / scale, (bottom - y) / scale));
}

} // namespace qirn
