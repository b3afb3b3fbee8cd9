#pragma once

namespace qirn {

/// Sine and cosine of an angle in radians, in plain 64-bit arithmetic, so that every machine gives the same
/// bits: the C library's own differ between processors with and without fused multiply-add. Within one unit
/// of the last place for |radians| up to 1,000,000; NaN for a number that is not finite.
struct SineCosine {
    double sine;
    double cosine;
};
SineCosine sineCosine(double radians);

} // namespace qirn
