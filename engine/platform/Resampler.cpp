#include "platform/Resampler.h"

#include "platform/Parallel.h"

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

// A turned picture is filtered over a square of source pixels. One that shrinks below half is reduced along its
// own axes before, to twice the size that it is drawn at: finer than can be seen, and the square stays small.
constexpr double kWidestTurned = 2;
constexpr int kMostTaps = 8;   // 4 x kWidestTurned
constexpr int64_t kMargin = 2; // reduced pixels that the reduction's own soft edge needs on each side

/// Coordinates within which halves of pixels are exact; what lies beyond is not drawn.
constexpr double kFarthest = 1e15;

bool isNear(const QTransform& t) {
    const double values[] = {t.m11(), t.m12(), t.m21(), t.m22(), t.dx(), t.dy()};
    return std::all_of(std::begin(values), std::end(values),
                       [](double v) { return std::fabs(v) < kFarthest; });
}

/// Nothing for a transform that flattens the plane, or nearly.
std::optional<QTransform> inverseOf(const QTransform& t) {
    if (!t.isAffine() || !isNear(t)) return std::nullopt;
    const double det = t.m11() * t.m22() - t.m12() * t.m21();
    const QTransform inverse(t.m22() / det, -t.m12() / det, -t.m21() / det, t.m11() / det,
                             (t.m21() * t.dy() - t.m22() * t.dx()) / det,
                             (t.m12() * t.dx() - t.m11() * t.dy()) / det);
    if (!isNear(inverse)) return std::nullopt;
    return inverse;
}

/// How far apart the source pixels are, along one of its axes, that neighbouring target pixels show; at least 1.
double filterWidth(double perColumn, double perRow) {
    const double width = std::hypot(perColumn, perRow);
    return width < 1 + kFactorRounding ? 1 : width;
}

/// The source pixels along one axis of which a target pixel is made.
struct Taps {
    int64_t first;
    float weights[kMostTaps];
};

/// `at` is in units in which the centres of the source pixels are whole numbers.
Taps tapsAt(double at, double width, int count) {
    const double begin = std::floor(at - 2 * width) + 1;
    Taps taps{static_cast<int64_t>(begin), {}};
    const auto distance = static_cast<float>(at - begin);
    const auto narrow = static_cast<float>(1 / width);
    float sum = 0;
    for (int i = 0; i < count; ++i) {
        taps.weights[i] = cubicFilter((distance - static_cast<float>(i)) * narrow);
        sum += taps.weights[i];
    }
    for (int i = 0; i < count; ++i) taps.weights[i] /= sum;
    return taps;
}

/// Sums a square of source pixels whose corner is given.
template <int kCount>
void addSquare(const uint8_t* corner, int64_t rowBytes, const Taps& across, const Taps& down, float* sum) {
    for (int j = 0; j < kCount; ++j) {
        const uint8_t* pixel = corner + j * rowBytes;
        float line[4] = {};
        for (int i = 0; i < kCount; ++i, pixel += 4) {
            for (int c = 0; c < 4; ++c) line[c] += across.weights[i] * static_cast<float>(pixel[c]);
        }
        for (int c = 0; c < 4; ++c) sum[c] += down.weights[j] * line[c];
    }
}

/// As above for any rectangle, of which only the pixels inside the source count.
void addInside(const PixelView& source, const Taps& across, int columns, const Taps& down, int rows,
               float* sum) {
    for (int j = 0; j < rows; ++j) {
        const int64_t y = down.first + j;
        if (y < 0 || y >= source.height) continue;
        float line[4] = {};
        for (int i = 0; i < columns; ++i) {
            const int64_t x = across.first + i;
            if (x < 0 || x >= source.width) continue;
            const uint8_t* pixel = source.pixels + y * source.rowBytes + x * 4;
            for (int c = 0; c < 4; ++c) line[c] += across.weights[i] * static_cast<float>(pixel[c]);
        }
        for (int c = 0; c < 4; ++c) sum[c] += down.weights[j] * line[c];
    }
}

/// Cuts a range of whole numbers n to those, and a few more, for which low < step * n + base < high.
void narrow(double step, double base, double low, double high, int64_t& first, int64_t& end) {
    if (step == 0) return;
    const double a = (low - base) / step, b = (high - base) / step;
    const auto limited = [&](double v) {
        return static_cast<int64_t>(std::clamp(v, static_cast<double>(first), static_cast<double>(end)));
    };
    const int64_t begin = limited(std::floor(std::min(a, b)) - 1);
    end = limited(std::ceil(std::max(a, b)) + 2);
    first = begin;
}

/// Writes a target of the given size block by block, in parallel.
void drawBlocks(int64_t x, int64_t y, int64_t width, int64_t height, uint8_t* out,
                const std::function<void(const TargetBlock&)>& drawBlock) {
    const int64_t columns = (width + kBlockWidth - 1) / kBlockWidth;
    // Low blocks for a small target, whose source may be large: no core shall wait for the last one.
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
        std::memset(block.pixels + y * block.rowBytes, 0, static_cast<std::size_t>(block.width) * 4);
    }
}

} // namespace

Resampler::Resampler(const PixelView& source, const QTransform& toTarget)
    : source_(source),
      map_(PixelMap::of(toTarget)) {
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
    widthX_ = filterWidth(toSource_.m11(), toSource_.m21());
    widthY_ = filterWidth(toSource_.m12(), toSource_.m22());
    // Beyond an edge the filter is positive up to here, and a pixel is drawn where its centre lies.
    const auto soft = [](double width) { return width > 1 ? 0.7 * width : 0.5; };
    const QRectF picture(0, 0, static_cast<double>(source.width), static_cast<double>(source.height));
    const QRectF softPicture = picture.adjusted(-soft(widthX_), -soft(widthY_), soft(widthX_), soft(widthY_));
    reach_ = toTarget.mapRect(picture).united(toTarget.mapRect(softPicture).adjusted(0.5, 0.5, -0.5, -0.5));

    const double least = kFactorRounding * std::max(std::fabs(toSource_.m11()), std::fabs(toSource_.m22()));
    isStraight_ = std::fabs(toSource_.m12()) <= least && std::fabs(toSource_.m21()) <= least;
    if (!isStraight_) reduceSource();
}

void Resampler::reduceSource() {
    const double stepX = std::max(1.0, widthX_ / kWidestTurned);
    const double stepY = std::max(1.0, widthY_ / kWidestTurned);
    if (stepX == 1 && stepY == 1) return;
    const auto reducedLength = [](int64_t length, double step) {
        return static_cast<int64_t>(std::ceil(static_cast<double>(length) / step)) + 2 * kMargin;
    };
    const int64_t width = reducedLength(source_.width, stepX), height = reducedLength(source_.height, stepY);
    const ScaleWeights across(source_.width, stepX, -kMargin * stepX, 0, width, Edges::transparent);
    const ScaleWeights down(source_.height, stepY, -kMargin * stepY, 0, height, Edges::transparent);
    reduced_.resize(static_cast<std::size_t>(width * height) * 4);
    drawBlocks(0, 0, width, height, reduced_.data(), [&, rows = rowsOf(source_)](const TargetBlock& block) {
        scaleBlock(rows, across, down, block);
    });
    source_ = {reduced_.data(), width, height, width * 4};
    toSource_ *= QTransform(1 / stepX, 0, 0, 1 / stepY, kMargin, kMargin);
    widthX_ /= stepX;
    widthY_ /= stepY;
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
        drawBlocks(x, y, width, height, out, [this](const TargetBlock& block) { turnTo(block); });
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

void Resampler::turnTo(const TargetBlock& block) const {
    const int columns = static_cast<int>(std::ceil(4 * widthX_)),
              rows = static_cast<int>(std::ceil(4 * widthY_));
    const double lowX = -2 * widthX_, highX = static_cast<double>(source_.width - 1) - lowX;
    const double lowY = -2 * widthY_, highY = static_cast<double>(source_.height - 1) - lowY;
    for (int64_t row = 0; row < block.height; ++row) {
        uint8_t* out = block.pixels + row * block.rowBytes;
        // In units in which the centres of the source pixels are whole numbers.
        const double centreY = static_cast<double>(block.y + row) + 0.5;
        const double baseX = toSource_.m21() * centreY + toSource_.dx() - 0.5;
        const double baseY = toSource_.m22() * centreY + toSource_.dy() - 0.5;
        int64_t first = block.x, end = block.x + block.width;
        narrow(toSource_.m11(), baseX, lowX, highX, first, end);
        narrow(toSource_.m12(), baseY, lowY, highY, first, end);
        std::memset(out, 0, static_cast<std::size_t>(block.width) * 4);
        for (int64_t x = first; x < end; ++x) {
            const double centreX = static_cast<double>(x) + 0.5;
            const double sx = toSource_.m11() * centreX + baseX, sy = toSource_.m12() * centreX + baseY;
            if (!(sx > lowX && sx < highX && sy > lowY && sy < highY)) continue;
            const Taps across = tapsAt(sx, widthX_, columns), down = tapsAt(sy, widthY_, rows);
            const bool inside = across.first >= 0 && across.first + columns <= source_.width &&
                                down.first >= 0 && down.first + rows <= source_.height;
            float sum[4] = {};
            if (inside && columns == 4 && rows == 4) {
                addSquare<4>(source_.pixels + down.first * source_.rowBytes + across.first * 4,
                             source_.rowBytes, across, down, sum);
            } else {
                addInside(source_, across, columns, down, rows, sum);
            }
            storeFiltered(sum, out + (x - block.x) * 4);
        }
    }
}

} // namespace qirn
