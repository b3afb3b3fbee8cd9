#include "platform/resample/PixelMap.h"

#include "platform/CheckedMath.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include <QTransform>

namespace qirn {

namespace {

// Rounding errors that still count as none: of a coordinate, in pixels, and of a factor.
constexpr double kRounding = 1e-6;
constexpr double kFactorRounding = 1e-12; // below the former over the widest canvas
constexpr double kFarthest = 1e15;        // whole pixels and their halves are exact up to here

std::optional<int> unit(double factor) {
    const double whole = std::nearbyint(factor);
    if (!(std::fabs(whole) <= 1) || std::fabs(factor - whole) > kFactorRounding) return std::nullopt;
    return static_cast<int>(whole);
}

bool isWhole(double v) {
    return std::fabs(v) < kFarthest && std::fabs(v - std::nearbyint(v)) <= kRounding;
}

} // namespace

std::optional<PixelMap> PixelMap::fromTransform(const QTransform& toTarget) {
    if (!toTarget.isAffine()) return std::nullopt;
    // The inverse of a rotation or mirror is its transpose; and QTransform multiplies row vectors, PixelMap column
    // vectors.
    const auto xx = unit(toTarget.m11()), xy = unit(toTarget.m12());
    const auto yx = unit(toTarget.m21()), yy = unit(toTarget.m22());
    if (!xx || !xy || !yx || !yy) return std::nullopt;
    const int straight = std::abs(*xx), crossed = std::abs(*xy);
    if (straight + crossed != 1 || straight != std::abs(*yy) || crossed != std::abs(*yx)) return std::nullopt;
    double dx = toTarget.dx(), dy = toTarget.dy();
    if (*xy != 0 && !isWhole(dx) && !isWhole(dy) && isWhole(dx + 0.5) && isWhole(dy + 0.5)) {
        dx -= 0.5;
        dy -= 0.5;
    }
    if (!isWhole(dx) || !isWhole(dy)) return std::nullopt;
    PixelMap map{*xx, *xy, *yx, *yy, 0, 0};
    const int64_t tx = std::llround(dx), ty = std::llround(dy);
    // A mirrored pixel begins at its far edge.
    map.x0 = -(map.xx * tx + map.xy * ty) + std::min(map.xx + map.xy, 0);
    map.y0 = -(map.yx * tx + map.yy * ty) + std::min(map.yx + map.yy, 0);
    return map;
}

PixelMap PixelMap::inverse() const {
    return {xx, yx, xy, yy, -(xx * x0 + yx * y0), -(xy * x0 + yy * y0)};
}

void PixelMap::copy(const uint8_t* source, int64_t sourceRowBytes, uint8_t* target, int64_t targetRowBytes,
                    int64_t width, int64_t height) const {
    const int64_t stepX = xx * 4 + yx * sourceRowBytes;
    const int64_t stepY = xy * 4 + yy * sourceRowBytes;
    if (stepX == 4) {
        for (int64_t y = 0; y < height; ++y) {
            std::memcpy(target + y * targetRowBytes, source + y * stepY, checkedSize(width) * 4);
        }
        return;
    }
    // A quarter turn reads columns: in small squares, so that a line of the cache is used more than once.
    constexpr int64_t kSquare = 32;
    for (int64_t top = 0; top < height; top += kSquare) {
        for (int64_t left = 0; left < width; left += kSquare) {
            const int64_t right = std::min(left + kSquare, width);
            for (int64_t y = top; y < std::min(top + kSquare, height); ++y) {
                const uint8_t* from = source + y * stepY + left * stepX;
                uint8_t* to = target + y * targetRowBytes + left * 4;
                for (int64_t x = left; x < right; ++x, from += stepX, to += 4) std::memcpy(to, from, 4);
            }
        }
    }
}

} // namespace qirn
