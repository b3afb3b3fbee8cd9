#pragma once
#include <algorithm>

namespace qirn {

/// One sample of the pen: canvas pixels with fractions, y downward.
struct StrokePoint {
    double x = 0;
    double y = 0;
    double pressure = 1; ///< 0 to 1.
    double tiltX = 0;    ///< Tilt and time are carried along; no dab reads them.
    double tiltY = 0;
    double time = 0; ///< Seconds.

    constexpr StrokePoint() = default;
    /// Clamps the pressure to 0 to 1; NaN becomes 0.
    constexpr StrokePoint(double px, double py, double pen = 1, double xTilt = 0, double yTilt = 0,
                          double seconds = 0)
        : x(px),
          y(py),
          pressure(std::min(std::max(0.0, pen), 1.0)),
          tiltX(xTilt),
          tiltY(yTilt),
          time(seconds) {}

    bool operator==(const StrokePoint&) const = default;
};

} // namespace qirn
