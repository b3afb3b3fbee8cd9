#include "platform/TurnBlock.h"

#include "platform/Float4.h"

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

/// `at` is in units in which the centres of the source pixels are whole numbers; it is no farther outside than the
/// filter reaches.
Taps tapsAt(double at, double width, int count) {
    constexpr double kAhead = 16; // keeps the number positive: then cutting it is flooring it
    Taps taps{};
    const double begin = at - 2 * width;
    taps.first = static_cast<int64_t>(begin + kAhead) - static_cast<int64_t>(kAhead) + 1;
    const auto distance = static_cast<float>(at - static_cast<double>(taps.first));
    if (count == 4 && width == 1) {
        // The four values of `cubicFilter` at once, as polynomials of the distance from the second pixel.
        const float t = distance - 1;
        constexpr Float4 cubic{-0.5f, 1.5f, -1.5f, 0.5f}, square{1, -2.5f, 2, -0.5f},
            linear{-0.5f, 0, 0.5f, 0}, constant{0, 1, 0, 0};
        storeFloats(taps.weights, ((cubic * t + square) * t + linear) * t + constant);
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
Float4 sumOfRectangle(const PixelView& source, const Taps& across, const Taps& down, int rows) {
    const uint8_t* corner = source.pixels + down.first * source.rowBytes + across.first * 4;
    Float4 sum{};
    for (int j = 0; j < rows; ++j) {
        Float4 lineSum{};
        for (int four = 0; four < kFours; ++four) {
            const FourPixels line(corner + j * source.rowBytes + four * 16);
            for (int i = 0; i < 4; ++i) lineSum += across.weights[four * 4 + i] * line.pixel[i];
        }
        sum += down.weights[j] * lineSum;
    }
    return sum;
}

/// As above where only pixels inside the source count.
Float4 sumOfInside(const PixelView& source, const Taps& across, int columns, const Taps& down, int rows) {
    Float4 sum{};
    for (int j = 0; j < rows; ++j) {
        const int64_t y = down.first + j;
        if (y < 0 || y >= source.height) continue;
        Float4 lineSum{};
        for (int i = 0; i < columns; ++i) {
            const int64_t x = across.first + i;
            if (x < 0 || x >= source.width) continue;
            const uint8_t* p = source.pixels + y * source.rowBytes + x * 4;
            const Float4 pixel{static_cast<float>(p[0]), static_cast<float>(p[1]), static_cast<float>(p[2]),
                               static_cast<float>(p[3])};
            lineSum += across.weights[i] * pixel;
        }
        sum += down.weights[j] * lineSum;
    }
    return sum;
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

} // namespace

void turnBlock(const PixelView& source, const QTransform& toSource, double filterX, double filterY,
               const TargetBlock& block) {
    const int columns = static_cast<int>(std::ceil(4 * filterX)),
              rows = static_cast<int>(std::ceil(4 * filterY));
    const double lowX = -2 * filterX, highX = static_cast<double>(source.width - 1) - lowX;
    const double lowY = -2 * filterY, highY = static_cast<double>(source.height - 1) - lowY;
    const int padded = columns <= 4 ? 4 : kMostTaps; // pixels that are read of a line
    std::vector<float> sums(static_cast<std::size_t>(block.width) * 4);
    for (int64_t row = 0; row < block.height; ++row) {
        uint8_t* out = block.pixels + row * block.rowBytes;
        // In units in which the centres of the source pixels are whole numbers.
        const double centreY = static_cast<double>(block.y + row) + 0.5;
        const double baseX = toSource.m21() * centreY + toSource.dx() - 0.5;
        const double baseY = toSource.m22() * centreY + toSource.dy() - 0.5;
        int64_t first = block.x, end = block.x + block.width;
        narrow(toSource.m11(), baseX, lowX, highX, first, end);
        narrow(toSource.m12(), baseY, lowY, highY, first, end);
        std::memset(out, 0, static_cast<std::size_t>(block.width) * 4);
        float* sum = sums.data();
        for (int64_t x = first; x < end; ++x, sum += 4) {
            const double centreX = static_cast<double>(x) + 0.5;
            const double sx = toSource.m11() * centreX + baseX, sy = toSource.m12() * centreX + baseY;
            if (!(sx > lowX && sx < highX && sy > lowY && sy < highY)) {
                storeFloats(sum, Float4{});
                continue;
            }
            const Taps across = tapsAt(sx, filterX, columns), down = tapsAt(sy, filterY, rows);
            const bool inside = across.first >= 0 && across.first + padded <= source.width &&
                                down.first >= 0 && down.first + rows <= source.height;
            const auto sumOf = padded == 4 ? sumOfRectangle<1> : sumOfRectangle<2>;
            storeFloats(sum, inside ? sumOf(source, across, down, rows)
                                    : sumOfInside(source, across, columns, down, rows));
        }
        storeFiltered(sums.data(), end - first, out + (first - block.x) * 4);
    }
}

} // namespace qirn
