#include "platform/Trigonometry.h"

#include <cmath>
#include <cstdint>
#include <limits>

namespace qirn {

namespace {

// Half of pi in three parts of 33 bits each and a rest, so that n times a part is exact for |n| below 2^20.
constexpr double kHalfPi1 = 0x1.921fb544p+0;
constexpr double kHalfPi2 = 0x1.0b4611a6p-34;
constexpr double kHalfPi3 = 0x1.3198a2ep-69;
constexpr double kHalfPi4 = 0x1.b839a252049c1p-104;
constexpr double kTwoOverPi = 0x1.45f306dc9c883p-1;

// Taylor coefficients, 1/3! to 1/17! and 1/2! to 1/18!: on |x| at most pi/4 the next term is below 2^-63.
double sineNearZero(double x, double low) {
    const double x2 = x * x;
    double p = 1.0 / 355687428096000.0;
    p = p * x2 - 1.0 / 1307674368000.0;
    p = p * x2 + 1.0 / 6227020800.0;
    p = p * x2 - 1.0 / 39916800.0;
    p = p * x2 + 1.0 / 362880.0;
    p = p * x2 - 1.0 / 5040.0;
    p = p * x2 + 1.0 / 120.0;
    p = p * x2 - 1.0 / 6.0;
    return x + (x * x2 * p + low * (1.0 - 0.5 * x2));
}

double cosineNearZero(double x, double low) {
    const double x2 = x * x;
    double p = -1.0 / 6402373705728000.0;
    p = p * x2 + 1.0 / 20922789888000.0;
    p = p * x2 - 1.0 / 87178291200.0;
    p = p * x2 + 1.0 / 479001600.0;
    p = p * x2 - 1.0 / 3628800.0;
    p = p * x2 + 1.0 / 40320.0;
    p = p * x2 - 1.0 / 720.0;
    p = p * x2 + 1.0 / 24.0;
    const double half = 0.5 * x2;
    const double head = 1.0 - half;
    // The rounding error of 1 - half is added back before the small terms.
    return head + (((1.0 - head) - half) + (x2 * x2 * p - x * low));
}

} // namespace

SineCosine sineCosine(double radians) {
    if (!std::isfinite(radians)) {
        const double none = std::numeric_limits<double>::quiet_NaN();
        return {none, none};
    }
    const double n = std::nearbyint(radians * kTwoOverPi);
    const double a = radians - n * kHalfPi1;
    const double b = n * kHalfPi2;
    const double head = a - b;
    const double lost = (a - head) - b;
    const double rest = lost - n * kHalfPi3 - n * kHalfPi4;
    const double x = head + rest;
    const double low = (head - x) + rest;
    const double s = sineNearZero(x, low);
    const double c = cosineNearZero(x, low);
    switch (static_cast<int64_t>(std::fmod(n, 4.0)) & 3) {
    case 0:
        return {s, c};
    case 1:
        return {c, -s};
    case 2:
        return {-s, -c};
    default:
        return {-c, s};
    }
}

} // namespace qirn
