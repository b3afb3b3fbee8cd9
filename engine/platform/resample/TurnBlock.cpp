#include "platform/resample/TurnBlock.h"

#include "platform/CheckedMath.h"
#include "platform/lanes/FloatPixel.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace qirn {

namespace {

constexpr int kMostTaps = 8; // along one axis, of the widest filter

/// The source pixels along one axis of which a target pixel is made.
struct Taps {
    int64_t first;
    float weights[kMostTaps];
};

/// `at` is in units in which the centers of the source pixels are whole numbers; it is no farther outside than the
/// filter reaches.
Taps tapsAt(double at, double width, int count) {
    constexpr double kAhead = 16; // keeps the number positive, so that truncation is floor
    Taps taps{};
    const double begin = at - 2 * width;
    taps.first = static_cast<int64_t>(begin + kAhead) - static_cast<int64_t>(kAhead) + 1;
    const auto distance = static_cast<float>(at - static_cast<double>(taps.first));
    if (count == 4 && width == 1) {
        // The four values of `cubicFilter` at once, as polynomials of the distance from the second pixel.
        const float t = distance - 1;
        constexpr FloatPixel cubic{-0.5f, 1.5f, -1.5f, 0.5f}, square{1, -2.5f, 2, -0.5f},
            linear{-0.5f, 0, 0.5f, 0}, constant{0, 1, 0, 0};
        storePixel(taps.weights, ((cubic * t + square) * t + linear) * t + constant);
        return taps;
    }
    const auto narrow = static_cast<float>(1 / width);
    float sum = 0;
    for (int i = 0; i < count; ++i) {
        taps.weights[i] = cubicFilter((distance - static_cast<float>(i)) * narrow);
        sum += taps.weights[i];
    }
    for (int i = 0; i < count; ++i) taps.weights[i] /= sum;
    return taps;
}

/// Sums `rows` lines of four or eight source pixels, all of which are there; weights beyond the filter are 0.
template <int kFours>
FloatPixel sumOfRectangle(const PixelView& source, const Taps& across, const Taps& down, int rows) {
    const uint8_t* corner = source.pixels + down.first * source.rowBytes + across.first * 4;
    FloatPixel sum{};
    for (int j = 0; j < rows; ++j) {
        FloatPixel lineSum{};
        const uint8_t* line = corner + j * source.rowBytes;
        for (int i = 0; i < 4 * kFours; ++i) lineSum += across.weights[i] * readPixel(line + i * 4);
        sum += down.weights[j] * lineSum;
    }
    return sum;
}

/// As above where only pixels inside the source count.
FloatPixel sumOfInside(const PixelView& source, const Taps& across, int columns, const Taps& down, int rows) {
    FloatPixel sum{};
    for (int j = 0; j < rows; ++j) {
        const int64_t y = down.first + j;
        if (y < 0 || y >= source.height) continue;
        FloatPixel lineSum{};
        for (int i = 0; i < columns; ++i) {
            const int64_t x = across.first + i;
            if (x < 0 || x >= source.width) continue;
            lineSum += across.weights[i] * readPixel(source.pixels + y * source.rowBytes + x * 4);
        }
        sum += down.weights[j] * lineSum;
    }
    return sum;
}

/// Narrows a range of whole numbers n to those with low < step * n + base < high, give or take a few.
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

} // namespace

void turnBlock(const PixelView& source, const QTransform& toSource, double filterX, double filterY,
               const TargetBlock& block) {
    const int columns = static_cast<int>(std::ceil(4 * filterX)),
              rows = static_cast<int>(std::ceil(4 * filterY));
    const double lowX = -2 * filterX, highX = static_cast<double>(source.width - 1) - lowX;
    const double lowY = -2 * filterY, highY = static_cast<double>(source.height - 1) - lowY;
    const int padded = columns <= 4 ? 4 : kMostTaps; // pixels that are read of a line
    std::vector<float> sums(checkedSize(block.width) * 4);
    for (int64_t row = 0; row < block.height; ++row) {
        uint8_t* out = block.pixels + row * block.rowBytes;
        // In units in which the centers of the source pixels are whole numbers.
        const double centerY = static_cast<double>(block.y + row) + 0.5;
        const double baseX = toSource.m21() * centerY + toSource.dx() - 0.5;
        const double baseY = toSource.m22() * centerY + toSource.dy() - 0.5;
        int64_t first = block.x, end = block.x + block.width;
        narrow(toSource.m11(), baseX, lowX, highX, first, end);
        narrow(toSource.m12(), baseY, lowY, highY, first, end);
        std::memset(out, 0, checkedSize(block.width) * 4);
        float* sum = sums.data();
        for (int64_t x = first; x < end; ++x, sum += 4) {
            const double centerX = static_cast<double>(x) + 0.5;
            const double sx = toSource.m11() * centerX + baseX, sy = toSource.m12() * centerX + baseY;
            if (!(sx > lowX && sx < highX && sy > lowY && sy < highY)) {
                storePixel(sum, FloatPixel{});
                continue;
            }
            const Taps across = tapsAt(sx, filterX, columns), down = tapsAt(sy, filterY, rows);
            const bool inside = across.first >= 0 && across.first + padded <= source.width &&
                                down.first >= 0 && down.first + rows <= source.height;
            const auto sumOf = padded == 4 ? sumOfRectangle<1> : sumOfRectangle<2>;
            storePixel(sum, inside ? sumOf(source, across, down, rows)
                                   : sumOfInside(source, across, columns, down, rows));
        }
        storeFiltered(sums.data(), end - first, out + (first - block.x) * 4);
    }
}

} // namespace qirn
