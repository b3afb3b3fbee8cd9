#pragma once
#include <cstdint>

namespace qirn {

/// The value if it is a possible resolution, from 1 to 100,000; otherwise, and for NaN, 72.
double dpiInRange(double dpi);
/// Dots per inch from the value of a file in one of three units, checked as above. Files round, so the result is the
/// whole number, or the tenth, that was meant: 300 for 11,811 dots a meter in a PNG.
double dpiFromInches(double dots);
double dpiFromCentimeters(double dots);
double dpiFromMeters(int64_t dots);

inline constexpr double kUnknownDpi = 72;

} // namespace qirn
