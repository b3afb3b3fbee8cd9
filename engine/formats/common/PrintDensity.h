#pragma once
#include <cstdint>

namespace qirn {

/// Dots per inch as they are, or 72 for what is none: outside of 1 to 100,000, or not a number.
double dpiInRange(double dpi);
/// From what a file notes, in three units, in range as above. Files round: the whole number is given that was meant (PNG
/// has 11,811 dots a metre for 300), or the tenth.
double dpiFromInches(double dots);
double dpiFromCentimeters(double dots);
double dpiFromMeters(int64_t dots);

inline constexpr double kUnknownDpi = 72;

} // namespace qirn
