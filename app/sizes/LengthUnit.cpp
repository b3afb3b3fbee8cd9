#include "app/sizes/LengthUnit.h"

#include <algorithm>
#include <cmath>

namespace qirn {

namespace {

constexpr double kMostPixels = 1e15; // far outside every canvas, and whole numbers are still exact

constexpr bool isInOrder() {
    for (std::size_t i = 0; i < kLengthUnits.size(); ++i)
        if (kLengthUnits[i].unit != static_cast<LengthUnit>(i)) return false;
    return true;
}
static_assert(isInOrder(), "kLengthUnits is in the order of LengthUnit");

} // namespace

int64_t toPixels(double length, LengthUnit unit, double dpi) {
    const double perInch = rowOf(unit).perInch;
    const double pixels = perInch > 0 ? length / perInch * dpi : length;
    return std::llround(std::clamp(pixels, -kMostPixels, kMostPixels));
}

double fromPixels(int64_t pixels, LengthUnit unit, double dpi) {
    const double perInch = rowOf(unit).perInch;
    if (!(perInch > 0)) return static_cast<double>(pixels);
    return dpi > 0 ? static_cast<double>(pixels) / dpi * perInch : 0;
}

} // namespace qirn
