#include "formats/common/PrintDensity.h"

#include <cmath>

namespace qirn {

namespace {

constexpr double kCentimetersPerInch = 2.54;
constexpr double kMetersPerInch = 0.0254;

/// The whole number, or the tenth, that lies within the rounding (in dots per inch); otherwise the value itself.
double snapped(double dpi, double wholeRounding, double tenthRounding) {
    const double whole = std::round(dpi);
    if (whole >= 1 && std::abs(dpi - whole) <= wholeRounding) return whole;
    const double tenth = std::round(dpi * 10) / 10;
    return tenth > 0 && std::abs(dpi - tenth) <= tenthRounding ? tenth : dpi;
}

} // namespace

double dpiInRange(double dpi) {
    return dpi >= 1 && dpi <= 100'000 ? dpi : kUnknownDpi;
}

double dpiFromInches(double dots) {
    return dpiInRange(snapped(dots, 0.005, 0.0005));
}

double dpiFromCentimeters(double dots) {
    // Noted as a whole number, or with two decimals.
    const double rounding = dots == std::round(dots) ? 0.5 : 0.005;
    return dpiInRange(snapped(dots * kCentimetersPerInch, rounding * kCentimetersPerInch, 0.0005));
}

double dpiFromMeters(int64_t dots) {
    // Some programs truncate, so a whole number may be off by almost 1.
    return dpiInRange(
        snapped(static_cast<double>(dots) * kMetersPerInch, 0.999 * kMetersPerInch, 0.5 * kMetersPerInch));
}

} // namespace qirn
