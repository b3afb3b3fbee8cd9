#pragma once
#include <cstdint>

namespace qirn {

/// Dots per inch from what a file notes, in three units, or 72 for what is none (0 or below, not a number). Files round:
/// the whole number is given that was meant (PNG has 11,811 dots a metre for 300), or the tenth. From 1 to 100,000.
double dpiFromInches(double dots);
double dpiFromCentimeters(double dots);
double dpiFromMeters(int64_t dots);

inline constexpr double kUnknownDpi = 72;

} // namespace qirn
