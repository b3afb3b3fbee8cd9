#include "platform/resample/Resampler.h"

#include "platform/CheckedMath.h"
#include "platform/Parallel.h"
#include "platform/resample/TurnBlock.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace qirn {

namespace {

constexpr double kFactorRounding = 1e-12; // what the rounding of a sine may leave of a factor of 0

// Target pixels that one thread makes at a time.
constexpr int64_t kBlockWidth = 256;
constexpr int64_t kBlockHeight = 64;
constexpr int64_t kLeastHeight = 8;

constexpr int64_t kMargin = 2; // pixels of a reduced source that its own soft edge needs on each side

/// Coordinates within which halves of pixels are exact; what lies beyond is not drawn.
constexpr double kFarthest = 1e15;

bool isNear(const QTransform& t) {
    const double values[] = {t.m11(), t.m12(), t.m21(), t.m22(), t.dx(), t.dy()};
    return std::all_of(std::begin(values), std::end(values),
                       [](double v) { return std::fabs(v) < kFarthest; });
}

/// Nothing for a transform that is singular, or nearly.
std::optional<QTransform> inverseOf(const QTransform& t) {
    if (!t.isAffine() || !isNear(t)) return std::nullopt;
    const double det = t.m11() * t.m22() - t.m12() * t.m21();
    const QTransform inverse(t.m22() / det, -t.m12() / det, -t.m21() / det, t.m11() / det,
                             (t.m21() * t.dy() - t.m22() * t.dx()) / det,
                             (t.m12() * t.dx() - t.m11() * t.dy()) / det);
    if (!isNear(inverse)) return std::nullopt;
    return inverse;
}

/// Distance between the source points of neighboring target pixels along one axis of the source; at least 1.
double filterWidth(double perColumn, double perRow) {
    const double width = std::hypot(perColumn, perRow);
    return width < 1 + kFactorRounding ? 1 : width;
}

/// Writes a target of the given size block by block, in parallel.
void drawBlocks(int64_t x, int64_t y, int64_t width, int64_t height, uint8_t* out,
                const std::function<void(const TargetBlock&)>& drawBlock) {
    const int64_t columns = (width + kBlockWidth - 1) / kBlockWidth;
    // A small target is cut into low blocks, so that all cores finish together: its source may be large.
    int64_t blockHeight = kBlockHeight;
    while (blockHeight > kLeastHeight && columns * (height / blockHeight) < 4 * concurrency())
        blockHeight /= 2;
    const int64_t rows = (height + blockHeight - 1) / blockHeight;
    concurrentPerform(columns * rows, [&](int64_t index) {
        const int64_t left = index % columns * kBlockWidth, top = index / columns * blockHeight;
        drawBlock({x + left, y + top, std::min(kBlockWidth, width - left),
                   std::min(blockHeight, height - top), out + (top * width + left) * 4, width * 4});
    });
}

SourceRows rowsOf(const PixelView& source) {
    return [source](int64_t x, int64_t y, int64_t, uint8_t*) {
        return source.pixels + y * source.rowBytes + x * 4;
    };
}

void clear(const TargetBlock& block) {
    for (int64_t y = 0; y < block.height; ++y) {
        std::memset(block.pixels + y * block.rowBytes, 0, checkedSize(block.width) * 4);
    }
}

} // namespace

Resampler::Resampler(const PixelView& source, const QTransform& toTarget)
    : source_(source),
      map_(PixelMap::fromTransform(toTarget)) {
    if (map_) {
        const PixelMap back = map_->inverse();
        const auto square = [&](int64_t x, int64_t y) {
            return QRectF(static_cast<double>(back.sourceX(x, y)), static_cast<double>(back.sourceY(x, y)), 1,
                          1);
        };
        reach_ = square(0, 0).united(square(source.width - 1, source.height - 1));
        return;
    }
    const auto inverse = inverseOf(toTarget);
    if (!inverse) return;
    toSource_ = *inverse;
    filterX_ = filterWidth(toSource_.m11(), toSource_.m21());
    filterY_ = filterWidth(toSource_.m12(), toSource_.m22());
    // Beyond this distance from an edge the filter has no positive weight, so no pixel whose center lies there is
    // drawn.
    const auto soft = [](double width) { return width > 1 ? width : 0.5; };
    const QRectF picture(0, 0, static_cast<double>(source.width), static_cast<double>(source.height));
    const QRectF softPicture =
        picture.adjusted(-soft(filterX_), -soft(filterY_), soft(filterX_), soft(filterY_));
    reach_ = toTarget.mapRect(picture).united(toTarget.mapRect(softPicture).adjusted(0.5, 0.5, -0.5, -0.5));

    const double least = kFactorRounding * std::max(std::fabs(toSource_.m11()), std::fabs(toSource_.m22()));
    isStraight_ = std::fabs(toSource_.m12()) <= least && std::fabs(toSource_.m21()) <= least;
    if (!isStraight_) reduceSource();
}

// A turned picture is filtered over a square of source pixels. One that shrinks below half is reduced along its own
// axes before, to about twice the size that it is drawn at: finer than can be seen, and the square stays small.
void Resampler::reduceSource() {
    const double stepX = std::max(1.0, filterX_ / kWidestTurnFilter);
    const double stepY = std::max(1.0, filterY_ / kWidestTurnFilter);
    if (stepX == 1 && stepY == 1) return;
    const auto reducedLength = [](int64_t length, double step) {
        return static_cast<int64_t>(std::ceil(static_cast<double>(length) / step)) + 2 * kMargin;
    };
    const int64_t width = reducedLength(source_.width, stepX), height = reducedLength(source_.height, stepY);
    const ScaleWeights across(source_.width, stepX, -kMargin * stepX, 0, width, Edges::transparent);
    const ScaleWeights down(source_.height, stepY, -kMargin * stepY, 0, height, Edges::transparent);
    reduced_.resize(checkedSize(width * height) * 4);
    drawBlocks(0, 0, width, height, reduced_.data(), [&, rows = rowsOf(source_)](const TargetBlock& block) {
        scaleBlock(rows, across, down, block);
    });
    source_ = {reduced_.data(), width, height, width * 4};
    toSource_ *= QTransform(1 / stepX, 0, 0, 1 / stepY, kMargin, kMargin);
    filterX_ = std::min(filterX_ / stepX, kWidestTurnFilter);
    filterY_ = std::min(filterY_ / stepY, kWidestTurnFilter);
}

void Resampler::draw(int64_t x, int64_t y, int64_t width, int64_t height, uint8_t* out) const {
    if (map_) {
        drawBlocks(x, y, width, height, out, [this](const TargetBlock& block) { copyTo(block); });
    } else if (reach_.isEmpty()) {
        drawBlocks(x, y, width, height, out, clear);
    } else if (isStraight_) {
        const ScaleWeights across(source_.width, toSource_.m11(), toSource_.dx(), x, width,
                                  Edges::transparent);
        const ScaleWeights down(source_.height, toSource_.m22(), toSource_.dy(), y, height,
                                Edges::transparent);
        drawBlocks(x, y, width, height, out, [&, rows = rowsOf(source_)](const TargetBlock& block) {
            scaleBlock(rows, across, down, block);
        });
    } else {
        drawBlocks(x, y, width, height, out, [this](const TargetBlock& block) {
            turnBlock(source_, toSource_, filterX_, filterY_, block);
        });
    }
}

void Resampler::copyTo(const TargetBlock& block) const {
    clear(block);
    // The part of the block on which the picture falls.
    const PixelMap back = map_->inverse();
    const auto [left, right] =
        std::minmax({back.sourceX(0, 0), back.sourceX(source_.width - 1, source_.height - 1)});
    const auto [top, bottom] =
        std::minmax({back.sourceY(0, 0), back.sourceY(source_.width - 1, source_.height - 1)});
    const int64_t x = std::max(left, block.x), y = std::max(top, block.y);
    const int64_t endX = std::min(right + 1, block.x + block.width);
    const int64_t endY = std::min(bottom + 1, block.y + block.height);
    if (x >= endX || y >= endY) return;
    map_->copy(source_.pixels + map_->sourceY(x, y) * source_.rowBytes + map_->sourceX(x, y) * 4,
               source_.rowBytes, block.pixels + (y - block.y) * block.rowBytes + (x - block.x) * 4,
               block.rowBytes, endX - x, endY - y);
}

} // namespace qirn
